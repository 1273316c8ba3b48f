// The running sums of the box filter's integer and float paths. A column
// sum holds, per channel, the sum of the mask's height of source bytes above
// each other; moving down a row, the row below the window enters each
// column and the window's top row leaves it. Along an output row, a running
// sum of the mask's width of column sums slides one column a pixel. Each
// element enters and leaves each sum once, whatever the mask's size.
//
// A path supplies its sums as a class with:
//   AddRow(row)                 the row enters every column
//   MoveDown(entering, leaving) one row enters and another leaves every column
//   Column(i)                   column i as a running-sum value
//   Add(sum, column)            a column added to a running sum
//   Slide(sum, entering, leaving)
//   Mean(sum)                   four 32-bit results of one pixel
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_BOX_RUNNING_SUMS_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_BOX_RUNNING_SUMS_H

#include "primitives/neighbourhood/colour_stores.h"

namespace PRIM_BUILD {

// Sign-extends the four 16-bit lanes of one pixel to 32 bits.
inline __m128i WidenLow16(__m128i v) { return _mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16); }
inline __m128i WidenHigh16(__m128i v) { return _mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16); }

// The bytes of four pixels from `entering` at offset, less those from
// `leaving` when kLeaving (leaving is not touched otherwise): one vector of
// four 32-bit lanes a pixel.
template <bool kLeaving>
inline void PixelDifferences(const uint8_t* entering, const uint8_t* leaving, size_t offset, __m128i out[4]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i in = LoadUnaligned(entering + offset);
    __m128i low = _mm_unpacklo_epi8(in, zero);
    __m128i high = _mm_unpackhi_epi8(in, zero);
    if constexpr (kLeaving) {
        const __m128i gone = LoadUnaligned(leaving + offset);
        low = _mm_sub_epi16(low, _mm_unpacklo_epi8(gone, zero));
        high = _mm_sub_epi16(high, _mm_unpackhi_epi8(gone, zero));
    }
    out[0] = WidenLow16(low);
    out[1] = WidenHigh16(low);
    out[2] = WidenLow16(high);
    out[3] = WidenHigh16(high);
}

// The same for the one pixel at offset.
template <bool kLeaving>
inline __m128i PixelDifference(const uint8_t* entering, const uint8_t* leaving, size_t offset) {
    const __m128i zero = _mm_setzero_si128();
    __m128i in = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(LoadWord(entering + offset))), zero);
    if constexpr (kLeaving)
        in = _mm_sub_epi16(in, _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(LoadWord(leaving + offset))), zero));
    return WidenLow16(in);
}

// Calls four(j, differences of columns j..j+3) along the row, and one(j,
// difference of column j) for the last columns.
template <bool kLeaving, class Four, class One>
void ForEachColumnDifference(const uint8_t* entering, const uint8_t* leaving, int32_t count, Four four, One one) {
    int32_t j = 0;
    for (; j + 4 <= count; j += 4) {
        __m128i d[4];
        PixelDifferences<kLeaving>(entering, leaving, 4 * static_cast<size_t>(j), d);
        four(j, d);
    }
    for (; j < count; ++j) one(j, PixelDifference<kLeaving>(entering, leaving, 4 * static_cast<size_t>(j)));
}

// The column sums of the first window's rows, added top to bottom.
template <class Sums>
void own_get_first_sum_8u(Sums& sums, const uint8_t* window, int32_t srcStep, int32_t maskHeight) {
    for (int32_t r = 0; r < maskHeight; ++r) sums.AddRow(window + static_cast<ptrdiff_t>(r) * srcStep);
}

// One output row. The running sum starts as the first maskWidth columns
// added left to right, and slides after every pixel but the last, so that
// no column past the row's last window is read.
template <class Sums>
void inner_ownBlur_8u(const Sums& sums, uint8_t* dst, int32_t width, int32_t maskWidth) {
    auto sum = sums.Column(0);
    for (int32_t i = 1; i < maskWidth; ++i) sum = sums.Add(sum, sums.Column(i));
    int32_t x = 0;
    StorePixelsFromLanes(dst, width, [&] {
        const __m128i mean = sums.Mean(sum);
        if (x + 1 < width) sum = sums.Slide(sum, sums.Column(x + maskWidth), sums.Column(x));
        ++x;
        return mean;
    });
}

// All output rows from the window of the first, whose top-left pixel is
// window. The columns move down after every row but the last, so the row
// below the last window is never read.
template <class Sums>
void RunningSumRows(Sums& sums, const uint8_t* window, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                    PrimSize roiSize, PrimSize maskSize) {
    own_get_first_sum_8u(sums, window, srcStep, maskSize.height);
    for (int32_t y = 0; y < roiSize.height; ++y) {
        inner_ownBlur_8u(sums, dst + static_cast<ptrdiff_t>(y) * dstStep, roiSize.width, maskSize.width);
        if (y + 1 < roiSize.height)
            sums.MoveDown(window + static_cast<ptrdiff_t>(y + maskSize.height) * srcStep,
                          window + static_cast<ptrdiff_t>(y) * srcStep);
    }
}

}  // namespace PRIM_BUILD

#endif
