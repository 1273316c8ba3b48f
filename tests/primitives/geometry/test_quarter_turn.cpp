// Quarter turns of primiRotateCenter_8u_AC4R that land on whole pixels: an
// exact permutation of the colour bytes, with no interpolation.
#include <gtest/gtest.h>

#include <random>

#include "jump_index.h"
#include "primitives/pixel/image_under_test.h"

namespace {

using kvtest::ImageUnderTest;

struct Turn {
    PrimSize srcSize;
    PrimRect srcRoi;
    PrimSize dstSize;
    PrimRect dstRoi;
    double angle, xCenter, yCenter;
};

// Every pixel of the source rectangle (cut back to the image) goes where the
// turn takes it: (y + xs, ys - x) for 90, (xs - x, ys - y) for 180,
// (xs - y, x + ys) for 270, with the shifts that keep the centre in place.
// Only those inside the destination rectangle are written, three bytes each.
PrimStatus ExpectedTurn(const Turn& t, ImageUnderTest& src, ImageUnderTest& dst) {
    int turn = static_cast<int>(fmod(fmod(t.angle, 360.0) + 360.0, 360.0));
    const double xc = t.xCenter, yc = t.yCenter;
    const int xs = static_cast<int>(turn == 90 ? xc - yc : (turn == 180 ? 2 * xc : xc + yc));
    const int ys = static_cast<int>(turn == 90 ? yc + xc : (turn == 180 ? 2 * yc : yc - xc));
    bool any = false;
    for (int y = t.srcRoi.y; y < std::min(t.srcRoi.y + t.srcRoi.height, t.srcSize.height); ++y)
        for (int x = t.srcRoi.x; x < std::min(t.srcRoi.x + t.srcRoi.width, t.srcSize.width); ++x) {
            const int X = turn == 90 ? y + xs : (turn == 180 ? xs - x : xs - y);
            const int Y = turn == 90 ? ys - x : (turn == 180 ? ys - y : x + ys);
            if (X < t.dstRoi.x || X >= t.dstRoi.x + t.dstRoi.width || Y < t.dstRoi.y ||
                Y >= t.dstRoi.y + t.dstRoi.height)
                continue;
            for (int c = 0; c < 3; ++c) dst.at(X, Y, c) = src.at(x, y, c);
            any = true;
        }
    return any ? PrimOk : PrimNoOverlapWrn;
}

class QuarterTurn : public EveryJumpIndex {};

// Random rectangles of awkward sizes, blocks of 4x4 and their remainders,
// centres within the source, whole or half-whole so that the shifts are
// whole, angles beyond a full turn and below zero. The interpolation word plays no part.
TEST_P(QuarterTurn, MovesColourBytesOnly) {
    std::mt19937 random(77);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(random); };
    const double angles[] = {90, 180, 270, 450, -90, -180, 630, -450, 990};
    int drawn = 0;
    for (int i = 0; i < 300; ++i) {
        Turn t;
        t.srcSize = {pick(1, 41), pick(1, 37)};
        t.srcRoi = {pick(0, t.srcSize.width / 3), pick(0, t.srcSize.height / 3), pick(1, 45), pick(1, 45)};
        t.dstSize = {pick(1, 43), pick(1, 39)};
        t.dstRoi = {pick(0, t.dstSize.width / 4), pick(0, t.dstSize.height / 4), 0, 0};
        t.dstRoi.width = pick((t.dstSize.width - t.dstRoi.x + 1) / 2, t.dstSize.width - t.dstRoi.x);
        t.dstRoi.height = pick((t.dstSize.height - t.dstRoi.y + 1) / 2, t.dstSize.height - t.dstRoi.y);
        t.angle = angles[i % 9];
        const double half = (i / 9) % 2 == 0 ? 0.0 : 0.5;
        t.xCenter = pick(0, t.srcSize.width) + half, t.yCenter = pick(0, t.srcSize.height) + half;

        ImageUnderTest src(t.srcSize.width, t.srcSize.height, pick(0, 9), pick(0, 3), 1000 + i);
        ImageUnderTest dst(t.dstSize.width, t.dstSize.height, pick(0, 9), pick(0, 3), 2000 + i);
        ImageUnderTest expected = dst;
        const PrimStatus status = ExpectedTurn(t, src, expected);
        ASSERT_EQ(primiRotateCenter_8u_AC4R(src.data(), t.srcSize, src.step, t.srcRoi, dst.data(), dst.step, t.dstRoi,
                                            t.angle, t.xCenter, t.yCenter, i % 3 == 0 ? 12345 : 0x80000002),
                  status)
            << "case " << i;
        ASSERT_EQ(dst.bytes, expected.bytes) << "case " << i << " angle " << t.angle;
        drawn += status == PrimOk;
    }
    EXPECT_GT(drawn, 90);
}

