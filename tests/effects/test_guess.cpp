#include <gtest/gtest.h>

#include "effects/Guess.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"

namespace {

TEST(GuessEffect, EqualsTheGaussFilterOfTheReplicatedFrame) {
    for (int kernel : {0, 1}) {
        const auto& gauss = kvtest::FixedFilterNamed(kernel == 0 ? "Gauss3x3" : "Gauss5x5");
        kvtest::ExpectOnRandomFrames(Guess::CreateInstance, kernel,
                                     [&](const kvtest::Replicated& at, int x, int y, int c) { return gauss.At(at, x, y, c); });
    }
}

TEST(GuessEffect, SetArgsClampsTheKernelChoiceToZeroOrOne) {
    EXPECT_EQ(kvtest::StoredWord0(Guess::CreateInstance, 5), 1);
    EXPECT_EQ(kvtest::StoredWord0(Guess::CreateInstance, -2), 0);
}

}  // namespace
