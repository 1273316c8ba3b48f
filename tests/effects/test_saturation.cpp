#include <gtest/gtest.h>

#include "effects/Saturation.h"
#include "test_support.h"
#include "tone_reference.h"

namespace {

TEST(SaturationEffect, EqualsTheTablesOnRandomFrames) {
    for (int amount : {-999, -128, -127, -1, 1, 2, 64, 128, 201}) {
        const kvtest::SaturationReference tables(std::clamp(amount, -200, 200));
        for (const auto& size : kvtest::kFrameSizes) {
            auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, size[1] + amount);
            auto expected = kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
                int sum = b + g + r;
                for (int* v : {&b, &g, &r}) *v = kvtest::Clamp255(tables(*v, sum));
            });
            ASSERT_EQ(kvtest::ProcWith<Saturation>(kvtest::Words(amount), frame, size), 0);
            ASSERT_EQ(frame, expected) << "amount " << amount << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(SaturationEffect, GrayStaysGrayAndAmountZeroLeavesFrameAndTables) {
    std::vector<uint8_t> grays(256 * 4);
    for (int v = 0; v < 256; ++v) std::fill_n(&grays[4 * v], 4, static_cast<uint8_t>(v));
    Saturation effect;
    for (auto [amount, factor] : {std::pair{128, 511}, {-200, -145}, {-128, -1}}) {
        auto frame = grays;
        effect.Saturation_proc(frame.data(), 256, 1, amount);
        EXPECT_EQ(frame, grays) << "amount " << amount;
        EXPECT_EQ(effect.factor, factor);
    }
    auto frame = kvtest::RandomBytes(40, 3);
    const auto before = frame;
    effect.Saturation_proc(frame.data(), 10, 1, 0);
    EXPECT_EQ(frame, before);
    EXPECT_EQ(effect.factor, -1);
    EXPECT_EQ(effect.lastAmount, -128);
}

}  // namespace