// A non-square frame turned about its centre pixel, as the effect does:
// many strips of blocks, and the frame's edges cut.
TEST_P(QuarterTurn, WholeFrameAboutTheCentrePixel) {
    for (double angle : {90.0, 180.0, 270.0}) {
        Turn t = {{203, 117}, {0, 0, 203, 117}, {203, 117}, {0, 0, 203, 117}, angle, 101.0, 58.0};
        ImageUnderTest src(203, 117, 0, 0, 3), dst(203, 117, 0, 0, 4);
        ImageUnderTest expected = dst;
        ExpectedTurn(t, src, expected);
        ASSERT_EQ(primiRotateCenter_8u_AC4R(src.data(), t.srcSize, src.step, t.srcRoi, dst.data(), dst.step,
                                            t.dstRoi, angle, 101.0, 58.0, InterpLinear),
                  PrimOk);
        EXPECT_EQ(dst.bytes, expected.bytes) << angle;
    }
}

// Tests of the exact path in order: pointers, then sizes and rectangles,
// then a source rectangle that starts outside the image, then a turned box
// that misses the destination rectangle. No step is tested.
TEST_P(QuarterTurn, RefusalsInTheirOrder) {
    ImageUnderTest src(6, 4, 0, 0, 5), dst(6, 4, 0, 0, 6);
    const auto before = dst.bytes;
    const PrimRect all = {0, 0, 6, 4};
    auto turn = [&](const uint8_t* s, PrimSize size, PrimRect sr, uint8_t* d, PrimRect dr, double xc, double yc) {
        return primiRotateCenter_8u_AC4R(s, size, 0, sr, d, -7, dr, 90.0, xc, yc, 77);
    };
    EXPECT_EQ(turn(nullptr, {0, 0}, all, dst.data(), all, 2, 2), PrimNullPtrErr);
    EXPECT_EQ(turn(src.data(), {0, 4}, all, nullptr, all, 2, 2), PrimNullPtrErr);
    EXPECT_EQ(turn(src.data(), {6, 0}, {9, 9, 1, 1}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, -1, 6, 4}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, 0, 0, 4}, dst.data(), all, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), {-1, 0, 6, 4}, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), {0, 0, 6, 0}, 2, 2), PrimSizeErr);
    EXPECT_EQ(turn(src.data(), {6, 4}, {6, 0, 1, 1}, dst.data(), all, 2, 2), PrimNoOverlapWrn);
    EXPECT_EQ(turn(src.data(), {6, 4}, {0, 4, 1, 1}, dst.data(), all, 2, 2), PrimNoOverlapWrn);
    EXPECT_EQ(turn(src.data(), {6, 4}, all, dst.data(), all, 40, 2), PrimNoOverlapWrn);
    EXPECT_EQ(dst.bytes, before);
}

// A 2x2 frame turned by 90 about (1, 1): x' = y, y' = 2 - x, so the right
// column becomes the bottom row and the left column falls outside.
TEST_P(QuarterTurn, TwoByTwoAboutItsCentrePixel) {
    const uint8_t src[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    uint8_t dst[16] = {0};
    ASSERT_EQ(primiRotateCenter_8u_AC4R(src, {2, 2}, 8, {0, 0, 2, 2}, dst, 8, {0, 0, 2, 2}, 90.0, 1.0, 1.0,
                                        InterpLinear | InterpSmoothEdge),
              PrimOk);
    const uint8_t expected[16] = {0, 0, 0, 0, 0, 0, 0, 0, 5, 6, 7, 0, 13, 14, 15, 0};
    EXPECT_EQ(std::vector<uint8_t>(dst, dst + 16), std::vector<uint8_t>(expected, expected + 16));
}

KV_ALL_JUMP_INDICES(QuarterTurn);

}  // namespace
