// The fixed-point cubic weight table, checked against its defining rule.
#include <gtest/gtest.h>

#include <cmath>

// The table is a constant of the sampler header; compile one copy here.
#define PRIM_BUILD kvtest_sampler
#include "primitives/geometry/interpolation.h"

namespace {

using kvtest_sampler::ownpi_iCubTab;

// Every row is round(16384 L(t)) of the first two Lagrange weights at
// t = i / 512, and the four weights of each t sum to 1.0 within rounding;
// the rows past 1536 are zero.
TEST(CubicTable, EveryRowFollowsTheLagrangeWeights) {
    for (int i = 0; i <= 1536; ++i) {
        double t = i / 512.0;
        double l0 = -(t - 1) * (t - 2) * (t - 3) / 6, l1 = t * (t - 2) * (t - 3) / 2;
        ASSERT_EQ(ownpi_iCubTab.pair[i][0], std::lround(16384 * l0)) << "row " << i;
        ASSERT_EQ(ownpi_iCubTab.pair[i][1], std::lround(16384 * l1)) << "row " << i;
        int sum = ownpi_iCubTab.pair[i][0] + ownpi_iCubTab.pair[i][1] + ownpi_iCubTab.pair[1536 - i][1] +
                  ownpi_iCubTab.pair[1536 - i][0];
        ASSERT_LE(std::abs(sum - 16384), 2) << "row " << i;
    }
    for (int i = 1537; i < 1540; ++i) EXPECT_EQ(ownpi_iCubTab.pair[i][0] | ownpi_iCubTab.pair[i][1], 0) << i;
}

}  // namespace
