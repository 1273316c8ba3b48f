// The "Mirror Vertical", "Mirror Horizontal" and "Mirror Both" effects.
#include "geometry_effect_support.h"

namespace {

using kvgeo::Bytes;
using kvgeo::Words;

// Colour bytes from the mirrored position; the fourth byte stays in place.
Bytes Mirrored(const Bytes& frame, int width, int height, int flip) {
    Bytes out = frame;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int fromX = flip == 0 ? x : width - 1 - x, fromY = flip == 1 ? y : height - 1 - y;
            for (int c = 0; c < 3; ++c) out[(y * width + x) * 4 + c] = frame[(fromY * width + fromX) * 4 + c];
        }
    return out;
}

// Each row of the catalog flips random frames of awkward sizes in place. A
// frame too short or too narrow for the flip stays as it came, and Proc
// still succeeds. The flip word is held to 0..2.
TEST(MirrorEffect, FlipsFramesInPlace) {
    const int32_t rows[][2] = {{1015, 0}, {1014, 1}, {1016, 2}};
    for (const auto& row : rows) {
        Effect_Base* mirror = Kelvarine_NewInstance(row[0]);
        ASSERT_NE(mirror, nullptr);
        const int flip = row[1];
        EXPECT_EQ(kvgeo::WordsOf(mirror, 1), Words{flip}) << row[0];
        kvgeo::ExpectFrames(mirror, {{1, 1}, {1, 6}, {7, 1}, {2, 2}, {5, 3}, {9, 8}, {33, 7}, {64, 5}}, 31,
                            [&](const Bytes& frame, int w, int h) {
                                const bool refused = (flip != 1 && h < 2) || (flip != 0 && w < 2);
                                return refused ? frame : Mirrored(frame, w, h, flip);
                            });
        EXPECT_EQ(kvgeo::WordsOf(mirror, 1, {7}), Words{2});
        EXPECT_EQ(kvgeo::WordsOf(mirror, 1, {-1}), Words{0});
        Kelvarine_Destory(mirror);
    }
}

TEST(MirrorEffect, RefusesNullFramesAndEmptySizes) {
    kvgeo::ExpectRefusals(1014, 2, -1, " *** Mirror Effect Src == NULL  *** Mirror Effect Width = 2 Height =-1");
}

}  // namespace
