// The nearest-neighbour and bilinear kernels of the affine warp for 8-bit
// pixels with a fourth byte that stays, four pixels at a time.
#include <emmintrin.h>
#ifdef __SSSE3__
#include <tmmintrin.h>
#endif

#include "primitives/geometry/warp_kernels.h"

namespace PRIM_BUILD {
namespace {

constexpr double kFractionScale = 16384.0;  // 14 fraction bits
constexpr int32_t kFractionOne = 16384;
constexpr int32_t kRoundHalf = 524288;  // one half in the 20 bits of the second stage

// The fractions v - i of the four positions in 14 bits, rounded by the
// current rounding mode (to nearest by default).
inline __m128i Fractions(__m128d v01, __m128d v23, __m128i i) {
    const __m128d scale = _mm_set1_pd(kFractionScale);
    const __m128d i01 = _mm_cvtepi32_pd(i), i23 = _mm_cvtepi32_pd(_mm_unpackhi_epi64(i, i));
    return _mm_unpacklo_epi64(_mm_cvtpd_epi32(_mm_mul_pd(_mm_sub_pd(v01, i01), scale)),
                              _mm_cvtpd_epi32(_mm_mul_pd(_mm_sub_pd(v23, i23), scale)));
}

// The weights (1 - f, f) of each lane's fraction as a pair of 16-bit halves.
inline __m128i WeightPairs(__m128i f) {
    const __m128i rest = _mm_and_si128(_mm_sub_epi32(_mm_set1_epi32(kFractionOne), f), _mm_set1_epi32(0xFFFF));
    return _mm_or_si128(rest, _mm_slli_epi32(f, 16));
}

// The left and right pixels of two cells, from two addresses.
inline __m128i LoadCellRows(const uint8_t* first, const uint8_t* second) {
    const __m128d low = _mm_castsi128_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(first)));
    return _mm_castpd_si128(_mm_loadh_pd(low, reinterpret_cast<const double*>(second)));
}

// One row of four cells as the 16-bit pairs (left, right) of the four cells
// for each colour channel, from the cells' left and right pixels: cells 0
// and 1 in pair01, cells 2 and 3 in pair23. Interleaving bytes three times
// over sorts them by tap, by channel and by cell.
struct ChannelPairs {
    __m128i blue, green, red;
};

inline ChannelPairs PairsByChannel(__m128i pair01, __m128i pair23) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i cells02 = _mm_unpacklo_epi8(pair01, pair23), cells13 = _mm_unpackhi_epi8(pair01, pair23);
    const __m128i left = _mm_unpacklo_epi8(cells02, cells13), right = _mm_unpackhi_epi8(cells02, cells13);
    const __m128i blueGreen = _mm_unpacklo_epi8(left, right), redAlpha = _mm_unpackhi_epi8(left, right);
    return {_mm_unpacklo_epi8(blueGreen, zero), _mm_unpackhi_epi8(blueGreen, zero),
            _mm_unpacklo_epi8(redAlpha, zero)};
}

// First stage: a row of each cell blended across, shifted down by 8.
inline __m128i Across(__m128i pairs, __m128i weights) { return _mm_srai_epi32(_mm_madd_epi16(pairs, weights), 8); }

// Second stage: the two blended rows of each cell, as 16-bit pairs (upper,
// lower), blended down with the rounding half and shifted down by 20.
inline __m128i Down(__m128i pairs, __m128i weights) {
    return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, weights), _mm_set1_epi32(kRoundHalf)), 20);
}

// Four pixel words from the channels' results in 32-bit lanes, saturated to
// bytes; the fourth byte is 0.
inline __m128i PixelWords(__m128i blue, __m128i green, __m128i red) {
    const __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(blue, green), _mm_packs_epi32(red, red));
#ifdef __SSSE3__
    return _mm_shuffle_epi8(bytes, _mm_setr_epi8(0, 4, 8, -1, 1, 5, 9, -1, 2, 6, 10, -1, 3, 7, 11, -1));
