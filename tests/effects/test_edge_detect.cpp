#include <gtest/gtest.h>

#include "effects/EdgeDetect.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"

namespace {

// The variant that SetArgs derives from word 0 picks the horizontal
// Prewitt filter for 0 and the second form of every other filter.
TEST(EdgeDetectEffect, EachWordRunsItsFilterOnTheReplicatedFrame) {
    const char* const filters[] = {"PrewittHoriz", "SobelVert", "RobertsUp", "Laplace5x5",
                                   "Hipass5x5",    "Gauss5x5",  "Lowpass5x5"};
    for (int word = 0; word <= 6; ++word) {
        const auto& filter = kvtest::FixedFilterNamed(filters[word]);
        kvtest::ExpectOnRandomFrames(EdgeDetect::CreateInstance, word,
                                     [&](const kvtest::Replicated& at, int x, int y, int c) { return filter.At(at, x, y, c); });
    }
}

// Word 1 is never read; GetArgs reports the variant there.
TEST(EdgeDetectEffect, VariantFollowsTheFilterWhateverWordOneSays) {
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

}  // namespace
