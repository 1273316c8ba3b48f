// The per-channel medians: primiFilterMedian_8u_AC4R with every kind of mask
// and anchor, and the fixed row, column and cross forms, against the middle
// of the sorted window.
#include <gtest/gtest.h>

#include <algorithm>
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

// Every byte reduced to one of a few values, so that windows hold many ties.
void ToLevels(ImageUnderTest& image, int levels) {
    for (uint8_t& b : image.bytes) b = static_cast<uint8_t>(b % levels * (255 / (levels - 1)));
}

// The destination as it must be: each colour byte of the region is the
// middle value of its window's sorted bytes; all else stays.
std::vector<uint8_t> Expected(Images& images, const Window& window) {
    ImageUnderTest expected = images.dst;
    std::vector<uint8_t> values(window.size());
    for (int32_t y = 0; y < expected.size.height; ++y)
        for (int32_t x = 0; x < expected.size.width; ++x)
            for (int c = 0; c < 3; ++c) {
                for (size_t k = 0; k < window.size(); ++k)
                    values[k] = images.src.at(images.reach.left + x + window[k].dx, images.reach.up + y + window[k].dy, c);
                std::sort(values.begin(), values.end());
                expected.at(x, y, c) = values[values.size() / 2];
            }
    return expected.bytes;
}

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
                                     {static_cast<int32_t>(random() % mask.width), static_cast<int32_t>(random() % mask.height)}};
        for (const PrimPoint anchor : anchors)
            for (const auto& shape : kvtest::WindowShapes())
                for (int levels : {256, 2, 5}) {
                    const Window window = Rectangle(mask, anchor);
                    Images images({shape.width, shape.height}, window, shape.padding, shape.offset, seed += 2);
                    if (levels < 256) ToLevels(images.src, levels);
                    const std::vector<uint8_t> expected = Expected(images, window);
                    ASSERT_EQ(primiFilterMedian_8u_AC4R(images.region(), images.src.step, images.dst.data(),
                                                        images.dst.step, images.dst.size, mask, anchor),
                              PrimOk);
                    ASSERT_EQ(images.dst.bytes, expected)
                        << "mask " << mask.width << "x" << mask.height << " anchor " << anchor.x << "," << anchor.y
                        << " image " << shape.width << "x" << shape.height << " levels " << levels;
                }
    }
}

// A de Bruijn sequence: every string of `order` symbols below `symbols`
// appears once as a window of it, read cyclically; the first order - 1
// symbols are repeated at the end so that the windows need no wrapping.
std::vector<int> DeBruijn(int symbols, int order) {
    std::vector<int> a(symbols * order + 1, 0), sequence;
    auto extend = [&](auto& self, int t, int period) -> void {
        if (t > order) {
            if (order % period == 0) sequence.insert(sequence.end(), a.begin() + 1, a.begin() + period + 1);
            return;
        }
        a[t] = a[t - period];
        self(self, t + 1, period);
        for (int j = a[t - period] + 1; j < symbols; ++j) {
            a[t] = j;
            self(self, t + 1, t);
        }
    };
    extend(extend, 1, 1);
    sequence.insert(sequence.end(), sequence.begin(), sequence.begin() + order - 1);
    return sequence;
}

void ExpectMedianOfEveryWindow(Images& images, PrimSize mask, PrimPoint anchor) {
    const std::vector<uint8_t> expected = Expected(images, Rectangle(mask, anchor));
    ASSERT_EQ(primiFilterMedian_8u_AC4R(images.region(), images.src.step, images.dst.data(), images.dst.step,
                                        images.dst.size, mask, anchor),
              PrimOk);
    EXPECT_EQ(images.dst.bytes, expected) << "mask " << mask.width << "x" << mask.height;
}

