#include <gtest/gtest.h>

#include "box_reference.h"
#include "jump_index.h"
#include "padded_source.h"

namespace {

using kvtest::Destination;
using kvtest::PaddedSource;

class FilterBox : public EveryJumpIndex {
protected:
    // The filter on a random source whose reach is exactly the mask's, into
    // a random destination; every destination byte is compared.
    void ExpectMeans(PrimSize roi, PrimSize mask, PrimPoint anchor, uint32_t seed) {
        kvtest::Reach reach{anchor.x, anchor.y, mask.width - 1 - anchor.x, mask.height - 1 - anchor.y};
        PaddedSource src(roi, reach, int32_t(seed % 3) * 4, seed);
        Destination dst(roi, int32_t(seed % 2) * 12, seed + 1);
        auto expected = dst.Expected([&](int x, int y, int c) {
            uint32_t s = 0;
            for (int j = 0; j < mask.height; ++j)
                for (int i = 0; i < mask.width; ++i) s += src.at(x - anchor.x + i, y - anchor.y + j, c);
            return kvtest::BoxMean(s, mask.width, mask.height);
        });
        ASSERT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, roi, mask, anchor), PrimOk);
        ASSERT_EQ(dst.bytes, expected) << roi.width << "x" << roi.height << " mask " << mask.width << "x"
                                       << mask.height << " anchor " << anchor.x << "," << anchor.y;
    }
};

TEST_P(FilterBox, EqualsTheMeanOfEachPathOnRandomImages) {
    const PrimSize masks[] = {{1, 1}, {1, 2}, {2, 1}, {2, 2}, {3, 1}, {1, 3}, {3, 3}, {4, 1},
                              {3, 4}, {5, 5}, {7, 7}, {10, 10}, {13, 2}, {2, 9}};
    uint32_t seed = 0;
    for (PrimSize mask : masks)
        for (PrimSize roi : kvtest::AwkwardRegions())
            for (PrimPoint anchor : {PrimPoint{0, 0}, PrimPoint{mask.width - 1, mask.height - 1},
                                     PrimPoint{mask.width / 2, (mask.height - 1) / 2}})
                ExpectMeans(roi, mask, anchor, ++seed);
}

// 8100 is the largest area of the integer path; one element more takes the
// float path, whose rounding differs.
TEST_P(FilterBox, LargeMasksOnEitherSideOfTheFloatThreshold) {
    const PrimSize masks[] = {{90, 90}, {8100, 1}, {8101, 1}, {1, 8101}, {91, 91}, {100, 82}};
    uint32_t seed = 500;
    for (PrimSize mask : masks)
        for (PrimSize roi : {PrimSize{1, 1}, PrimSize{6, 3}, PrimSize{9, 2}})
            ExpectMeans(roi, mask, {mask.width / 3, mask.height / 2}, ++seed);
}

// Past 2^24 the float sums round, and the order of the additions counts:
// columns add rows top to bottom, a row's sum adds columns left to right,
// and it slides as (sum + entering) - leaving.
TEST_P(FilterBox, FloatPathSumsColumnsInOrderOnceSumsRound) {
    // Near-white windows above 2^24, where additions round: a rare 254 in a
    // column makes it odd, and the means lie just below 255, where the order
    // in which a row's first columns are added decides the truncation.
    const PrimSize roi{12, 3}, mask{300, 260};
    const PrimPoint anchor{150, 130};
    PaddedSource src(roi, {anchor.x, anchor.y, mask.width - 1 - anchor.x, mask.height - 1 - anchor.y}, 0, 77);
    std::fill(src.bytes.begin(), src.bytes.end(), 255);
    std::mt19937 generator(5);
    for (int x = -anchor.x; x < roi.width + mask.width - 1 - anchor.x; ++x)
        for (int c = 0; c < 3; ++c)
            if (generator() % 100 == 0) src.byte(x, int(generator() % mask.height) - anchor.y, c) = 254;
    Destination dst(roi, 4, 78);

    // Column sums of each output row: rows added top to bottom, then
    // (float)(entering - leaving) + column per row.
    const int columnCount = mask.width + roi.width - 1;
    auto sourceByte = [&](int column, int row, int c) { return src.at(column - anchor.x, row - anchor.y, c); };
    std::vector<std::vector<float>> columnSums(roi.height, std::vector<float>(columnCount * 3, 0.0f));
    for (int k = 0; k < columnCount * 3; ++k)
        for (int row = 0; row < mask.height; ++row) columnSums[0][k] += float(sourceByte(k / 3, row, k % 3));
    for (int y = 1; y < roi.height; ++y)
        for (int k = 0; k < columnCount * 3; ++k)
            columnSums[y][k] = float(sourceByte(k / 3, y - 1 + mask.height, k % 3) - sourceByte(k / 3, y - 1, k % 3)) +
                               columnSums[y - 1][k];
    const float scale = 1.0f / float(mask.width * mask.height);
    auto expected = dst.Expected([&](int x, int y, int c) {
        const auto& columns = columnSums[y];
        float sum = 0.0f;
        for (int i = 0; i < mask.width; ++i) sum += columns[i * 3 + c];
        for (int i = 0; i < x; ++i) sum = (sum + columns[(i + mask.width) * 3 + c]) - columns[i * 3 + c];
        return uint8_t(std::min(int(scale * sum + 9.0e-6f), 255));
    });
    ASSERT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, roi, mask, anchor), PrimOk);
    EXPECT_EQ(dst.bytes, expected);
}

