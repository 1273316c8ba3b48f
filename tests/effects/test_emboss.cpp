#include <gtest/gtest.h>

#include <vector>

#include "effects/Emboss.h"
#include "test_support.h"

namespace {

// Read from an untouched copy: each colour byte minus the one below and to
// the right, plus the bias; the last row and column stay.
std::vector<uint8_t> EmbossReference(const std::vector<uint8_t>& in, int width, int height, int bias) {
    std::vector<uint8_t> out = in;
    for (int y = 0; y + 1 < height; ++y)
        for (int x = 0; x + 1 < width; ++x)
            for (int c = 0; c < 3; ++c) {
                int v = in[(y * width + x) * 4 + c] - in[((y + 1) * width + x + 1) * 4 + c] + bias;
                out[(y * width + x) * 4 + c] = v < 0 ? 0 : (v > 255 ? 255 : v);
            }
    return out;
}

Effect_Base* EmbossWithBias(int bias) {
    Effect_Base* emboss = Emboss::CreateInstance();
    EffectArgs args = {{bias}};
    emboss->SetArgs(&args);
    return emboss;
}

TEST(EmbossEffect, EqualsTheDifferenceOfTheUnchangedFrame) {
    const int sizes[][2] = {{1, 1}, {1, 4}, {4, 1}, {2, 2}, {5, 3}, {6, 4}, {19, 5}};
    for (int bias : {10, -37, 200}) {
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, size[0] + 100 * size[1]);
            auto expected = EmbossReference(frame, size[0], size[1], bias);
            Effect_Base* emboss = EmbossWithBias(bias);
            EXPECT_EQ(emboss->Proc(frame.data(), size[0], size[1]), 0);
            EXPECT_EQ(frame, expected) << size[0] << "x" << size[1] << " bias " << bias;
            delete emboss;
        }
    }
}

TEST(EmbossEffect, FlatFrameBecomesTheBiasAndBiasZeroChangesNothing) {
    std::vector<uint8_t> flat;
    for (int i = 0; i < 6 * 3; ++i) flat.insert(flat.end(), {90, 91, 92, 5});
    auto frame = flat;
    Effect_Base* emboss = Emboss::CreateInstance();
    emboss->Proc(frame.data(), 6, 3);
    for (int i = 0; i < 6 * 3; ++i) {
        bool edge = i % 6 == 5 || i / 6 == 2;
        std::vector<uint8_t> expected = edge ? std::vector<uint8_t>{90, 91, 92, 5} : std::vector<uint8_t>{10, 10, 10, 5};
        EXPECT_EQ(std::vector<uint8_t>(frame.begin() + 4 * i, frame.begin() + 4 * i + 4), expected) << i;
    }
    delete emboss;

    frame = kvtest::RandomBytes(flat.size(), 3);
    auto before = frame;
    emboss = EmbossWithBias(0);
    emboss->Proc(frame.data(), 6, 3);
    EXPECT_EQ(frame, before);
    delete emboss;
}

TEST(EmbossEffect, BiasClampsToTwoHundred) {
    Effect_Base* emboss = EmbossWithBias(-201);
    EffectArgs args = {};
    emboss->GetArgs(&args);
    EXPECT_EQ(args.word[0], -200);
    delete emboss;
}

}  // namespace
