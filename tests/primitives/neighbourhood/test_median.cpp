// The per-channel medians, general and of fixed shape, against the middle of
// the sorted window; the sorting networks on every window of two values. The
// colour median: each pixel takes the colours of the window pixel with the
// smallest summed distance to the others, the first in row-major order among
// equals.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <random>
#include <vector>

#include "jump_index.h"
#include "window_images.h"

namespace {

using kvtest::Images;
using kvtest::ImageUnderTest;
using kvtest::Rectangle;
using kvtest::Window;

// Random images of every shape, with all byte values and with few (so that
// windows hold many ties), through filter(images): each colour byte of the
// region must be the middle of its window's sorted bytes, all else stays.
template <class Filter>
void ExpectMedians(const Window& window, Filter filter, uint32_t& seed) {
    std::vector<uint8_t> values(window.size());
    for (const auto& shape : kvtest::WindowShapes())
        for (int levels : {256, 2, 5}) {
            Images images({shape.width, shape.height}, window, shape.padding, shape.offset, seed += 2);
            for (uint8_t& b : images.src.bytes) b = uint8_t(b % levels * (255 / (levels - 1)));
            ImageUnderTest expected = images.dst;
            for (int32_t y = 0; y < shape.height; ++y)
                for (int32_t x = 0; x < shape.width; ++x)
                    for (int c = 0; c < 3; ++c) {
                        for (size_t k = 0; k < window.size(); ++k) values[k] = images.at(x, y, window[k], c);
                        std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
                        expected.at(x, y, c) = values[values.size() / 2];
                    }
            ASSERT_EQ(filter(images), PrimOk);
            ASSERT_EQ(images.dst.bytes, expected.bytes) << shape.width << "x" << shape.height << " levels " << levels;
        }
}

Window Cross(int32_t reach) {
    Window window = Rectangle({2 * reach + 1, 1}, {reach, 0});
    for (int32_t d = 1; d <= reach; ++d) window.insert(window.end(), {{0, -d}, {0, d}});
    return window;
}

using FixedShapeFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t);

class MedianFilter : public EveryJumpIndex {};

TEST_P(MedianFilter, EveryMaskAndAnchorGivesTheMiddleOfTheSortedWindow) {
    const PrimSize masks[] = {{1, 1}, {3, 3}, {5, 5}, {3, 1}, {5, 1}, {1, 3}, {1, 5}, {7, 7},
                              {3, 5}, {5, 3}, {7, 1}, {1, 7}, {1, 9}, {9, 3}, {3, 11}};
    std::mt19937 random(7);
    uint32_t seed = 1000;
    for (const PrimSize mask : masks) {
        const PrimPoint anchors[] = {{mask.width / 2, mask.height / 2},
                                     {0, 0},
                                     {mask.width - 1, mask.height - 1},
                                     {int32_t(random() % mask.width), int32_t(random() % mask.height)}};
        for (const PrimPoint anchor : anchors) {
            SCOPED_TRACE(testing::Message() << "mask " << mask.width << "x" << mask.height << " anchor " << anchor.x
                                            << "," << anchor.y);
            ExpectMedians(Rectangle(mask, anchor), [&](Images& i) {
                return primiFilterMedian_8u_AC4R(i.region(), i.src.step, i.dst.data(), i.dst.step, i.dst.size, mask,
                                                 anchor);
            }, seed);
        }
    }
    const struct {
        FixedShapeFilter filter;
        int32_t mask;
        Window window;
    } forms[] = {
        {primiFilterMedianHoriz_8u_AC4R, MaskSize3x1, Rectangle({3, 1}, {1, 0})},
        {primiFilterMedianHoriz_8u_AC4R, MaskSize5x1, Rectangle({5, 1}, {2, 0})},
        {primiFilterMedianVert_8u_AC4R, MaskSize1x3, Rectangle({1, 3}, {0, 1})},
        {primiFilterMedianVert_8u_AC4R, MaskSize1x5, Rectangle({1, 5}, {0, 2})},
        {primiFilterMedianCross_8u_AC4R, MaskSize3x3, Cross(1)},
        {primiFilterMedianCross_8u_AC4R, MaskSize5x5, Cross(2)},
    };
    for (const auto& f : forms) {
        SCOPED_TRACE(testing::Message() << "fixed form, mask code " << f.mask);
        ExpectMedians(f.window, [&](Images& i) {
            return f.filter(i.region(), i.src.step, i.dst.data(), i.dst.step, i.dst.size, f.mask);
        }, seed);
    }
}

