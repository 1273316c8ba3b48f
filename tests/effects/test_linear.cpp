#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/Linear.h"
#include "padded_effect_support.h"
#include "test_support.h"

namespace {

using kvtest::Replicated;

// -1 around weight w over the replicated frame, divided by w - 8 (1 when
// that is 0): by the exact quotient rounded to nearest with ties to even for
// the powers of two, else by the float reciprocal rounded to nearest even.
std::vector<uint8_t> LinearReference(const std::vector<uint8_t>& frame, int width, int height, int weight) {
    const Replicated at{frame, width, height};
    const int divisor = weight == 8 ? 1 : weight - 8;
    return kvtest::WithColours(frame, width, height, [&](int x, int y, int c) {
        int v = (weight + 1) * at(x, y, c);
        for (int j = -1; j <= 1; ++j)
            for (int i = -1; i <= 1; ++i) v -= at(x + i, y + j, c);
        double r;
        if (divisor == 1) {
            r = v;
        } else if (divisor == 2) {
            r = std::nearbyint(v / 2.0);
        } else {
            r = std::nearbyint(float(v) * (1.0f / float(divisor)));
        }
        return uint8_t(std::min(std::max(r, 0.0), 255.0));
    });
}

TEST(LinearEffect, EqualsTheWeightedKernelOnRandomFrames) {
    const int sizes[][2] = {{1, 1}, {2, 3}, {4, 2}, {9, 5}, {30, 3}};
    for (int weight = 1; weight <= 10; ++weight)
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, weight * 50 + size[0]);
            EXPECT_EQ(kvtest::Processed(Linear::CreateInstance, frame, size[0], size[1], &weight),
                      LinearReference(frame, size[0], size[1], weight))
                << "weight " << weight << " " << size[0] << "x" << size[1];
        }
}

TEST(LinearEffect, FlatAreasKeepTheirValueButAtWeightEight) {
    std::vector<uint8_t> flat;
    for (int i = 0; i < 6 * 4; ++i) flat.insert(flat.end(), {90, 17, 200, 33});
    EXPECT_EQ(kvtest::Processed(Linear::CreateInstance, flat, 6, 4), flat) << "default weight 2: -6v / -6";
    const int eight = 8;
    auto edges = kvtest::Processed(Linear::CreateInstance, flat, 6, 4, &eight);
    for (size_t i = 0; i < edges.size(); ++i) EXPECT_EQ(edges[i], i % 4 == 3 ? 33 : 0);
}

TEST(LinearEffect, DefaultWeightIsTwoAndSetArgsClampsToOneToTen) {
    EXPECT_EQ(kvtest::StoredWord0(Linear::CreateInstance, 0), 1);
    EXPECT_EQ(kvtest::StoredWord0(Linear::CreateInstance, 11), 10);
    EXPECT_EQ(kvtest::StoredWord0(Linear::CreateInstance, 7), 7);
    Effect_Base* linear = Linear::CreateInstance();
    EffectArgs args = {{0}};
    linear->GetArgs(&args);
    EXPECT_EQ(args.word[0], 2);
    delete linear;
}

// The size it was made for is never recorded: every call makes a new
// buffer (and the convolution a scratch block of its own).
TEST(LinearEffect, MakesAFreshBufferOnEveryCall) {
    auto frame = kvtest::RandomBytes(8 * 3 * 4, 2);
    Effect_Base* linear = Linear::CreateInstance();
    kvtest::AllocationCounter counter;
    for (int call = 1; call <= 3; ++call) {
        linear->Proc(frame.data(), 8, 3);
        EXPECT_EQ(counter.taken, 2 * call);
        EXPECT_EQ(counter.given, 2 * call - 1) << "the last buffer is kept until the next call";
    }
    delete linear;
    EXPECT_EQ(counter.given, counter.taken);
}

}  // namespace
