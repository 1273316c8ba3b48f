#include <gtest/gtest.h>

#include "effects/Contrast.h"
#include "test_support.h"
#include "tone_reference.h"

namespace {

std::vector<uint8_t> Contrasted(const std::vector<uint8_t>& frame, int amount) {
    return kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
        b = kvtest::Clamp255(kvtest::ContrastReference(b, 2 * amount));
        g = kvtest::Clamp255(kvtest::ContrastReference(g, 2 * amount));
        r = kvtest::Clamp255(kvtest::ContrastReference(r, 2 * amount));
    });
}

TEST(ContrastEffect, EveryValueForEveryAmount) {
    // 86 pixels hold each byte value once in their colour bytes.
    std::vector<uint8_t> values(86 * 4, 0x5A);
    for (int v = 0; v < 256; ++v) values[v / 3 * 4 + v % 3] = static_cast<uint8_t>(v);
    Contrast effect;
    for (int amount = -200; amount <= 200; ++amount) {
        auto frame = values;
        effect.Contrast_proc(frame.data(), 86, 1, amount);
        ASSERT_EQ(frame, Contrasted(values, amount)) << "amount " << amount;
    }
}

TEST(ContrastEffect, RandomFramesOfAwkwardSizes) {
    for (int amount : {-200, -3, 2, 77}) {
        for (const auto& size : kvtest::kFrameSizes) {
            auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, size[0] + amount);
            auto expected = Contrasted(frame, amount);
            ASSERT_EQ(kvtest::ProcWith<Contrast>(kvtest::Words(amount), frame, size), 0);
            ASSERT_EQ(frame, expected) << "amount " << amount << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(ContrastEffect, WorkedValuesAtTheEndsAndTheMiddle) {
    Contrast effect;
    unsigned char pixels[8] = {0, 255, 127, 9, 128, 0, 0, 9};
    effect.Contrast_proc(pixels, 2, 1, 200);
    EXPECT_EQ(pixels[0], 0);
    EXPECT_EQ(pixels[1], 255);
    EXPECT_EQ(pixels[2], 127) << "127 is the middle";
    EXPECT_EQ(pixels[4], 129) << "128 lies above it: 1 * 400 / 255 = 1";
    unsigned char inverted[4] = {0, 255, 127, 9};
    effect.Contrast_proc(inverted, 1, 1, -200);
    EXPECT_EQ(inverted[0], 199);
    EXPECT_EQ(inverted[1], 55);
    EXPECT_EQ(inverted[2], 127);
    EXPECT_EQ(inverted[3], 9);
}

TEST(ContrastEffect, ClampsItsAmountAndDefaultsToTwo) {
    Contrast effect;
    EffectArgs read = {};
    effect.GetArgs(&read);
    EXPECT_EQ(read.word[0], 2);
    for (auto [given, held] : {std::pair{201, 200}, {-999, -200}, {-7, -7}}) {
        EffectArgs args = kvtest::Words(given);
        EXPECT_EQ(effect.SetArgs(&args), 0);
        effect.GetArgs(&read);
        EXPECT_EQ(read.word[0], held);
    }
}

}  // namespace
