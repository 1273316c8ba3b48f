#include <gtest/gtest.h>

#include "effects/Contrast.h"
#include "tone_reference.h"

namespace {

TEST(ContrastEffect, EveryValueForEveryAmount) {
    // 86 pixels hold each byte value once in their colour bytes, and their
    // last two take the pixel-by-pixel path.
    std::vector<uint8_t> values(86 * 4, 0x5A);
    for (int v = 0; v < 256; ++v) values[v / 3 * 4 + v % 3] = static_cast<uint8_t>(v);
    const int size[2] = {86, 1};
    for (int amount = -201; amount <= 201; ++amount) {
        const int k = 2 * std::clamp(amount, -200, 200);
        auto expected = kvtest::EachPixel(values, [k](int& b, int& g, int& r) {
            for (int* v : {&b, &g, &r}) *v = kvtest::Clamp255(kvtest::ContrastReference(*v, k));
        });
        auto frame = values;
        ASSERT_EQ(kvtest::ProcWith<Contrast>(kvtest::Words(amount), frame, size), 0);
        ASSERT_EQ(frame, expected) << "amount " << amount;
    }
}

TEST(ContrastEffect, WorkedValuesAtTheEndsAndTheMiddle) {
    Contrast effect;
    unsigned char pixels[8] = {0, 255, 127, 9, 128, 0, 0, 9};
    effect.Contrast_proc(pixels, 2, 1, 200);
    const unsigned char stretched[8] = {0, 255, 127, 9, 129, 0, 0, 9};  // 128: 1 * 400 / 255 = 1 up
    EXPECT_TRUE(std::equal(pixels, pixels + 8, stretched));
    unsigned char inverted[4] = {0, 255, 127, 9};
    effect.Contrast_proc(inverted, 1, 1, -200);
    EXPECT_EQ(inverted[0], 199);
    EXPECT_EQ(inverted[1], 55);
    EXPECT_EQ(inverted[2], 127);

    EffectArgs read = {};
    effect.GetArgs(&read);
    EXPECT_EQ(read.word[0], 2) << "the default";
}

}  // namespace
