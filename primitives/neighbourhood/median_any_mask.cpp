// Medians over masks of any odd size that have no network of their own.
//
// Masks more than one pixel wide slide a histogram along each row: moving
// the window one pixel right takes one pixel out of each window row and puts
// one in, so a pixel costs the mask's height, not its area. Masks one pixel
// wide rank their column by partial bubble sorting, four pixels a vector.
#include "primitives/frame/memory.h"
#include "primitives/neighbourhood/median_common.h"

namespace PRIM_BUILD {
namespace {

// One channel of one row. window is that channel's byte in the top-left
// pixel of the row's first window; count is all zero on entry and on return.
// The median m is tracked with the number of window values at or below it:
// each move of the window adjusts that number, and m then walks from where
// it was to the smallest value whose count reaches threshold.
void SlideHistogramAlongRow(const uint8_t* window, int32_t srcStep, uint8_t* to, int32_t width, PrimSize mask,
                            int32_t threshold, uint32_t* count) {
    const ptrdiff_t step = srcStep, across = 4 * static_cast<ptrdiff_t>(mask.width);
    for (int32_t r = 0; r < mask.height; ++r)
        for (int32_t i = 0; i < mask.width; ++i) ++count[window[r * step + 4 * i]];
    int32_t median = 0;
    int32_t atOrBelow = static_cast<int32_t>(count[0]);
    while (atOrBelow < threshold) atOrBelow += static_cast<int32_t>(count[++median]);

    for (int32_t x = 0; x + 1 < width; ++x) {
        to[4 * x] = static_cast<uint8_t>(median);
        const uint8_t* leaving = window + 4 * static_cast<ptrdiff_t>(x);
        for (int32_t r = 0; r < mask.height; ++r, leaving += step) {
            const uint8_t out = leaving[0], in = leaving[across];
            --count[out];
            ++count[in];
            atOrBelow += (in <= median) - (out <= median);
        }
        if (atOrBelow < threshold) {
            do atOrBelow += static_cast<int32_t>(count[++median]);
            while (atOrBelow < threshold);
        } else {
            do atOrBelow -= static_cast<int32_t>(count[median--]);
            while (atOrBelow >= threshold);
            atOrBelow += static_cast<int32_t>(count[++median]);
        }
    }
    to[4 * static_cast<ptrdiff_t>(width - 1)] = static_cast<uint8_t>(median);

    // Clearing only what the last window counted is cheaper than clearing
    // every counter.
    const uint8_t* last = window + 4 * static_cast<ptrdiff_t>(width - 1);
    for (int32_t r = 0; r < mask.height; ++r)
        for (int32_t i = 0; i < mask.width; ++i) count[last[r * step + 4 * i]] = 0;
}

// src is the top-left pixel of the first window of the region. The three
// colour channels of a row are ranked one after another; the window is
// counted afresh at the start of each row.
void SlideHistograms(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, PrimSize mask) {
    const int32_t threshold =
        static_cast<int32_t>((static_cast<uint32_t>(mask.width) * static_cast<uint32_t>(mask.height)) >> 1) + 1;
    uint32_t count[256] = {};
    for (int32_t y = 0; y < size.height; ++y) {
        for (int c = 0; c < 3; ++c) {
            SlideHistogramAlongRow(PixelAt(src, srcStep, y, 0) + c, srcStep, PixelAt(dst, dstStep, y, 0) + c,
                                   size.width, mask, threshold, count);
        }
    }
}

// One bubble pass over column[0..limit]: the largest value ends in
// column[limit], carried along in a register.
inline void BubbleLargestUp(__m128i* column, int32_t limit) {
    __m128i carried = column[0];
    for (int32_t i = 0; i < limit; ++i) {
        const __m128i next = column[i + 1];
        column[i] = _mm_min_epu8(carried, next);
        carried = _mm_max_epu8(carried, next);
    }
    column[limit] = carried;
}

// A mask one pixel wide and height pixels high; src is the top pixel of the
// first window. Passes with limits height - 1 down to height / 2 put the
// upper half of the column in order, the median first.
PrimStatus PartialSortColumns(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                              int32_t height) {
    // One vector of four pixels per element of the column.
    if (height > INT32_MAX / 4) return PrimMemAllocErr;
    __m128i* column = reinterpret_cast<__m128i*>(primsMalloc_32s(4 * height));
    if (column == nullptr) return PrimMemAllocErr;
    const int32_t middle = height >> 1;
    for (int32_t y = 0; y < size.height; ++y) {
        const uint8_t* from = PixelAt(src, srcStep, y, 0);
        uint8_t* to = PixelAt(dst, dstStep, y, 0);
        ForEachGroup(size.width, [&](int32_t x, auto io) {
            for (int32_t r = 0; r < height; ++r) column[r] = io.Load(PixelAt(from, srcStep, r, x));
            for (int32_t limit = height - 1; limit >= middle; --limit) BubbleLargestUp(column, limit);
            io.StoreColour(to + 4 * x, column[middle]);
        });
    }
    primFree(column);
    return PrimOk;
}

}  // namespace

PrimStatus ownprimiFilterMedianCom_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                                      PrimSize mask) {
    if (mask.width == 1) return PartialSortColumns(src, srcStep, dst, dstStep, size, mask.height);
    SlideHistograms(src, srcStep, dst, dstStep, size, mask);
    return PrimOk;
}

}  // namespace PRIM_BUILD
