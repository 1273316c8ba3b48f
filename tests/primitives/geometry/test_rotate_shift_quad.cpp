// primiGetRotateShift and primiGetAffineQuad, the helpers of the warp.
#include <gtest/gtest.h>

#include <cmath>

#include "jump_index.h"

namespace {

class RotateShift : public EveryJumpIndex {};

// Whole turns come off through a 32-bit integer; the quarter turns give
// their shifts without trigonometry, so an integer centre keeps them whole.
TEST_P(RotateShift, QuarterTurnsAndNormalisedAngles) {
    auto shift = KV_BUILD(primiGetRotateShift, GetParam());
    struct Case {
        double angle, xShift, yShift;
    } cases[] = {
        {0.0, 0.0, 0.0},  {360.0, 0.0, 0.0}, {-720.0, 0.0, 0.0}, {90.0, -2.0, 8.0},  {450.0, -2.0, 8.0},
        {-270.0, -2.0, 8.0}, {180.0, 6.0, 10.0}, {-180.0, 6.0, 10.0}, {270.0, 8.0, 2.0}, {-90.0, 8.0, 2.0},
    };
    for (const Case& c : cases) {
        double x = 7.0, y = 7.0;
        ASSERT_EQ(shift(3.0, 5.0, c.angle, &x, &y), PrimOk);
        EXPECT_EQ(x, c.xShift) << c.angle;
        EXPECT_EQ(y, c.yShift) << c.angle;
    }
}

// Any other angle: the shift that keeps the centre where it is under
// x' = x cos r + y sin r + xShift, y' = -x sin r + y cos r + yShift.
TEST_P(RotateShift, OtherAnglesKeepTheCentre) {
    auto shift = KV_BUILD(primiGetRotateShift, GetParam());
    for (double angle : {30.0, 60.0, -45.0, 123.456, 1000.5}) {
        double x, y;
        ASSERT_EQ(shift(4.5, -2.25, angle, &x, &y), PrimOk);
        double a = angle - static_cast<int32_t>(angle / 360.0) * 360.0;
        if (a < 0.0) a += 360.0;
        const double r = a / 180.0 * 3.141592653589793;
        EXPECT_EQ(x, 4.5 - 4.5 * cos(r) - -2.25 * sin(r)) << angle;
        EXPECT_EQ(y, -2.25 - cos(r) * -2.25 + 4.5 * sin(r)) << angle;
        EXPECT_NEAR(4.5 * cos(r) + -2.25 * sin(r) + x, 4.5, 1e-12);
        EXPECT_NEAR(-4.5 * sin(r) + -2.25 * cos(r) + y, -2.25, 1e-12);
    }
    double x;
    EXPECT_EQ(shift(1.0, 1.0, 30.0, &x, nullptr), PrimNullPtrErr);
    EXPECT_EQ(shift(1.0, 1.0, 30.0, nullptr, &x), PrimNullPtrErr);
}

KV_ALL_JUMP_INDICES(RotateShift);

class AffineQuad : public EveryJumpIndex {};

// The corners of the rectangle, last pixel included, in the order top-left,
// top-right, bottom-right, bottom-left.
TEST_P(AffineQuad, CornersOfTheRectangle) {
    auto quadOf = KV_BUILD(primiGetAffineQuad, GetParam());
    const double shear[2][3] = {{1.0, 0.5, 2.0}, {0.25, 1.0, -1.0}};
    double quad[4][2];
    ASSERT_EQ(quadOf({2, 3, 5, 4}, quad, shear), PrimOk);
    const double expected[4][2] = {{5.5, 2.5}, {9.5, 3.5}, {11.0, 6.5}, {7.0, 5.5}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(quad[i][0], expected[i][0]) << i;
        EXPECT_EQ(quad[i][1], expected[i][1]) << i;
    }
}

// Rectangles with a negative origin or no area are size errors; a
// transform that flattens the rectangle gives a degenerate quad.
TEST_P(AffineQuad, RefusesBadRectanglesAndFlatQuads) {
    auto quadOf = KV_BUILD(primiGetAffineQuad, GetParam());
    const double identity[2][3] = {{1, 0, 0}, {0, 1, 0}};
    const double flat[2][3] = {{1, 2, 0}, {2, 4, 0}};
    double quad[4][2];
    EXPECT_EQ(quadOf({-1, 0, 4, 4}, quad, identity), PrimSizeErr);
    EXPECT_EQ(quadOf({0, -1, 4, 4}, quad, identity), PrimSizeErr);
    EXPECT_EQ(quadOf({0, 0, 0, 4}, quad, identity), PrimSizeErr);
    EXPECT_EQ(quadOf({0, 0, 4, 0}, quad, identity), PrimSizeErr);
    EXPECT_EQ(quadOf({0, 0, 4, 4}, quad, flat), PrimCoeffErr);
    EXPECT_EQ(quadOf({0, 0, 1, 4}, quad, identity), PrimCoeffErr) << "one column: two corners coincide";
    EXPECT_EQ(quadOf({0, 0, 2, 2}, quad, identity), PrimOk);
}

KV_ALL_JUMP_INDICES(AffineQuad);

}  // namespace
