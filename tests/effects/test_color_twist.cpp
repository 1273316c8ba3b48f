// "Color Emphase" and "Color Average": a colour matrix applied repeatedly.
#include <gtest/gtest.h>

#include <cstring>

#include "colour_effect_support.h"
#include "effects/ColorAverage.h"
#include "effects/ColorEmphase.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using kvtest::Bytes;
using Twist = float[3][4];

float FromBits(uint32_t bits) {
    float value;
    memcpy(&value, &bits, 4);
    return value;
}

// 1.4, -0.2, -0.4, -0.55 by their bit patterns.
const float a = FromBits(0x3FB33333), b = FromBits(0xBE4CCCCD), c = FromBits(0xBECCCCCD), d = FromBits(0xBF0CCCCD);
const Twist kEmphase = {{a, b, b, c}, {b, a, b, d}, {b, b, a, c}};
const Twist kAverage = {{0.75f, 0.125f, 0.125f, 0.75f}, {0.125f, 0.75f, 0.125f, 1.0f}, {0.125f, 0.125f, 0.75f, 0.75f}};

struct TwistEffect {
    Effect_Base* (*create)();
    const Twist* matrix;
};

class ColorTwistEffect : public ::testing::TestWithParam<TwistEffect> {};

// Times are clamped to 1..16; 0 gives one pass.
TEST_P(ColorTwistEffect, AppliesItsMatrixTimesTimes) {
    for (int times : {0, 3, 16, 17}) {
        auto frame = kvtest::RandomBytes(21 * 3 * 4, times), expected = frame;
        for (int i = 0; i < std::min(std::max(times, 1), 16); ++i)
            primiColorTwist32f_8u_AC4IR(expected.data(), 21 * 4, {21, 3}, *GetParam().matrix);
        EXPECT_EQ(kvtest::Processed(GetParam().create, frame, 21, 3, &times), expected) << times << " times";
    }
    EXPECT_EQ(kvtest::StoredWord0(GetParam().create, 99), 16);
}

INSTANTIATE_TEST_SUITE_P(Each, ColorTwistEffect,
                         ::testing::Values(TwistEffect{ColorEmphase::CreateInstance, &kEmphase},
                                           TwistEffect{ColorAverage::CreateInstance, &kAverage}));

TEST(ColorTwistEffect, DefaultIsThreePasses) {
    // Emphase on gray 100: the outer rows give 99.6 -> 100 and the middle row
    // 99.45 -> 99; the next passes keep 100 outside and take the middle to
    // 98.05 -> 98, then 96.65 -> 97.
    EXPECT_EQ(kvtest::Processed(ColorEmphase::CreateInstance, {100, 100, 100, 7}, 1, 1), (Bytes{100, 97, 100, 7}));
}

}  // namespace
