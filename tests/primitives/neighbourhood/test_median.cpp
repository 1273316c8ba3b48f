// The per-channel medians: primiFilterMedian_8u_AC4R with every kind of mask
// and anchor, and the fixed row, column and cross forms, against the middle
// of the sorted window.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "jump_index.h"
#include "window_images.h"

namespace {

using kvtest::Images;
using kvtest::ImageUnderTest;
using kvtest::Rectangle;
using kvtest::Window;

// The destination as it must be: each colour byte of the region is the
// middle value of its window's sorted bytes; all else stays.
std::vector<uint8_t> Expected(Images& images, const Window& window) {
    ImageUnderTest expected = images.dst;
    std::vector<uint8_t> values(window.size());
    for (int32_t y = 0; y < expected.size.height; ++y)
        for (int32_t x = 0; x < expected.size.width; ++x)
            for (int c = 0; c < 3; ++c) {
                for (size_t k = 0; k < window.size(); ++k)
                    values[k] =
                        images.src.at(images.reach.left + x + window[k].dx, images.reach.up + y + window[k].dy, c);
                std::sort(values.begin(), values.end());
                expected.at(x, y, c) = values[values.size() / 2];
            }
    return expected.bytes;
}

// Random images of every shape, with all byte values and with few (so that
// windows hold many ties), through filter(images).
template <class Filter>
void ExpectMedians(const Window& window, Filter filter, uint32_t& seed) {
    for (const auto& shape : kvtest::WindowShapes())
        for (int levels : {256, 2, 5}) {
            Images images({shape.width, shape.height}, window, shape.padding, shape.offset, seed += 2);
            for (uint8_t& b : images.src.bytes) b = static_cast<uint8_t>(b % levels * (255 / (levels - 1)));
            const std::vector<uint8_t> expected = Expected(images, window);
            ASSERT_EQ(filter(images), PrimOk);
            ASSERT_EQ(images.dst.bytes, expected) << shape.width << "x" << shape.height << " levels " << levels;
        }
}

class MedianFilter : public EveryJumpIndex {};

TEST_P(MedianFilter, EveryMaskAndAnchorGivesTheMiddleOfTheSortedWindow) {
    const PrimSize masks[] = {{1, 1}, {3, 3}, {5, 5}, {3, 1}, {5, 1}, {1, 3}, {1, 5}, {7, 7},
                              {3, 5}, {5, 3}, {7, 1}, {1, 7}, {1, 9}, {9, 3}, {3, 11}};
    std::mt19937 random(7);
    uint32_t seed = 1000;
    for (const PrimSize mask : masks) {
        const PrimPoint anchors[] = {
            {mask.width / 2, mask.height / 2},
            {0, 0},
            {mask.width - 1, mask.height - 1},
            {static_cast<int32_t>(random() % mask.width), static_cast<int32_t>(random() % mask.height)}};
        for (const PrimPoint anchor : anchors) {
            SCOPED_TRACE(testing::Message()
                         << "mask " << mask.width << "x" << mask.height << " anchor " << anchor.x << "," << anchor.y);
            ExpectMedians(
                Rectangle(mask, anchor),
                [&](Images& i) {
                    return primiFilterMedian_8u_AC4R(i.region(), i.src.step, i.dst.data(), i.dst.step, i.dst.size, mask,
                                                     anchor);
                },
                seed);
        }
    }
}

Window Cross(int32_t reach) {
    Window window = Rectangle({2 * reach + 1, 1}, {reach, 0});
    for (int32_t d = 1; d <= reach; ++d) window.insert(window.end(), {{0, -d}, {0, d}});
    return window;
}

TEST_P(MedianFilter, RowColumnAndCrossFormsGiveTheMiddleOfTheirWindows) {
    using FixedShapeFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t);
    const struct {
        FixedShapeFilter filter;
        int32_t mask;
        Window window;
    } cases[] = {
        {primiFilterMedianHoriz_8u_AC4R, MaskSize3x1, Rectangle({3, 1}, {1, 0})},
        {primiFilterMedianHoriz_8u_AC4R, MaskSize5x1, Rectangle({5, 1}, {2, 0})},
        {primiFilterMedianVert_8u_AC4R, MaskSize1x3, Rectangle({1, 3}, {0, 1})},
        {primiFilterMedianVert_8u_AC4R, MaskSize1x5, Rectangle({1, 5}, {0, 2})},
        {primiFilterMedianCross_8u_AC4R, MaskSize3x3, Cross(1)},
        {primiFilterMedianCross_8u_AC4R, MaskSize5x5, Cross(2)},
    };
    uint32_t seed = 2000;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "mask " << c.mask);
        ExpectMedians(
            c.window,
            [&](Images& i) { return c.filter(i.region(), i.src.step, i.dst.data(), i.dst.step, i.dst.size, c.mask); },
            seed);
    }
}

