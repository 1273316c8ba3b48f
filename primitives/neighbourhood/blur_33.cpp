// The 3x3 box filter: ((s * 29128) >> 16) >> 2 for the sum s of nine
// elements. 29128 / 2^18 is a little above 1/9 and nothing is added before
// the shifts, so the result is the floor of a slightly high mean; 2295 (nine
// times 255) still gives 255.
#ifdef __SSSE3__
#include <tmmintrin.h>
#endif

#include "primitives/neighbourhood/box_filter.h"
#include "primitives/neighbourhood/colour_stores.h"

namespace PRIM_BUILD {
namespace {

constexpr int kNinthMultiplier = 29128;

inline int MeanOfNine(int s) { return ((s * kNinthMultiplier) >> 16) >> 2; }

inline __m128i MeanOfNine(__m128i s) {
    return _mm_srli_epi16(_mm_mulhi_epu16(s, _mm_set1_epi16(kNinthMultiplier)), 2);
}

// The upper half of low followed by the lower half of high: in 16-bit
// lanes, the two pixels one to the right of low's.
inline __m128i NextTwoPixels(__m128i low, __m128i high) {
#ifdef __SSSE3__
    return _mm_alignr_epi8(high, low, 8);
#else
    return _mm_or_si128(_mm_srli_si128(low, 8), _mm_slli_si128(high, 8));
#endif
}

// One output row from the three source rows of its windows, which start at
// top. Four pixels at a time: the column sums of the six source columns
// that their windows cover, then three neighbouring column sums each.
void inner_ownBlur_8u_33(const uint8_t* top, int32_t srcStep, uint8_t* dst, int32_t width) {
    const uint8_t* rows[3] = {top, top + srcStep, top + 2 * static_cast<ptrdiff_t>(srcStep)};
    const __m128i zero = _mm_setzero_si128();
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        __m128i columns01 = zero, columns23 = zero, columns45 = zero;
        for (const uint8_t* row : rows) {
            const __m128i left = LoadUnaligned(row + 4 * x);
            const __m128i right = LoadUnaligned(row + 4 * x + 8);
            columns01 = _mm_add_epi16(columns01, _mm_unpacklo_epi8(left, zero));
            columns23 = _mm_add_epi16(columns23, _mm_unpackhi_epi8(left, zero));
            columns45 = _mm_add_epi16(columns45, _mm_unpackhi_epi8(right, zero));
        }
        const __m128i sums01 =
            _mm_add_epi16(_mm_add_epi16(columns01, NextTwoPixels(columns01, columns23)), columns23);
        const __m128i sums23 =
            _mm_add_epi16(_mm_add_epi16(columns23, NextTwoPixels(columns23, columns45)), columns45);
        StoreColours16(dst + 4 * x, _mm_packus_epi16(MeanOfNine(sums01), MeanOfNine(sums23)));
    }
    for (; x < width; ++x) {
        for (int c = 0; c < 3; ++c) {
            int s = 0;
            for (const uint8_t* row : rows)
                s += row[4 * x + c] + row[4 * x + 4 + c] + row[4 * x + 8 + c];
            dst[4 * x + c] = static_cast<uint8_t>(MeanOfNine(s));
        }
    }
}

}  // namespace

PrimStatus ownBlur_8u_33(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                         PrimPoint anchor) {
    const uint8_t* window = BoxWindowOrigin(src, srcStep, anchor);
    for (int32_t y = 0; y < roiSize.height; ++y)
        inner_ownBlur_8u_33(window + static_cast<ptrdiff_t>(y) * srcStep, srcStep,
                            dst + static_cast<ptrdiff_t>(y) * dstStep, roiSize.width);
    return PrimOk;
}

}  // namespace PRIM_BUILD
