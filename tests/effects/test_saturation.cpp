#include <gtest/gtest.h>

#include "effects/Saturation.h"
#include "test_support.h"
#include "tone_reference.h"

namespace {

TEST(SaturationEffect, EqualsTheTablesOnRandomFrames) {
    for (int amount : {-200, -128, -127, -1, 1, 2, 64, 128, 200}) {
        const kvtest::SaturationReference tables(amount);
        for (const auto& size : kvtest::kFrameSizes) {
            auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, size[1] + amount);
            auto expected = kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
                int sum = b + g + r;
                b = kvtest::Clamp255(tables(b, sum));
                g = kvtest::Clamp255(tables(g, sum));
                r = kvtest::Clamp255(tables(r, sum));
            });
            ASSERT_EQ(kvtest::ProcWith<Saturation>(kvtest::Words(amount), frame, size), 0);
            ASSERT_EQ(frame, expected) << "amount " << amount << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(SaturationEffect, GrayStaysGrayAndTheFactorFollowsTheAmount) {
    std::vector<uint8_t> grays(256 * 4);
    for (int v = 0; v < 256; ++v) grays[4 * v] = grays[4 * v + 1] = grays[4 * v + 2] = grays[4 * v + 3] = v;
    Saturation effect;
    for (auto [amount, factor] : {std::pair{128, 511}, {-200, -145}, {-128, -1}}) {
        auto frame = grays;
        effect.Saturation_proc(frame.data(), 256, 1, amount);
        EXPECT_EQ(frame, grays) << "amount " << amount;
        EXPECT_EQ(effect.factor, factor);
        EXPECT_EQ(effect.lastAmount, amount);
    }
}

TEST(SaturationEffect, AmountZeroLeavesFrameAndTablesAlone) {
    Saturation effect;
    effect.Saturation_proc(std::vector<uint8_t>(4).data(), 1, 1, 5);
    auto frame = kvtest::RandomBytes(40, 3);
    const auto before = frame;
    effect.Saturation_proc(frame.data(), 10, 1, 0);
    EXPECT_EQ(frame, before);
    EXPECT_EQ(effect.factor, 265);
    EXPECT_EQ(effect.lastAmount, 5);
}

TEST(SaturationEffect, ClampsItsAmountAndDefaultsToTwo) {
    Saturation effect;
    EffectArgs read = {};
    effect.GetArgs(&read);
    EXPECT_EQ(read.word[0], 2);
    EffectArgs args = kvtest::Words(-201);
    EXPECT_EQ(effect.SetArgs(&args), 0);
    effect.GetArgs(&read);
    EXPECT_EQ(read.word[0], -200);
}

}  // namespace