// A network of minima and maxima that gives the median of every window of
// two values gives it for all values; random windows almost never meet the
// extreme ones. The square networks sort each column first, so only the
// number of high values in each column matters: every combination of those
// counts is tried (7776 for 5x5), and every pattern of a one-wide column.
TEST_P(MedianFilter, NetworksAreExactForEveryWindowOfTwoValues) {
    for (const PrimSize mask : {PrimSize{3, 3}, PrimSize{5, 5}, PrimSize{1, 7}, PrimSize{1, 9}}) {
        const bool square = mask.width > 1;
        const int base = square ? mask.height + 1 : 2, digits = square ? mask.width : mask.height;
        int patterns = 1;
        for (int i = 0; i < digits; ++i) patterns *= base;
        const int32_t area = mask.width * mask.height;
        ImageUnderTest src(mask.width, mask.height, 0, 0, 1), dst(1, 1, 0, 0, 2);
        for (int pattern = 0; pattern < patterns; ++pattern) {
            int highs = 0;
            for (int32_t x = 0; x < mask.width; ++x)
                for (int32_t y = 0; y < mask.height; ++y) {
                    int digit = pattern;
                    for (int skip = square ? x : y; skip > 0; --skip) digit /= base;
                    digit %= base;
                    // The high values of a column at its top in channel 0, at
                    // its bottom in channel 1.
                    const bool high0 = square ? y < digit : digit == 1;
                    const bool high1 = square ? mask.height - 1 - y < digit : digit == 1;
                    src.at(x, y, 0) = src.at(x, y, 2) = high0 ? 200 : 10;
                    src.at(x, y, 1) = high1 ? 200 : 10;
                    highs += high0;
                }
            ASSERT_EQ(primiFilterMedian_8u_AC4R(src.data(), src.step, dst.data(), dst.step, {1, 1}, mask, {0, 0}),
                      PrimOk);
            const uint8_t median = 2 * highs > area ? 200 : 10;
            ASSERT_EQ(dst.at(0, 0, 0), median) << mask.width << "x" << mask.height << " pattern " << pattern;
            ASSERT_EQ(dst.at(0, 0, 1), median) << mask.width << "x" << mask.height << " pattern " << pattern;
        }
    }
}

TEST_P(MedianFilter, ArgumentsAreCheckedInOrderAndAnErrorWritesNothing) {
    ImageUnderTest src(12, 12, 0, 0, 1), dst(4, 4, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    const uint8_t* in = &src.at(4, 4, 0);
    uint8_t* out = dst.data();
    const int32_t s = src.step, d = dst.step;
    const PrimSize size = dst.size, m3 = {3, 3};

    EXPECT_EQ(primiFilterMedian_8u_AC4R(nullptr, s, out, d, {0, 4}, m3, {1, 1}), PrimNullPtrErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, 0, out, d, {4, 0}, {2, 2}, {1, 1}), PrimSizeErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, 0, size, {4, 4}, {1, 1}), PrimStepErr);
    for (const PrimSize bad : {PrimSize{2, 3}, PrimSize{3, 2}, PrimSize{4, 4}, PrimSize{0, 3}, PrimSize{3, -1}})
        EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, bad, {9, 9}), PrimMaskSizeErr);
    for (const PrimPoint outside : {PrimPoint{-1, 0}, PrimPoint{0, -1}, PrimPoint{3, 0}, PrimPoint{0, 3}})
        EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, m3, outside), PrimAnchorErr);

    // Each fixed form accepts its own two codes and no other.
    const struct {
        PrimStatus (*filter)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t);
        int32_t refused[3];
    } forms[] = {{primiFilterMedianHoriz_8u_AC4R, {MaskSize3x3, MaskSize1x3, MaskSize1x5}},
                 {primiFilterMedianVert_8u_AC4R, {MaskSize3x3, MaskSize3x1, MaskSize5x1}},
                 {primiFilterMedianCross_8u_AC4R, {MaskSize3x1, MaskSize1x3, 0}}};
    for (const auto& form : forms) {
        EXPECT_EQ(form.filter(in, s, nullptr, d, {0, 0}, 0), PrimNullPtrErr);
        EXPECT_EQ(form.filter(in, 0, out, d, {4, 0}, 0), PrimSizeErr);
        EXPECT_EQ(form.filter(in, s, out, -1, size, 0), PrimStepErr);
        for (int32_t code : form.refused) EXPECT_EQ(form.filter(in, s, out, d, size, code), PrimMaskSizeErr);
    }
    EXPECT_EQ(dst.bytes, before);
}

void* RefusingMalloc(size_t) { return nullptr; }

// Masks one pixel wide and seven or more high are the only ones that need
// memory; when it is refused, nothing is written.
TEST_P(MedianFilter, OnlyTheOnePixelWidePathAllocatesAndItsFailureWritesNothing) {
    ImageUnderTest src(9, 17, 0, 0, 3), dst(9, 8, 0, 0, 4);
    const std::vector<uint8_t> before = dst.bytes;
    auto filter = [&](int32_t x, int32_t width, PrimSize mask) {
        return primiFilterMedian_8u_AC4R(&src.at(x, 4, 0), src.step, dst.data(), dst.step, {width, 8}, mask,
                                         {mask.width / 2, mask.height / 2});
    };
    void* (*systemMalloc)(size_t) = i_malloc;
    i_malloc = RefusingMalloc;
    const PrimStatus oneWide = filter(0, 9, {1, 7});
    const std::vector<uint8_t> afterOneWide = dst.bytes;
    const PrimStatus others[] = {filter(3, 3, {7, 1}), filter(3, 3, {7, 7}), filter(2, 3, {5, 5}),
                                 filter(2, 3, {1, 5})};
    i_malloc = systemMalloc;
    EXPECT_EQ(oneWide, PrimMemAllocErr);
    EXPECT_EQ(afterOneWide, before);
    for (PrimStatus status : others) EXPECT_EQ(status, PrimOk);
}

KV_ALL_JUMP_INDICES(MedianFilter);

}  // namespace