// Random windows almost never meet the extreme ones, but a network of
// minima and maxima exact for every window of two values is exact for all.
// The square networks sort each column first, so only the count of high
// values in each column matters: every combination of counts is tried (7776
// for 5x5), and every pattern of a one-wide column.
TEST_P(MedianFilter, NetworksAreExactForEveryWindowOfTwoValues) {
    for (const PrimSize mask : {PrimSize{3, 3}, PrimSize{5, 5}, PrimSize{1, 7}, PrimSize{1, 9}}) {
        const bool square = mask.width > 1;
        const int base = square ? mask.height + 1 : 2, digits = square ? mask.width : mask.height;
        int patterns = 1;
        for (int i = 0; i < digits; ++i) patterns *= base;
        ImageUnderTest src(mask.width, mask.height, 0, 0, 1), dst(1, 1, 0, 0, 2);
        for (int pattern = 0; pattern < patterns; ++pattern) {
            int highs = 0;
            for (int32_t x = 0; x < mask.width; ++x)
                for (int32_t y = 0; y < mask.height; ++y) {
                    int digit = pattern;
                    for (int skip = square ? x : y; skip > 0; --skip) digit /= base;
                    digit %= base;
                    // A column's high values at its top in channel 0, at its bottom in channel 1.
                    const bool high0 = square ? y < digit : digit == 1;
                    const bool high1 = square ? mask.height - 1 - y < digit : digit == 1;
                    src.at(x, y, 0) = high0 ? 200 : 10;
                    src.at(x, y, 1) = high1 ? 200 : 10;
                    highs += high0;
                }
            ASSERT_EQ(primiFilterMedian_8u_AC4R(src.data(), src.step, dst.data(), dst.step, {1, 1}, mask, {0, 0}),
                      PrimOk);
            const uint8_t median = 2 * highs > mask.width * mask.height ? 200 : 10;
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
    const PrimSize size = dst.size;
    EXPECT_EQ(primiFilterMedian_8u_AC4R(nullptr, s, out, d, {0, 4}, {3, 3}, {1, 1}), PrimNullPtrErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, 0, out, d, {4, 0}, {2, 2}, {1, 1}), PrimSizeErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, 0, size, {4, 4}, {1, 1}), PrimStepErr);
    for (const PrimSize even : {PrimSize{2, 3}, PrimSize{3, 2}, PrimSize{0, 3}})
        EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, even, {9, 9}), PrimMaskSizeErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, {3, 3}, {-1, 0}), PrimAnchorErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, {3, 3}, {0, 3}), PrimAnchorErr);
    // Each fixed form accepts its own two codes and no other; the colour
    // median 3x3 and 5x5.
    const struct {
        FixedShapeFilter filter;
        int32_t refused[3];
    } forms[] = {{primiFilterMedianHoriz_8u_AC4R, {MaskSize3x3, MaskSize1x3, MaskSize1x5}},
                 {primiFilterMedianVert_8u_AC4R, {MaskSize3x3, MaskSize3x1, MaskSize5x1}},
                 {primiFilterMedianCross_8u_AC4R, {MaskSize3x1, MaskSize1x3, 0}},
                 {primiFilterMedianColor_8u_AC4R, {MaskSize3x1, MaskSize1x5, 77}}};
    for (const auto& form : forms) {
        EXPECT_EQ(form.filter(in, s, nullptr, d, {0, 0}, 0), PrimNullPtrErr);
        EXPECT_EQ(form.filter(in, 0, out, d, {4, 0}, 0), PrimSizeErr);
        EXPECT_EQ(form.filter(in, s, out, -1, size, 0), PrimStepErr);
        for (int32_t code : form.refused) EXPECT_EQ(form.filter(in, s, out, d, size, code), PrimMaskSizeErr);
    }
    EXPECT_EQ(dst.bytes, before);
}

