#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/Guess.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"
#include "test_support.h"

namespace {

TEST(GuessEffect, EqualsTheGaussFilterOfTheReplicatedFrame) {
    const int sizes[][2] = {{1, 1}, {3, 2}, {5, 5}, {18, 3}};
    for (int kernel : {0, 1}) {
        const auto& gauss = kvtest::FixedFilterNamed(kernel == 0 ? "Gauss3x3" : "Gauss5x5");
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, kernel * 10 + size[0]);
            const kvtest::Replicated at{frame, size[0], size[1]};
            auto expected = kvtest::WithColours(frame, size[0], size[1],
                                                [&](int x, int y, int c) { return gauss.At(at, x, y, c); });
            EXPECT_EQ(kvtest::Processed(Guess::CreateInstance, frame, size[0], size[1], &kernel), expected)
                << "kernel " << kernel << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(GuessEffect, SetArgsClampsTheKernelChoiceToZeroOrOne) {
    EXPECT_EQ(kvtest::StoredWord0(Guess::CreateInstance, 5), 1);
    EXPECT_EQ(kvtest::StoredWord0(Guess::CreateInstance, -2), 0);
    EXPECT_EQ(kvtest::StoredWord0(Guess::CreateInstance, 1), 1);
}

TEST(GuessEffect, MakesAFreshBufferOnEveryCall) {
    auto frame = kvtest::RandomBytes(5 * 5 * 4, 3);
    Effect_Base* guess = Guess::CreateInstance();
    kvtest::AllocationCounter counter;
    guess->Proc(frame.data(), 5, 5);
    guess->Proc(frame.data(), 5, 5);
    EXPECT_EQ(counter.taken, 4) << "a buffer and the filter's scratch, each call";
    delete guess;
    EXPECT_EQ(counter.given, counter.taken);
}

}  // namespace
