#include <gtest/gtest.h>

#include "effects/Lowpass.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"

namespace {

TEST(LowpassEffect, EqualsTheLowpassFilterOfTheReplicatedFrame) {
    const auto& lowpass = kvtest::FixedFilterNamed("Lowpass3x3");
    kvtest::ExpectOnRandomFrames(CLowpass::CreateInstance, 0,
                                 [&](const kvtest::Replicated& at, int x, int y, int c) { return lowpass.At(at, x, y, c); });
}

// Unguarded: the copy and the filter refuse a null frame or an empty size,
// and Proc still returns 0. Each call gives its buffer back.
TEST(LowpassEffect, RefusedFramesReturnZeroAndEachCallReleasesItsBuffer) {
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
