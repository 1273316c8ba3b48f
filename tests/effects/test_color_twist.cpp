// "Color Emphase" and "Color Average": one colour matrix, run repeatedly.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "effects/ColorAverage.h"
#include "effects/ColorEmphase.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Twist = float[3][4];

float FromBits(uint32_t bits) {
    float value;
    memcpy(&value, &bits, 4);
    return value;
}

// The matrices by their bit patterns: 1.4, -0.2, -0.4, -0.55.
const float a = FromBits(0x3FB33333), b = FromBits(0xBE4CCCCD), c = FromBits(0xBECCCCCD), d = FromBits(0xBF0CCCCD);
const Twist kEmphase = {{a, b, b, c}, {b, a, b, d}, {b, b, a, c}};
const Twist kAverage = {{0.75f, 0.125f, 0.125f, 0.75f}, {0.125f, 0.75f, 0.125f, 1.0f}, {0.125f, 0.125f, 0.75f, 0.75f}};

std::vector<uint8_t> Twisted(std::vector<uint8_t> frame, int width, int height, const Twist& twist, int times) {
    for (int i = 0; i < times; ++i) primiColorTwist32f_8u_AC4IR(frame.data(), width * 4, {width, height}, twist);
    return frame;
}

struct TwistEffect {
    Effect_Base* (*create)();
    const Twist* matrix;
};

class ColorTwistEffect : public ::testing::TestWithParam<TwistEffect> {};

TEST_P(ColorTwistEffect, AppliesItsMatrixTimesTimes) {
    for (int times : {3, 1, 16}) {
        auto frame = kvtest::RandomBytes(21 * 3 * 4, times);
        auto expected = Twisted(frame, 21, 3, *GetParam().matrix, times);
        Effect_Base* effect = GetParam().create();
        EffectArgs args = {{times}};
        if (times != 3) effect->SetArgs(&args);
        EXPECT_EQ(effect->Proc(frame.data(), 21, 3), 0);
        EXPECT_EQ(frame, expected) << times << " times";
        delete effect;
    }
}

TEST_P(ColorTwistEffect, TimesClampToOneToSixteen) {
    Effect_Base* effect = GetParam().create();
    EffectArgs args = {{0}};
    effect->SetArgs(&args);
    effect->GetArgs(&args);
    EXPECT_EQ(args.word[0], 1);
    args.word[0] = 17;
    effect->SetArgs(&args);
    effect->GetArgs(&args);
    EXPECT_EQ(args.word[0], 16);
    delete effect;
}

INSTANTIATE_TEST_SUITE_P(Each, ColorTwistEffect,
                         ::testing::Values(TwistEffect{ColorEmphase::CreateInstance, &kEmphase},
                                           TwistEffect{ColorAverage::CreateInstance, &kAverage}));

TEST(ColorTwistEffect, WorkedPixels) {
    // Emphase on gray (100, 100, 100): 1.4*100 - 0.2*200 - 0.4 = 99.6 -> 100,
    // and 99.45 -> 99 in the middle row.
    unsigned char pixel[4] = {100, 100, 100, 7};
    Effect_Base* emphase = ColorEmphase::CreateInstance();
    EffectArgs once = {{1}};
    emphase->SetArgs(&once);
    emphase->Proc(pixel, 1, 1);
    EXPECT_EQ(std::vector<uint8_t>(pixel, pixel + 4), (std::vector<uint8_t>{100, 99, 100, 7}));
    delete emphase;
}

}  // namespace
