// The "Rotate 60", "Rotate 90", "Rotate 180" and "Rotate 270" effects.
#include "geometry_effect_support.h"
#include "kelvarine_prims.h"

namespace {

using kvgeo::Bytes;
using kvgeo::Words;

// The turn about the centre pixel (width / 2, height / 2), bilinear with
// softened edges, into a buffer cleared to zero; then the colour bytes are
// copied back and the fourth bytes stay.
Bytes Turned(const Bytes& frame, int w, int h, double angle) {
    Bytes buffer(frame.size(), 0);
    const PrimRect whole = {0, 0, w, h};
    primiRotateCenter_8u_AC4R(frame.data(), {w, h}, 4 * w, whole, buffer.data(), 4 * w, whole, angle, w / 2, h / 2,
                              InterpLinear | InterpSmoothEdge);
    Bytes out = frame;
    for (size_t i = 0; i < frame.size(); ++i)
        if (i % 4 != 3) out[i] = buffer[i];
    return out;
}

// Every catalog row, and Rotate 60 set to other angles (held to 0..360), on
// frames of awkward sizes taken one after another by the same instance.
TEST(RotateEffect, FramesTurnIntoBlack) {
    auto turns = [](Effect_Base* rotate, int32_t angle) {
        kvgeo::ExpectFrames(rotate, {{1, 1}, {2, 2}, {5, 3}, {3, 5}, {8, 8}, {17, 9}, {40, 30}, {33, 64}}, angle,
                            [&](const Bytes& frame, int w, int h) { return Turned(frame, w, h, angle); });
    };
    const int32_t presets[][2] = {{1018, 90}, {1019, 180}, {1020, 270}, {1017, 60}};
    for (const auto& preset : presets) {
        Effect_Base* rotate = Kelvarine_NewInstance(preset[0]);
        ASSERT_NE(rotate, nullptr);
        EXPECT_EQ(kvgeo::WordsOf(rotate, 1), Words{preset[1]}) << preset[0];
        turns(rotate, preset[1]);
        Kelvarine_Destory(rotate);
    }
    Effect_Base* rotate = Kelvarine_NewInstance(1017);
    const int32_t words[][2] = {{1, 1}, {359, 359}, {-5, 0}, {400, 360}};
    for (const auto& word : words) {
        EXPECT_EQ(kvgeo::WordsOf(rotate, 1, {word[0]}), Words{word[1]}) << word[0];
        turns(rotate, word[1]);
    }
    Kelvarine_Destory(rotate);
}

TEST(RotateEffect, RefusesNullFramesAndEmptySizes) {
    kvgeo::ExpectRefusals(1017, 0, 1, " *** Rotate Effect Src == NULL  *** Rotate Effect Width = 0 Height =1");
}

}  // namespace