// A network of minima and maxima that gives the median of every window of
// two values gives it for all values. The square networks sort each column
// first, so what matters is how many high values each column holds: one
// image row of square windows over a de Bruijn sequence of those counts
// meets every combination (7776 of them for 5x5), in every channel.
TEST_P(MedianFilter, SquareNetworksAreExactForEveryWindowOfTwoValues) {
    std::mt19937 random(11);
    for (int32_t edge : {3, 5}) {
        const std::vector<int> counts = DeBruijn(edge + 1, edge);
        const int32_t width = static_cast<int32_t>(counts.size()) - (edge - 1);
        const PrimSize mask = {edge, edge};
        const PrimPoint anchor = {edge / 2, edge / 2};
        Images images({width, 1}, Rectangle(mask, anchor), 4, 1, 30 + edge);
        for (int c = 0; c < 3; ++c)
            for (int32_t x = 0; x < images.src.size.width; ++x) {
                std::vector<int> rows(edge);
                for (int r = 0; r < edge; ++r) rows[r] = r;
                std::shuffle(rows.begin(), rows.end(), random);
                const int high = counts[(x + 97 * c) % counts.size()];
                for (int k = 0; k < edge; ++k) images.src.at(x, rows[k], c) = k < high ? 200 : 10;
            }
        ExpectMedianOfEveryWindow(images, mask, anchor);
    }
}

// The one-pixel-wide path is a network too: columns over a de Bruijn
// sequence of bits meet every pattern of nine (and so of seven) pixels.
TEST_P(MedianFilter, OnePixelWideNetworkIsExactForEveryColumnOfTwoValues) {
    const std::vector<int> bits = DeBruijn(2, 9);
    for (const PrimSize mask : {PrimSize{1, 7}, PrimSize{1, 9}}) {
        const PrimPoint anchor = {0, mask.height / 2};
        Images images({5, static_cast<int32_t>(bits.size()) - mask.height + 1}, Rectangle(mask, anchor), 0, 2, 40);
        for (int32_t y = 0; y < images.src.size.height; ++y)
            for (int32_t x = 0; x < 5; ++x)
                for (int c = 0; c < 3; ++c)
                    images.src.at(x, y, c) = bits[(y + 37 * x + 101 * c) % (bits.size() - 8)] ? 99 : 3;
        ExpectMedianOfEveryWindow(images, mask, anchor);
    }
}

using FixedShapeFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t);

Window Cross(int32_t reach) {
    Window window;
    for (int32_t d = -reach; d <= reach; ++d) window.push_back({d, 0});
    for (int32_t d = -reach; d <= reach; ++d)
        if (d != 0) window.push_back({0, d});
    return window;
}

TEST_P(MedianFilter, RowColumnAndCrossFormsGiveTheMiddleOfTheirWindows) {
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
    for (const auto& c : cases)
        for (const auto& shape : kvtest::WindowShapes())
            for (int levels : {256, 2, 5}) {
                Images images({shape.width, shape.height}, c.window, shape.padding, shape.offset, seed += 2);
                if (levels < 256) ToLevels(images.src, levels);
                const std::vector<uint8_t> expected = Expected(images, c.window);
                ASSERT_EQ(c.filter(images.region(), images.src.step, images.dst.data(), images.dst.step,
                                   images.dst.size, c.mask),
                          PrimOk);
                ASSERT_EQ(images.dst.bytes, expected)
                    << "mask " << c.mask << " image " << shape.width << "x" << shape.height << " levels " << levels;
            }
}

