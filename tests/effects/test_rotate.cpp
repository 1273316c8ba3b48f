// The "Rotate 60", "Rotate 90", "Rotate 180" and "Rotate 270" effects.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

int32_t AngleOf(Effect_Base* effect) {
    EffectArgs args = {{-9, 9, 9, 9, 9, 9}};
    EXPECT_EQ(effect->GetArgs(&args), 0);
    EXPECT_EQ(args.word[1], 9) << "only word 0 is written";
    return args.word[0];
}

TEST(RotateEffect, CatalogAnglesAndTheirLimits) {
    const int32_t rows[][2] = {{1017, 60}, {1018, 90}, {1019, 180}, {1020, 270}};
    for (const auto& row : rows) {
        Effect_Base* rotate = Kelvarine_NewInstance(row[0]);
        ASSERT_NE(rotate, nullptr);
        EXPECT_EQ(AngleOf(rotate), row[1]) << row[0];
        Kelvarine_Destory(rotate);
    }
    Effect_Base* rotate = Kelvarine_NewInstance(1017);
    const int32_t words[][2] = {{-5, 0}, {400, 360}, {359, 359}, {360, 360}, {0, 0}};
    for (const auto& word : words) {
        EffectArgs args = {{word[0]}};
        EXPECT_EQ(rotate->SetArgs(&args), 0);
        EXPECT_EQ(AngleOf(rotate), word[1]) << word[0];
    }
    Kelvarine_Destory(rotate);
}

// A quarter turn about the centre pixel (width / 2, height / 2), counter-
// clockwise on the screen: each pixel takes the colour the turn brings to
// it, or black where nothing lands; the fourth byte stays.
Bytes QuarterTurned(const Bytes& frame, int w, int h, int angle) {
    const int xc = w / 2, yc = h / 2;
    Bytes out = frame;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            int sx = 2 * xc - x, sy = 2 * yc - y;
            if (angle == 90) sx = xc + yc - y, sy = x - xc + yc;
            if (angle == 270) sx = y - yc + xc, sy = xc + yc - x;
            const bool inside = sx >= 0 && sx < w && sy >= 0 && sy < h;
            for (int c = 0; c < 3; ++c) out[(y * w + x) * 4 + c] = inside ? frame[(sy * w + sx) * 4 + c] : 0;
        }
    return out;
}

TEST(RotateEffect, QuarterTurnsMoveWholePixels) {
    const int sizes[][2] = {{1, 1}, {2, 2}, {5, 3}, {3, 5}, {8, 8}, {17, 9}, {31, 44}};
    for (int32_t id : {1018, 1019, 1020}) {
        Effect_Base* rotate = Kelvarine_NewInstance(id);
        for (const auto& size : sizes) {
            const int w = size[0], h = size[1];
            Bytes frame = kvtest::RandomBytes(w * h * 4, 7 * w + h + id);
            const Bytes expected = QuarterTurned(frame, w, h, AngleOf(rotate));
            ASSERT_EQ(Kelvarine_Proc(rotate, frame.data(), w, h), 0);
            EXPECT_EQ(frame, expected) << id << " at " << w << "x" << h;
        }
        Kelvarine_Destory(rotate);
    }
}

// Any other angle: the bilinear warp with softened edges about the centre
// pixel into a buffer cleared to zero, then the colour bytes copied back.
Bytes Resampled(const Bytes& frame, int w, int h, double angle) {
    Bytes buffer(frame.size(), 0);
    const PrimRect whole = {0, 0, w, h};
    primiRotateCenter_8u_AC4R(frame.data(), {w, h}, 4 * w, whole, buffer.data(), 4 * w, whole, angle, w / 2, h / 2,
                              InterpLinear | InterpSmoothEdge);
    Bytes out = frame;
    for (size_t i = 0; i < frame.size(); ++i)
        if (i % 4 != 3) out[i] = buffer[i];
    return out;
}

TEST(RotateEffect, OtherAnglesResampleIntoBlack) {
    const int sizes[][2] = {{2, 2}, {7, 5}, {40, 30}, {33, 64}};
    Effect_Base* rotate = Kelvarine_NewInstance(1017);
    for (int32_t angle : {60, 45, 1, 359}) {
        EffectArgs args = {{angle}};
        rotate->SetArgs(&args);
        for (const auto& size : sizes) {
            const int w = size[0], h = size[1];
            Bytes frame = kvtest::RandomBytes(w * h * 4, 11 * w + h);
            const Bytes expected = Resampled(frame, w, h, angle);
            ASSERT_EQ(Kelvarine_Proc(rotate, frame.data(), w, h), 0);
            EXPECT_EQ(frame, expected) << angle << " at " << w << "x" << h;
            if (w >= 40 && angle == 60) {
                EXPECT_EQ(frame[0] | frame[1] | frame[2], 0) << "the corner is black";
            }
        }
    }
    Kelvarine_Destory(rotate);
}

// 0 and 360 are no quarter turns: the warp runs with the identity, which
// gives every pixel back as it was, with no slanted edge to soften.
TEST(RotateEffect, NoTurnLeavesTheFrame) {
    Effect_Base* rotate = Kelvarine_NewInstance(1017);
    for (int32_t word : {-5, 400}) {
        EffectArgs args = {{word}};
        rotate->SetArgs(&args);
        Bytes frame = kvtest::RandomBytes(23 * 14 * 4, 5);
        const Bytes before = frame;
        ASSERT_EQ(Kelvarine_Proc(rotate, frame.data(), 23, 14), 0);
        EXPECT_EQ(frame, before) << word;
    }
    Kelvarine_Destory(rotate);
}

TEST(RotateEffect, RefusesNullFramesAndEmptySizes) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        Effect_Base* rotate = Kelvarine_NewInstance(1017);
        const bool refused = Kelvarine_Proc(rotate, nullptr, 1, 1) == -1 && Kelvarine_Proc(rotate, pixel, 0, 1) == -1;
        Kelvarine_Destory(rotate);
        _exit(refused && pixel[0] == 1 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string expected = " *** Rotate Effect Src == NULL  *** Rotate Effect Width = 0 Height =1";
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
