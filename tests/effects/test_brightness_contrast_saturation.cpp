#include <gtest/gtest.h>

#include "effects/BrightnessAndContrastAndSaturation.h"
#include "test_support.h"
#include "tone_reference.h"

namespace {

// Brightness saturates; saturation raises negatives to 0 and lets values
// above 255 through to contrast; only the end is clamped.
std::vector<uint8_t> Combined(std::vector<uint8_t> frame, int brightness, int contrast, int saturation) {
    frame = kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
        b = kvtest::Clamp255(b + brightness);
        g = kvtest::Clamp255(g + brightness);
        r = kvtest::Clamp255(r + brightness);
    });
    if (contrast == 0 && saturation == 0) return frame;
    const kvtest::SaturationReference tables(saturation);
    return kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
        int values[3] = {b, g, r};
        const int sum = b + g + r;
        for (int& v : values) {
            if (saturation != 0) v = std::max(tables(v, sum), 0);
            if (contrast != 0) v = kvtest::ContrastReference(v, 2 * contrast);
            v = kvtest::Clamp255(v);
        }
        b = values[0], g = values[1], r = values[2];
    });
}

TEST(BrightnessAndContrastAndSaturationEffect, EqualsTheStagesOnRandomFrames) {
    const int settings[][3] = {{0, 0, 0},       {30, 0, 0},    {0, 50, 0},     {0, 0, -60},
                               {10, 200, 200},  {0, 200, 200}, {0, -200, 200}, {-5, 200, -200},
                               {0, -200, -200}, {7, 3, 128},   {0, -1, -128},  {200, 150, 170}};
    for (const auto& s : settings) {
        for (const auto& size : kvtest::kFrameSizes) {
            auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, size[0] * 7 + s[1]);
            auto expected = Combined(frame, s[0], s[1], s[2]);
            ASSERT_EQ(
                kvtest::ProcWith<BrightnessAndContrastAndSaturation>(kvtest::Words(s[0], s[1], s[2]), frame, size), 0);
            ASSERT_EQ(frame, expected) << s[0] << " " << s[1] << " " << s[2] << " on " << size[0] << "x" << size[1];
        }
    }
}

TEST(BrightnessAndContrastAndSaturationEffect, NegativeBrightnessTurnsPositiveAfterItsFirstFrame) {
    Effect_Base* effect = Kelvarine_NewInstance(1040);
    EffectArgs args = kvtest::Words(-20), read = {};
    effect->SetArgs(&args);
    unsigned char pixel[4] = {100, 10, 250, 3};
    effect->Proc(pixel, 1, 1);
    const unsigned char darker[4] = {80, 0, 230, 3}, brighter[4] = {100, 20, 250, 3};
    EXPECT_TRUE(std::equal(pixel, pixel + 4, darker));
    effect->GetArgs(&read);
    EXPECT_EQ(read.word[0], 20);
    effect->Proc(pixel, 1, 1);
    EXPECT_TRUE(std::equal(pixel, pixel + 4, brighter));
    Kelvarine_Destory(effect);
}

TEST(BrightnessAndContrastAndSaturationEffect, ClampsEachWordAndReadsBackThree) {
    BrightnessAndContrastAndSaturation effect;
    EffectArgs args = kvtest::Words(300, -300, 5), read = {{9, 9, 9, 9, 9, 9}};
    EXPECT_EQ(effect.SetArgs(&args), 0);
    effect.GetArgs(&read);
    const EffectArgs held = {{200, -200, 5, 9, 9, 9}};
    EXPECT_TRUE(std::equal(read.word, read.word + 6, held.word));
}

}  // namespace