TEST_P(MedianFilter, ArgumentsAreCheckedInOrderAndAnErrorWritesNothing) {
    ImageUnderTest src(12, 12, 0, 0, 1), dst(4, 4, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    const uint8_t* in = &src.at(4, 4, 0);
    uint8_t* out = dst.data();
    const int32_t s = src.step, d = dst.step;
    const PrimSize size = dst.size, m3 = {3, 3};
    const PrimPoint a1 = {1, 1};

    EXPECT_EQ(primiFilterMedian_8u_AC4R(nullptr, s, out, d, {0, 4}, m3, a1), PrimNullPtrErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, nullptr, 0, size, {2, 2}, a1), PrimNullPtrErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, 0, out, d, {4, 0}, m3, a1), PrimSizeErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, 0, size, {4, 4}, a1), PrimStepErr);
    EXPECT_EQ(primiFilterMedian_8u_AC4R(in, -s, out, d, size, m3, {-1, 0}), PrimStepErr);
    for (const PrimSize even : {PrimSize{2, 3}, PrimSize{3, 2}, PrimSize{4, 4}, PrimSize{0, 3}, PrimSize{3, -1}})
        EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, even, {9, 9}), PrimMaskSizeErr);
    for (const PrimPoint outside : {PrimPoint{-1, 0}, PrimPoint{0, -1}, PrimPoint{3, 0}, PrimPoint{0, 3}})
        EXPECT_EQ(primiFilterMedian_8u_AC4R(in, s, out, d, size, m3, outside), PrimAnchorErr);

    for (FixedShapeFilter filter :
         {primiFilterMedianHoriz_8u_AC4R, primiFilterMedianVert_8u_AC4R, primiFilterMedianCross_8u_AC4R}) {
        EXPECT_EQ(filter(in, s, nullptr, d, {0, 0}, 0), PrimNullPtrErr);
        EXPECT_EQ(filter(in, 0, out, d, {4, 0}, 0), PrimSizeErr);
        EXPECT_EQ(filter(in, s, out, -1, size, 0), PrimStepErr);
        EXPECT_EQ(filter(in, s, out, d, size, 0), PrimMaskSizeErr);
    }
    // Each accepts its own two codes and no other.
    for (int32_t code : {MaskSize3x3, MaskSize5x5, MaskSize1x3, MaskSize1x5})
        EXPECT_EQ(primiFilterMedianHoriz_8u_AC4R(in, s, out, d, size, code), PrimMaskSizeErr);
    for (int32_t code : {MaskSize3x3, MaskSize5x5, MaskSize3x1, MaskSize5x1})
        EXPECT_EQ(primiFilterMedianVert_8u_AC4R(in, s, out, d, size, code), PrimMaskSizeErr);
    for (int32_t code : {MaskSize3x1, MaskSize1x3, MaskSize5x1, MaskSize1x5})
        EXPECT_EQ(primiFilterMedianCross_8u_AC4R(in, s, out, d, size, code), PrimMaskSizeErr);
    EXPECT_EQ(dst.bytes, before);
}

void* (*gSystemMalloc)(size_t) = nullptr;
void* RefusingMalloc(size_t) { return nullptr; }

// Masks one pixel wide and seven or more high are the only ones that need
// memory; when it is refused, nothing is written.
TEST_P(MedianFilter, OnlyTheOnePixelWidePathAllocatesAndItsFailureWritesNothing) {
    ImageUnderTest src(9, 17, 0, 0, 3), dst(9, 8, 0, 0, 4);
    const std::vector<uint8_t> before = dst.bytes;
    gSystemMalloc = i_malloc;
    i_malloc = RefusingMalloc;
    const PrimStatus oneWide = primiFilterMedian_8u_AC4R(&src.at(0, 4, 0), src.step, dst.data(), dst.step, dst.size,
                                                         {1, 7}, {0, 3});
    const std::vector<uint8_t> afterOneWide = dst.bytes;
    const PrimStatus others[] = {
        primiFilterMedian_8u_AC4R(&src.at(3, 4, 0), src.step, dst.data(), dst.step, {3, 8}, {7, 1}, {3, 0}),
        primiFilterMedian_8u_AC4R(&src.at(3, 4, 0), src.step, dst.data(), dst.step, {3, 8}, {7, 7}, {3, 3}),
        primiFilterMedian_8u_AC4R(&src.at(2, 2, 0), src.step, dst.data(), dst.step, {3, 8}, {5, 5}, {2, 2}),
        primiFilterMedian_8u_AC4R(&src.at(2, 2, 0), src.step, dst.data(), dst.step, {3, 8}, {1, 5}, {0, 2}),
    };
    i_malloc = gSystemMalloc;
    EXPECT_EQ(oneWide, PrimMemAllocErr);
    EXPECT_EQ(afterOneWide, before);
    for (PrimStatus status : others) EXPECT_EQ(status, PrimOk);
    EXPECT_NE(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(MedianFilter);

}  // namespace
