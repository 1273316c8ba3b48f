#include <gtest/gtest.h>

#include <cmath>

#include "effects/Linear.h"
#include "padded_effect_support.h"

namespace {

// -1 around the weight w, divided by w - 8 (1 when that is 0): the exact
// quotient by 2 to nearest even, any other divisor by its float reciprocal
// to nearest even. A flat area keeps its value but at weight 8.
TEST(LinearEffect, EqualsTheWeightedKernelForEveryWeight) {
    for (int weight = 1; weight <= 10; ++weight) {
        const int divisor = weight == 8 ? 1 : weight - 8;
        kvtest::ExpectOnRandomFrames(Linear::CreateInstance, weight, [&](const kvtest::Replicated& at, int x, int y, int c) {
            int v = (weight + 1) * at(x, y, c);
            for (int j = -1; j <= 1; ++j)
                for (int i = -1; i <= 1; ++i) v -= at(x + i, y + j, c);
            const double r = divisor == 2 ? std::nearbyint(v / 2.0) : std::nearbyint(float(v) * (1.0f / float(divisor)));
            return uint8_t(std::min(std::max(r, 0.0), 255.0));
        });
    }
}

TEST(LinearEffect, DefaultWeightIsTwoAndSetArgsClampsToOneToTen) {
    EXPECT_EQ(kvtest::StoredWord0(Linear::CreateInstance, 0), 1);
    EXPECT_EQ(kvtest::StoredWord0(Linear::CreateInstance, 11), 10);
    Effect_Base* linear = Linear::CreateInstance();
    EffectArgs args = {{0}};
    linear->GetArgs(&args);
    EXPECT_EQ(args.word[0], 2);
    delete linear;
}

// The size the buffer was made for is never recorded, so every call makes
// a new one (and the convolution a scratch block of its own).
TEST(LinearEffect, MakesAFreshBufferOnEveryCall) {
    auto frame = kvtest::RandomBytes(8 * 3 * 4, 2);
    Effect_Base* linear = Linear::CreateInstance();
    kvtest::AllocationCounter counter;
    for (int call = 1; call <= 3; ++call) {
        linear->Proc(frame.data(), 8, 3);
        EXPECT_EQ(counter.taken, 2 * call);
        EXPECT_EQ(counter.given, 2 * call - 1) << "the last buffer stays until the next call";
    }
    delete linear;
    EXPECT_EQ(counter.given, counter.taken);
}

}  // namespace