#else
    const __m128i blueGreen = _mm_unpacklo_epi8(bytes, _mm_srli_si128(bytes, 4));
    return _mm_unpacklo_epi16(blueGreen, _mm_unpacklo_epi8(_mm_srli_si128(bytes, 8), _mm_setzero_si128()));
#endif
}

// Four bilinear pixels in fixed point. The integer part steps back from the
// last column or row, so the 2x2 cell lies inside and the fraction there is
// 1.0. Each row of a cell is blended across and shifted down by 8 to stay
// within 16 bits; the two rows are blended with the rounding half and
// shifted down by 20.
inline __m128i LinearPixels(const WarpJob& job, const Positions& p) {
    __m128i ix = Truncate(p.x01, p.x23), iy = Truncate(p.y01, p.y23);
    ix = _mm_add_epi32(ix, _mm_cmpeq_epi32(ix, _mm_set1_epi32(job.srcLastX)));
    iy = _mm_add_epi32(iy, _mm_cmpeq_epi32(iy, _mm_set1_epi32(job.srcLastY)));
    const __m128i wx = WeightPairs(Fractions(p.x01, p.x23, ix));
    const __m128i wy = WeightPairs(Fractions(p.y01, p.y23, iy));

    const uint8_t* cells[4];
    SourcePixels(job, ix, iy, cells);
    const ptrdiff_t down = job.srcStep;
    const ChannelPairs upper = PairsByChannel(LoadCellRows(cells[0], cells[1]), LoadCellRows(cells[2], cells[3]));
    const ChannelPairs lower = PairsByChannel(LoadCellRows(cells[0] + down, cells[1] + down),
                                              LoadCellRows(cells[2] + down, cells[3] + down));

    const __m128i upperBlueGreen = _mm_packs_epi32(Across(upper.blue, wx), Across(upper.green, wx));
    const __m128i lowerBlueGreen = _mm_packs_epi32(Across(lower.blue, wx), Across(lower.green, wx));
    const __m128i reds = _mm_packs_epi32(Across(upper.red, wx), Across(lower.red, wx));
    const __m128i blue = Down(_mm_unpacklo_epi16(upperBlueGreen, lowerBlueGreen), wy);
    const __m128i green = Down(_mm_unpackhi_epi16(upperBlueGreen, lowerBlueGreen), wy);
    const __m128i red = Down(_mm_unpacklo_epi16(reds, _mm_unpackhi_epi64(reds, reds)), wy);
    return PixelWords(blue, green, red);
}

// Four source pixels as they are.
inline __m128i NearestPixels(const WarpJob& job, const Positions& p) {
    const uint8_t* cells[4];
    SourcePixels(job, Truncate(p.x01, p.x23), Truncate(p.y01, p.y23), cells);
    return _mm_setr_epi32(static_cast<int32_t>(LoadWord(cells[0])), static_cast<int32_t>(LoadWord(cells[1])),
                          static_cast<int32_t>(LoadWord(cells[2])), static_cast<int32_t>(LoadWord(cells[3])));
}

}  // namespace

// The position gets its 0.5 once, at the start of the span, and is then
// truncated at every pixel.
void ownpi_WarpAffine_NN_8_AC4(const WarpJob& job) {
    ForEachSpan(job, 0.5, [&job](uint8_t* out, int32_t count, double& x, double& y) {
        WriteSpan(job, out, count, x, y, [&job](const Positions& p) { return NearestPixels(job, p); });
    });
}

// No range test: the spans keep every position within the source.
void ownpi_WarpAffine_L_8u_AC4(const WarpJob& job) {
    ForEachSpan(job, 0.0, [&job](uint8_t* out, int32_t count, double& x, double& y) {
        WriteSpan(job, out, count, x, y, [&job](const Positions& p) { return LinearPixels(job, p); });
    });
}

}  // namespace PRIM_BUILD
