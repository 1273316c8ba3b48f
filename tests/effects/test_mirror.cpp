// The "Mirror Vertical", "Mirror Horizontal" and "Mirror Both" effects.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "kelvarine.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

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

int32_t FlipOf(Effect_Base* effect) {
    EffectArgs args = {{-9, 9, 9, 9, 9, 9}};
    effect->GetArgs(&args);
    EXPECT_EQ(args.word[1], 9) << "only word 0 is written";
    return args.word[0];
}

TEST(MirrorEffect, CatalogRowsAndClampedFlip) {
    const int32_t rows[][2] = {{1015, 0}, {1014, 1}, {1016, 2}};
    for (const auto& row : rows) {
        Effect_Base* mirror = Kelvarine_NewInstance(row[0]);
        ASSERT_NE(mirror, nullptr);
        EXPECT_EQ(FlipOf(mirror), row[1]) << row[0];
        Kelvarine_Destory(mirror);
    }
    Effect_Base* mirror = Kelvarine_NewInstance(1015);
    EffectArgs args = {{7}};
    EXPECT_EQ(mirror->SetArgs(&args), 0);
    EXPECT_EQ(FlipOf(mirror), 2);
    args.word[0] = -1;
    EXPECT_EQ(mirror->SetArgs(&args), 0);
    EXPECT_EQ(FlipOf(mirror), 0);
    Kelvarine_Destory(mirror);
}

// Each row of the catalog flips random frames of awkward sizes in place. A
// frame too short or too narrow for the flip stays as it came, and Proc
// still succeeds.
TEST(MirrorEffect, FlipsFramesInPlace) {
    const int sizes[][2] = {{1, 1}, {1, 6}, {7, 1}, {2, 2}, {5, 3}, {9, 8}, {33, 7}, {64, 5}};
    for (int32_t id : {1015, 1014, 1016}) {
        Effect_Base* mirror = Kelvarine_NewInstance(id);
        const int flip = FlipOf(mirror);
        for (const auto& size : sizes) {
            const int w = size[0], h = size[1];
            Bytes frame = kvtest::RandomBytes(w * h * 4, 31 * w + h);
            const bool refused = (flip != 1 && h < 2) || (flip != 0 && w < 2);
            const Bytes expected = refused ? frame : Mirrored(frame, w, h, flip);
            ASSERT_EQ(Kelvarine_Proc(mirror, frame.data(), w, h), 0);
            EXPECT_EQ(frame, expected) << id << " at " << w << "x" << h;
        }
        Kelvarine_Destory(mirror);
    }
}

TEST(MirrorEffect, RefusesNullFramesAndEmptySizes) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        Effect_Base* mirror = Kelvarine_NewInstance(1014);
        const bool refused = Kelvarine_Proc(mirror, nullptr, 2, 1) == -1 && Kelvarine_Proc(mirror, pixel, 2, -1) == -1;
        Kelvarine_Destory(mirror);
        _exit(refused && pixel[0] == 1 && pixel[4] == 5 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string expected = " *** Mirror Effect Src == NULL  *** Mirror Effect Width = 2 Height =-1";
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
