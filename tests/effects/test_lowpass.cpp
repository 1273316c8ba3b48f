#include <gtest/gtest.h>

#include "effects/Lowpass.h"
#include "kelvarine.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"
#include "test_support.h"

namespace {

TEST(LowpassEffect, EqualsTheLowpassFilterOfTheReplicatedFrame) {
    const auto& lowpass = kvtest::FixedFilterNamed("Lowpass3x3");
    const int sizes[][2] = {{1, 1}, {2, 7}, {6, 3}, {21, 4}};
    Effect_Base* denoise = Kelvarine_NewInstance(1067);
    ASSERT_NE(denoise, nullptr);
    for (const auto& size : sizes) {
        auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, size[0] + 7);
        const kvtest::Replicated at{frame, size[0], size[1]};
        auto expected =
            kvtest::WithColours(frame, size[0], size[1], [&](int x, int y, int c) { return lowpass.At(at, x, y, c); });
        EXPECT_EQ(denoise->Proc(frame.data(), size[0], size[1]), 0);
        EXPECT_EQ(frame, expected) << size[0] << "x" << size[1];
    }
    Kelvarine_Destory(denoise);
}

// Unguarded: the copy and the filter refuse a null frame, and Proc still
// returns 0. The buffer goes within the call.
TEST(LowpassEffect, NullFrameIsRefusedByThePrimitivesAndEachCallReleasesItsBuffer) {
    Effect_Base* denoise = CLowpass::CreateInstance();
    kvtest::AllocationCounter counter;
    EXPECT_EQ(denoise->Proc(nullptr, 4, 4), 0);
    auto frame = kvtest::RandomBytes(4 * 4 * 4, 4);
    const auto before = frame;
    EXPECT_EQ(denoise->Proc(frame.data(), 4, -1), 0);
    EXPECT_EQ(frame, before);
    EXPECT_EQ(denoise->Proc(frame.data(), 4, 4), 0);
    EXPECT_EQ(counter.given, counter.taken);
    delete denoise;
}

}  // namespace
