// The effects that filter a padded copy of the frame with a box, a fixed
// or a weighted kernel, against the filters' references on the replicated
// frame; their words and buffers.
#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "effects/Box.h"
#include "effects/EdgeDetect.h"
#include "effects/Guess.h"
#include "effects/Linear.h"
#include "effects/Lowpass.h"
#include "neighbourhood_effect_support.h"
#include "primitives/neighbourhood/box_reference.h"
#include "primitives/neighbourhood/fixed_reference.h"

namespace {

using kvtest::Replicated;

// The mean of the edge-by-edge window whose anchor, half the edge, lies on
// the pixel.
TEST(BoxEffect, EqualsTheMeanOfTheReplicatedFrameForEveryEdge) {
    for (int edge = 1; edge <= 10; ++edge)
        kvtest::ExpectOnRandomFrames(Box::CreateInstance, edge, [edge](const Replicated& at, int x, int y, int c) {
            uint32_t s = 0;
            for (int j = 0; j < edge; ++j)
                for (int i = 0; i < edge; ++i) s += at(x - edge / 2 + i, y - edge / 2 + j, c);
            return kvtest::BoxMean(s, edge, edge);
        });
}

// Box defaults to edge 10 and Linear to weight 2, both clamped to 1..10;
// Guess to kernel 0, clamped to 0 or 1.
TEST(ConvolutionEffects, DefaultsAndClampedWords) {
    kvtest::ExpectPresetAndClamps(1001, 10, {{0, 1}, {-1, 1}, {11, 10}, {7, 7}});
    kvtest::ExpectPresetAndClamps(1012, 2, {{0, 1}, {11, 10}, {9, 9}});
    kvtest::ExpectPresetAndClamps(1011, 0, {{5, 1}, {-2, 0}, {1, 1}});
}

// The padded size is recorded: edges 3 and 2 both pad by 2 and share the
// buffer. (Edge 3 runs the 3x3 filter, which takes no scratch; edge 2 the
// running-sum filter, which takes one block a call.)
TEST(BoxEffect, KeepsItsBufferWhileThePaddedSizeHolds) {
    auto frame = kvtest::RandomBytes(9 * 6 * 4, 1);
    Effect_Base* box = Box::CreateInstance();
    kvtest::AllocationCounter counter;
    for (auto [edge, width, taken] : {std::tuple{3, 8, 1}, {3, 8, 1}, {2, 8, 2}, {2, 9, 4}}) {
        EffectArgs args = {{edge}};
        box->SetArgs(&args);
        box->Proc(frame.data(), width, 6);
        EXPECT_EQ(counter.taken, taken) << edge << " " << width;
    }
    delete box;
    EXPECT_EQ(counter.given, counter.taken);
}

// Box, Edge Detect, Guess and Linear are guarded in the words of Box.
TEST(BoxEffect, ItAndItsSiblingsRefuseInTheWordsOfBox) {
    kvtest::ExpectGuarded({1001, 1008, 1011, 1012}, 3, 0, "Box");
}

// Word 0 picks the 3x3 or the 5x5 Gauss kernel; Lowpass has no words. The
// variant that SetArgs derives from Edge Detect's word 0 picks the
// horizontal Prewitt filter for 0 and the second form of every other one.
TEST(FixedKernelEffects, EachRunsItsFilterOnTheReplicatedFrame) {
    const struct {
        Effect_Base* (*create)();
        int word0;
        const char* filter;
    } cases[] = {{Guess::CreateInstance, 0, "Gauss3x3"},         {Guess::CreateInstance, 1, "Gauss5x5"},
                 {CLowpass::CreateInstance, 0, "Lowpass3x3"},    {EdgeDetect::CreateInstance, 0, "PrewittHoriz"},
                 {EdgeDetect::CreateInstance, 1, "SobelVert"},   {EdgeDetect::CreateInstance, 2, "RobertsUp"},
                 {EdgeDetect::CreateInstance, 3, "Laplace5x5"},  {EdgeDetect::CreateInstance, 4, "Hipass5x5"},
                 {EdgeDetect::CreateInstance, 5, "Gauss5x5"},    {EdgeDetect::CreateInstance, 6, "Lowpass5x5"}};
    for (const auto& c : cases) {
        const auto& filter = kvtest::FixedFilterNamed(c.filter);
        kvtest::ExpectOnRandomFrames(c.create, c.word0,
                                     [&](const Replicated& at, int x, int y, int ch) { return filter.At(at, x, y, ch); });
    }
}

// Word 1 is never read; GetArgs reports the variant there.
TEST(FixedKernelEffects, EdgeDetectVariantFollowsTheFilterWhateverWordOneSays) {
    Effect_Base* edges = EdgeDetect::CreateInstance();
    EffectArgs args = {{5, 5, 5}};
    edges->GetArgs(&args);
    EXPECT_EQ(args.word[0], 0);
    EXPECT_EQ(args.word[1], 0);
    EXPECT_EQ(args.word[2], 5);
    for (auto [given, filter, variant] : {std::tuple{3, 3, 1}, {0, 0, 0}, {9, 6, 1}, {-4, 0, 0}}) {
        args = {{given, 7}};
        edges->SetArgs(&args);
        edges->GetArgs(&args);
        EXPECT_EQ(args.word[0], filter) << given;
        EXPECT_EQ(args.word[1], variant) << given;
    }
    delete edges;
}

// Lowpass is unguarded: the copy and the filter refuse a null frame or an
// empty size, and Proc still returns 0. Each call gives its buffer back.
TEST(FixedKernelEffects, LowpassRefusesQuietlyAndReleasesItsBuffer) {
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

// -1 around the weight w, divided by w - 8 (1 when that is 0): the exact
// quotient by 2 to nearest even, any other divisor by its float reciprocal
// to nearest even.
TEST(LinearEffect, EqualsTheWeightedKernelForEveryWeight) {
    for (int weight = 1; weight <= 10; ++weight) {
        const int divisor = weight == 8 ? 1 : weight - 8;
        kvtest::ExpectOnRandomFrames(Linear::CreateInstance, weight, [&](const Replicated& at, int x, int y, int c) {
            int v = (weight + 1) * at(x, y, c);
            for (int j = -1; j <= 1; ++j)
                for (int i = -1; i <= 1; ++i) v -= at(x + i, y + j, c);
            const double r = divisor == 2 ? std::nearbyint(v / 2.0) : std::nearbyint(float(v) * (1.0f / float(divisor)));
            return uint8_t(std::min(std::max(r, 0.0), 255.0));
        });
    }
}

// The size the buffer was made for is never recorded, so every call makes a
// new one (and the convolution a scratch block of its own); the last stays
// until the next call.
TEST(LinearEffect, MakesAFreshBufferOnEveryCall) {
    auto frame = kvtest::RandomBytes(8 * 3 * 4, 2);
    Effect_Base* linear = Linear::CreateInstance();
    kvtest::AllocationCounter counter;
    for (int call = 1; call <= 3; ++call) {
        linear->Proc(frame.data(), 8, 3);
        EXPECT_EQ(counter.taken, 2 * call);
        EXPECT_EQ(counter.given, 2 * call - 1);
    }
    delete linear;
    EXPECT_EQ(counter.given, counter.taken);
}

}  // namespace
