// The nearest-neighbour and bilinear kernels of the affine warp for 8-bit
// pixels with a fourth byte that stays.
#include <emmintrin.h>

#include "primitives/geometry/warp_kernels.h"

namespace PRIM_BUILD {
namespace {

constexpr double kFractionScale = 16384.0;  // 14 fraction bits
constexpr int32_t kFractionOne = 16384;
constexpr int32_t kRoundHalf = 524288;  // one half in the 20 bits of the second stage

// Rounds by the current rounding mode, to nearest by default.
inline int32_t RoundFraction(double v) { return _mm_cvtsd_si32(_mm_set_sd(v)); }

// The weights (1 - f, f) of a fraction as a pair of 16-bit lanes, four
// times over.
inline __m128i WeightPairs(int32_t f) {
    const uint32_t pair = (static_cast<uint32_t>(kFractionOne - f) & 0xFFFF) | (static_cast<uint32_t>(f) << 16);
    return _mm_set1_epi32(static_cast<int32_t>(pair));
}

// Two neighbouring pixels in the low 8 bytes become, for each channel, the
// 16-bit pair (left, right).
inline __m128i ChannelPairs(__m128i twoPixels) {
    const __m128i interleaved = _mm_unpacklo_epi8(twoPixels, _mm_srli_si128(twoPixels, 4));
    return _mm_unpacklo_epi8(interleaved, _mm_setzero_si128());
}

// The bilinear pixel in fixed point: each row is blended across and shifted
// down by 8 to stay within 16 bits, then the two rows are blended with the
// rounding half and shifted down by 20. The integer part steps back from the
// last column or row, so the 2x2 cell lies inside and the fraction there is
// 1.0. Returns the saturated pixel word in the low lane.
inline __m128i LinearPixel(const WarpJob& job, double x, double y) {
    int32_t ix = static_cast<int32_t>(x), iy = static_cast<int32_t>(y);
    if (ix == job.srcLastX) --ix;
    if (iy == job.srcLastY) --iy;
    const int32_t fx = RoundFraction((x - ix) * kFractionScale);
    const int32_t fy = RoundFraction((y - iy) * kFractionScale);
    const uint8_t* cell = SourcePixel(job, ix, iy);
    const __m128i across = WeightPairs(fx);
    const __m128i upper = _mm_srai_epi32(
        _mm_madd_epi16(ChannelPairs(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(cell))), across), 8);
    const __m128i lower = _mm_srai_epi32(
        _mm_madd_epi16(ChannelPairs(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(cell + job.srcStep))), across),
        8);
    const __m128i rows = _mm_packs_epi32(upper, lower);
    const __m128i pairs = _mm_unpacklo_epi16(rows, _mm_unpackhi_epi64(rows, rows));
    const __m128i blended =
        _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, WeightPairs(fy)), _mm_set1_epi32(kRoundHalf)), 20);
    const __m128i words = _mm_packs_epi32(blended, blended);
    return _mm_packus_epi16(words, words);
}

}  // namespace

// The position gets its 0.5 once, at the start of the span, and is then
// truncated at every pixel.
void ownpi_WarpAffine_NN_8_AC4(const WarpJob& job) {
    ForEachSpan(job, [&job](uint8_t* out, int32_t count, double x, double y) {
        WriteSpan(out, count, x + 0.5, y + 0.5, job.t.a, job.t.c, [&job](double px, double py) {
            return _mm_cvtsi32_si128(
                static_cast<int32_t>(LoadWord(SourcePixel(job, static_cast<int32_t>(px), static_cast<int32_t>(py)))));
        });
    });
}

// No range test: the spans keep every position within the source.
void ownpi_WarpAffine_L_8u_AC4(const WarpJob& job) {
    ForEachSpan(job, [&job](uint8_t* out, int32_t count, double x, double y) {
        WriteSpan(out, count, x, y, job.t.a, job.t.c,
                  [&job](double px, double py) { return LinearPixel(job, px, py); });
    });
}

}  // namespace PRIM_BUILD
