// primiGetRotateShift and primiGetAffineQuad, the helpers of the warp.
#include <gtest/gtest.h>

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
    double x;
    EXPECT_EQ(shift(1.0, 1.0, 30.0, &x, nullptr), PrimNullPtrErr);
    EXPECT_EQ(shift(1.0, 1.0, 30.0, nullptr, &x), PrimNullPtrErr);
}

KV_ALL_JUMP_INDICES(RotateShift);

class AffineQuad : public EveryJumpIndex {};

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
