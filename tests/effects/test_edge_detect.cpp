#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/EdgeDetect.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/fixed_reference.h"
#include "test_support.h"

namespace {

// Word 0 picks the filter; the variant that SetArgs derives from it picks
// the horizontal Prewitt filter for 0 and the second form of the others.
const char* const kFilterOfWord[] = {"PrewittHoriz", "SobelVert",  "RobertsUp", "Laplace5x5",
                                     "Hipass5x5",    "Gauss5x5",   "Lowpass5x5"};

TEST(EdgeDetectEffect, EachWordRunsItsFilterOnTheReplicatedFrame) {
    const int sizes[][2] = {{1, 1}, {2, 3}, {5, 4}, {23, 3}};
    for (int word = 0; word <= 6; ++word) {
        const auto& filter = kvtest::FixedFilterNamed(kFilterOfWord[word]);
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, word * 31 + size[0]);
            const kvtest::Replicated at{frame, size[0], size[1]};
            auto expected = kvtest::WithColours(frame, size[0], size[1],
                                                [&](int x, int y, int c) { return filter.At(at, x, y, c); });
            EXPECT_EQ(kvtest::Processed(EdgeDetect::CreateInstance, frame, size[0], size[1], &word), expected)
                << "word " << word << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(EdgeDetectEffect, DefaultIsTheHorizontalPrewittFilter) {
    auto frame = kvtest::RandomBytes(6 * 4 * 4, 9);
    const auto& prewitt = kvtest::FixedFilterNamed("PrewittHoriz");
    const kvtest::Replicated at{frame, 6, 4};
    auto expected = kvtest::WithColours(frame, 6, 4, [&](int x, int y, int c) { return prewitt.At(at, x, y, c); });
    EXPECT_EQ(kvtest::Processed(EdgeDetect::CreateInstance, frame, 6, 4), expected);
}

// Word 1 is never read; GetArgs reports the variant there.
TEST(EdgeDetectEffect, VariantFollowsTheFilterWhateverWordOneSays) {
    Effect_Base* edges = EdgeDetect::CreateInstance();
    EffectArgs args = {{5, 5, 5, 5, 5, 5}};
    edges->GetArgs(&args);
    EXPECT_EQ(args.word[0], 0);
    EXPECT_EQ(args.word[1], 0);
    EXPECT_EQ(args.word[2], 5);
    for (auto [given, filter, variant] : {std::tuple{3, 3, 1}, {0, 0, 0}, {9, 6, 1}, {-4, 0, 0}}) {
        args = {{given, 7}};
        edges->SetArgs(&args);
        args.word[1] = 7;
        edges->GetArgs(&args);
        EXPECT_EQ(args.word[0], filter) << given;
        EXPECT_EQ(args.word[1], variant) << given;
    }
    delete edges;
}

}  // namespace
