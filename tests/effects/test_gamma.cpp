#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/Gamma.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using kvtest::Bytes;

TEST(GammaEffect, RunsTheCurveAmountTimesEitherWay) {
    for (int amount : {1, 10, -1, -3, 0, 11}) {
        auto frame = kvtest::RandomBytes(13 * 5 * 4, 40 + amount), expected = frame;
        for (int i = 0; i < std::min(amount, 10); ++i) primiGammaFwd_8u_AC4IR(expected.data(), 13 * 4, {13, 5});
        for (int i = 0; i < -amount; ++i) primiGammaInv_8u_AC4IR(expected.data(), 13 * 4, {13, 5});
        EXPECT_EQ(kvtest::Processed(Gamma::CreateInstance, frame, 13, 5, &amount), expected) << amount;
    }
    EXPECT_EQ(kvtest::StoredWord0(Gamma::CreateInstance, -11), -10);
}

TEST(GammaEffect, DefaultIsTwoForwardPasses) {
    // 1 -> 4 -> 18 and 3 -> 14 -> 51.
    EXPECT_EQ(kvtest::Processed(Gamma::CreateInstance, {1, 3, 0, 200}, 1, 1), (Bytes{18, 51, 0, 200}));
}

}  // namespace