// Masks one pixel wide and seven or more high are the only ones that need
// memory; when it is refused, nothing is written.
TEST_P(MedianFilter, OnlyTheOnePixelWidePathAllocatesAndItsFailureWritesNothing) {
    ImageUnderTest src(9, 17, 0, 0, 3), dst(9, 8, 0, 0, 4);
    const std::vector<uint8_t> before = dst.bytes;
    auto filter = [&](int32_t x, int32_t width, PrimSize mask) {
        return primiFilterMedian_8u_AC4R(&src.at(x, 4, 0), src.step, dst.data(), dst.step, {width, 8}, mask,
                                         {mask.width / 2, mask.height / 2});
    };
    kvtest::FailingAllocations failing;
    EXPECT_EQ(filter(0, 9, {1, 7}), PrimMemAllocErr);
    EXPECT_EQ(dst.bytes, before);
    for (PrimSize mask : {PrimSize{7, 1}, PrimSize{7, 7}, PrimSize{5, 5}, PrimSize{1, 5}})
        EXPECT_EQ(filter(3, 3, mask), PrimOk) << mask.width << "x" << mask.height;
}

int32_t Distance(const uint8_t* p, const uint8_t* q) {
    return std::abs(p[0] - q[0]) + std::abs(p[1] - q[1]) + std::abs(p[2] - q[2]);
}

// Palettes of two or three colours, each pixel with a fourth byte of its
// own, make scores tie often, and the fourth byte would sway them if it
// counted.
TEST_P(MedianFilter, ColourMedianTakesThePixelOfLeastSummedDistanceFirstAmongEquals) {
    uint32_t seed = 3000;
    for (int32_t edge : {3, 5})
        for (const auto& shape : kvtest::WindowShapes())
            for (int colours : {0, 2, 3}) {
                const Window window = Rectangle({edge, edge}, {edge / 2, edge / 2});
                Images images({shape.width, shape.height}, window, shape.padding, shape.offset, seed += 2);
                const std::vector<uint8_t> palette = kvtest::RandomBytes(3 * 3, seed);
                std::mt19937 random(seed);
                for (size_t i = 0; colours > 0 && i + 4 <= images.src.bytes.size(); i += 4)
                    std::copy_n(&palette[3 * (random() % colours)], 3, &images.src.bytes[i]);
                ImageUnderTest expected = images.dst;
                for (int32_t y = 0; y < shape.height; ++y)
                    for (int32_t x = 0; x < shape.width; ++x) {
                        const uint8_t* best = nullptr;
                        int32_t bestScore = INT32_MAX;
                        for (const auto& o : window) {
                            int32_t score = 0;
                            for (const auto& other : window) score += Distance(&images.at(x, y, o, 0), &images.at(x, y, other, 0));
                            if (score < bestScore) best = &images.at(x, y, o, 0), bestScore = score;
                        }
                        std::copy_n(best, 3, &expected.at(x, y, 0));
                    }
                ASSERT_EQ(primiFilterMedianColor_8u_AC4R(images.region(), images.src.step, images.dst.data(),
                                                         images.dst.step, images.dst.size,
                                                         edge == 3 ? MaskSize3x3 : MaskSize5x5),
                          PrimOk);
                ASSERT_EQ(images.dst.bytes, expected.bytes)
                    << edge << "x" << edge << " image " << shape.width << "x" << shape.height << " colours " << colours;
            }
}


KV_ALL_JUMP_INDICES(MedianFilter);

}  // namespace
