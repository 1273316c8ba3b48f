// Column sums of the running-sum box filters. A column sum holds, per
// channel, the sum of the mask's height of source bytes above each other;
// moving down a row, the row below the window enters each column and the
// window's top row leaves it.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_BOX_COLUMNS_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_BOX_COLUMNS_H

#include "primitives/pixel/memory_loops.h"

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

}  // namespace PRIM_BUILD

#endif