TEST_P(FilterBox, WhiteStaysWhiteOnEveryPath) {
    for (PrimSize mask : {PrimSize{3, 3}, PrimSize{2, 1}, PrimSize{7, 5}, PrimSize{90, 90}, PrimSize{91, 91}}) {
        PaddedSource src({5, 2}, {0, 0, mask.width - 1, mask.height - 1}, 0, 1);
        std::fill(src.bytes.begin(), src.bytes.end(), 255);
        Destination dst({5, 2}, 0, 2);
        auto expected = dst.Expected([](int, int, int) { return 255; });
        ASSERT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {5, 2}, mask, {0, 0}), PrimOk);
        EXPECT_EQ(dst.bytes, expected) << mask.width << "x" << mask.height;
    }
}

TEST_P(FilterBox, HalvesTruncateAndTheNinthIsSlightlyHigh) {
    // 1x2: sums 1 and 3 give 0 and 1. 3x3: 2295 gives 255, and 9 * 28 = 252
    // gives 28 while 251 gives 27.
    auto meanOf = [](std::vector<uint8_t> column, PrimSize mask) {
        PaddedSource src({1, 1}, {0, 0, mask.width - 1, mask.height - 1}, 0, 3);
        for (size_t i = 0; i < column.size(); ++i) src.bytes[4 * i] = column[i];
        Destination dst({1, 1}, 0, 4);
        primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {1, 1}, mask, {0, 0});
        return int(dst.bytes[0]);
    };
    EXPECT_EQ(meanOf({0, 1}, {1, 2}), 0);
    EXPECT_EQ(meanOf({1, 2}, {1, 2}), 1);
    EXPECT_EQ(meanOf({1, 2}, {2, 1}), 1);
    EXPECT_EQ(meanOf({28, 28, 28, 28, 28, 28, 28, 28, 28}, {3, 3}), 28);
    EXPECT_EQ(meanOf({28, 28, 28, 28, 28, 28, 28, 28, 27}, {3, 3}), 27);
}

TEST(BoxMultiplier, MatchesTheWorkedTable) {
    const struct {
        int width, height;
        uint32_t multiplier, shift;
    } rows[] = {{1, 1, 4096, 12}, {3, 1, 2731, 13}, {2, 2, 4096, 14}, {5, 1, 3277, 14},
                {9, 1, 3641, 15}, {5, 5, 2622, 16}, {7, 7, 2675, 17}, {90, 90, 2072, 24}};
    for (const auto& row : rows) {
        auto m = kvtest::BoxMultiplier(row.width, row.height);
        EXPECT_EQ(m.multiplier, row.multiplier) << row.width << "x" << row.height;
        EXPECT_EQ(m.shift, row.shift) << row.width << "x" << row.height;
    }
}

TEST_P(FilterBox, ChecksArgumentsInOrderAndWritesNothingOnError) {
    PaddedSource src({4, 4}, {2, 2, 2, 2}, 0, 5);
    Destination dst({4, 4}, 0, 6);
    const auto before = dst.bytes;
    auto call = [&](const uint8_t* s, uint8_t* d, int32_t srcStep, int32_t dstStep, PrimSize roi, PrimSize mask,
                    PrimPoint anchor) { return primiFilterBox_8u_AC4R(s, srcStep, d, dstStep, roi, mask, anchor); };
    const uint8_t* s = src.roi();
    uint8_t* d = dst.data();
    EXPECT_EQ(call(nullptr, d, 0, 16, {4, 4}, {3, 3}, {1, 1}), PrimNullPtrErr);
    EXPECT_EQ(call(s, nullptr, src.step, 16, {0, 4}, {3, 3}, {1, 1}), PrimNullPtrErr);
    // Steps come ahead of the size here.
    EXPECT_EQ(call(s, d, src.step, 0, {0, 4}, {3, 3}, {1, 1}), PrimStepErr);
    EXPECT_EQ(call(s, d, -4, 16, {4, 4}, {3, 3}, {1, 1}), PrimStepErr);
    EXPECT_EQ(call(s, d, src.step, 16, {4, 0}, {0, 3}, {1, 1}), PrimSizeErr);
    EXPECT_EQ(call(s, d, src.step, 16, {4, 4}, {3, -1}, {5, 1}), PrimMaskSizeErr);
    EXPECT_EQ(call(s, d, src.step, 16, {4, 4}, {3, 3}, {3, 1}), PrimAnchorErr);
    EXPECT_EQ(call(s, d, src.step, 16, {4, 4}, {3, 3}, {1, -1}), PrimAnchorErr);
    EXPECT_EQ(dst.bytes, before);
}

TEST_P(FilterBox, FailedScratchGivesMemAllocErrAndWritesNothing) {
    PaddedSource src({5, 3}, {45, 45, 45, 45}, 0, 7);
    Destination dst({5, 3}, 0, 8);
    const auto before = dst.bytes;
    kvtest::FailingAllocations failing;
    EXPECT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {5, 3}, {4, 4}, {2, 2}),
              PrimMemAllocErr);
    EXPECT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {5, 3}, {91, 91}, {45, 45}),
              PrimMemAllocErr);
    EXPECT_EQ(dst.bytes, before);
    // The 3x3 path needs no memory.
    EXPECT_EQ(primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {5, 3}, {3, 3}, {1, 1}), PrimOk);
}

KV_ALL_JUMP_INDICES(FilterBox);

}  // namespace
