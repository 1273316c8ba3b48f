#include <gtest/gtest.h>

#include "box_reference.h"
#include "jump_index.h"
#include "padded_source.h"

namespace {

using kvtest::Destination;
using kvtest::PaddedSource;

kvtest::Reach ReachOf(PrimSize mask, PrimPoint anchor) {
    return {anchor.x, anchor.y, mask.width - 1 - anchor.x, mask.height - 1 - anchor.y};
}

PrimStatus Box(const PaddedSource& src, Destination& dst, PrimSize mask, PrimPoint anchor) {
    return primiFilterBox_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, dst.size, mask, anchor);
}

class FilterBox : public EveryJumpIndex {};

// Masks of all three paths: 3x3, integer up to an area of 8100, float
// above. White windows too, whose means lie a hair below 255 on the float
// path, where the offset before the truncation lifts them.
TEST_P(FilterBox, EqualsTheMeanOfEachPathOnRandomAndWhiteImages) {
    const PrimSize masks[] = {{1, 1}, {1, 2}, {2, 1},   {2, 2},   {3, 1},    {1, 3},    {3, 3},   {4, 1},   {3, 4},
                              {5, 5}, {7, 7}, {10, 10}, {13, 2}, {90, 90}, {8100, 1}, {8101, 1}, {91, 91}, {8105, 1}, {1, 8106}};
    uint32_t seed = 0;
    for (PrimSize mask : masks)
        for (PrimSize roi : kvtest::AwkwardRegions()) {
            if (mask.width * mask.height > 100 && roi.width > 8) continue;
            for (PrimPoint anchor : {PrimPoint{0, 0}, PrimPoint{mask.width - 1, mask.height - 1},
                                     PrimPoint{mask.width / 2, (mask.height - 1) / 2}}) {
                ++seed;
                PaddedSource src(roi, ReachOf(mask, anchor), int32_t(seed % 3) * 4, seed);
                if (seed % 5 == 0) std::fill(src.bytes.begin(), src.bytes.end(), 255);
                Destination dst(roi, int32_t(seed % 2) * 12, seed + 1);
                auto expected = dst.Expected([&](int x, int y, int c) {
                    uint32_t s = 0;
                    for (int j = 0; j < mask.height; ++j)
                        for (int i = 0; i < mask.width; ++i) s += src.at(x - anchor.x + i, y - anchor.y + j, c);
                    return kvtest::BoxMean(s, mask.width, mask.height);
                });
                ASSERT_EQ(Box(src, dst, mask, anchor), PrimOk);
                ASSERT_EQ(dst.bytes, expected) << roi.width << "x" << roi.height << " mask " << mask.width << "x"
                                               << mask.height << " anchor " << anchor.x << "," << anchor.y;
            }
        }
}

// Past 2^24 float sums round. Near-white windows, whose rare 254s make odd
// columns, put the means just below 255, where the order of a row's first
// additions (left to right) decides the truncation.
TEST_P(FilterBox, FloatPathSumsColumnsInOrderOnceSumsRound) {
    const PrimSize roi{12, 3}, mask{300, 260};
    const PrimPoint anchor{150, 130};
    PaddedSource src(roi, ReachOf(mask, anchor), 0, 77);
    std::fill(src.bytes.begin(), src.bytes.end(), 255);
    std::mt19937 generator(5);
    for (int x = -anchor.x; x < roi.width + mask.width - 1 - anchor.x; ++x)
        for (int c = 0; c < 3; ++c)
            if (generator() % 100 == 0) src.byte(x, int(generator() % mask.height) - anchor.y, c) = 254;
    Destination dst(roi, 4, 78);
    // Column sums are exact; the row's sum starts left to right and then
    // slides as (sum + entering) - leaving.
    auto column = [&](int i, int y, int c) {
        float sum = 0.0f;
        for (int j = 0; j < mask.height; ++j) sum += float(src.at(i - anchor.x, y - anchor.y + j, c));
        return sum;
    };
    auto expected = dst.Expected([&](int x, int y, int c) {
        float sum = 0.0f;
        for (int i = 0; i < mask.width; ++i) sum += column(i, y, c);
        for (int i = 0; i < x; ++i) sum = (sum + column(i + mask.width, y, c)) - column(i, y, c);
        return uint8_t(int((1.0f / float(mask.width * mask.height)) * sum + 9.0e-6f));
    });
    ASSERT_EQ(Box(src, dst, mask, anchor), PrimOk);
    EXPECT_EQ(dst.bytes, expected);
}

// Steps come ahead of the size here. Only the 3x3 path needs no scratch.
TEST_P(FilterBox, ChecksArgumentsInOrderAndAFailedScratchWritesNothing) {
    PaddedSource src({4, 4}, {45, 45, 45, 45}, 0, 5);
    Destination dst({4, 4}, 0, 6);
    const auto before = dst.bytes;
    auto call = [&](const uint8_t* s, int32_t srcStep, int32_t dstStep, PrimSize roi, PrimSize mask, PrimPoint anchor,
                    uint8_t* d) { return primiFilterBox_8u_AC4R(s, srcStep, d, dstStep, roi, mask, anchor); };
    const uint8_t* s = src.roi();
    uint8_t* d = dst.data();
    EXPECT_EQ(call(nullptr, 0, 16, {4, 4}, {3, 3}, {1, 1}, d), PrimNullPtrErr);
    EXPECT_EQ(call(s, src.step, 16, {0, 4}, {3, 3}, {1, 1}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(call(s, src.step, 0, {0, 4}, {3, 3}, {1, 1}, d), PrimStepErr);
    EXPECT_EQ(call(s, -4, 16, {4, 4}, {3, 3}, {1, 1}, d), PrimStepErr);
    EXPECT_EQ(call(s, src.step, 16, {4, 0}, {0, 3}, {1, 1}, d), PrimSizeErr);
    EXPECT_EQ(call(s, src.step, 16, {4, 4}, {3, -1}, {5, 1}, d), PrimMaskSizeErr);
    EXPECT_EQ(call(s, src.step, 16, {4, 4}, {3, 3}, {3, 1}, d), PrimAnchorErr);
    EXPECT_EQ(call(s, src.step, 16, {4, 4}, {3, 3}, {1, -1}, d), PrimAnchorErr);
    kvtest::FailingAllocations failing;
    EXPECT_EQ(Box(src, dst, {4, 4}, {2, 2}), PrimMemAllocErr);
    EXPECT_EQ(Box(src, dst, {91, 91}, {45, 45}), PrimMemAllocErr);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_EQ(Box(src, dst, {3, 3}, {1, 1}), PrimOk);
}

KV_ALL_JUMP_INDICES(FilterBox);

// The reference's multipliers against the worked table.
TEST(BoxMultiplier, MatchesTheWorkedTable) {
    const uint32_t rows[][4] = {{1, 1, 4096, 12}, {3, 1, 2731, 13}, {2, 2, 4096, 14}, {5, 1, 3277, 14},
                                {9, 1, 3641, 15}, {5, 5, 2622, 16}, {7, 7, 2675, 17}, {90, 90, 2072, 24}};
    for (const auto& row : rows) {
        auto m = kvtest::BoxMultiplier(int(row[0]), int(row[1]));
        EXPECT_EQ(m.multiplier, row[2]) << row[0] << "x" << row[1];
        EXPECT_EQ(m.shift, row[3]) << row[0] << "x" << row[1];
    }
}

}  // namespace
