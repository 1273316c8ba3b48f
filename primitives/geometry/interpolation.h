// The samplers shared by remap and the affine warp: what a channel of an 8-bit
// four-byte-pixel source is worth at a position in source coordinates (pixel
// centres at integers).
//
// InterpCubic on 8u works in fixed point: 14 fraction bits, 16384 standing
// for 1.0, with the weights of a cubic through four samples looked up in
// ownpi_iCubTab. Cubic, Catmull-Rom and Lanczos-3 as point kernels work in
// double precision and finish their sum with ownpi_Finish_8u; at the borders
// they read clamped taps (setIndexCR, setIndexL3) rather than shifted ones.
//
// Every routine writes the three colour bytes of a destination pixel and
// leaves the fourth alone. Nothing here tests its arguments: the callers have
// made sure that every tap lies inside the source.
#ifndef KV_PRIMITIVES_GEOMETRY_INTERPOLATION_H
#define KV_PRIMITIVES_GEOMETRY_INTERPOLATION_H

#include <emmintrin.h>
#ifdef __SSSE3__
#include <tmmintrin.h>
#endif

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// ---- Rounding ----

// v rounded to the nearest integer, ties to even, whatever the processor's
// rounding mode. For 0 <= v < 2^23, where v - trunc(v) is exact.
inline int32_t RoundNonNegative(float v) {
    int32_t r = static_cast<int32_t>(v);
    float rest = v - static_cast<float>(r);
    if (rest > 0.5f || (rest == 0.5f && (r & 1) != 0)) ++r;
    return r;
}

// The same on four lanes.
inline __m128i RoundNonNegative(__m128 v) {
    __m128i r = _mm_cvttps_epi32(v);
    __m128 rest = _mm_sub_ps(v, _mm_cvtepi32_ps(r));
    __m128i odd = _mm_cmpeq_epi32(_mm_and_si128(r, _mm_set1_epi32(1)), _mm_set1_epi32(1));
    __m128i up = _mm_or_si128(_mm_castps_si128(_mm_cmpgt_ps(rest, _mm_set1_ps(0.5f))),
                              _mm_and_si128(_mm_castps_si128(_mm_cmpeq_ps(rest, _mm_set1_ps(0.5f))), odd));
    return _mm_sub_epi32(r, up);  // up is -1 where the value goes up
}

// ---- The fixed-point cubic table ----

// Pair i holds round(16384 L0(i / 512)) and round(16384 L1(i / 512)), the
// first two Lagrange weights of a cubic through samples at 0, 1, 2 and 3:
//   L0(t) = -(t - 1)(t - 2)(t - 3) / 6,   L1(t) = t (t - 2)(t - 3) / 2.
// The last two weights are the first two mirrored, L2(t) = L1(3 - t) and
// L3(t) = L0(3 - t), so i runs over 0..1536 (t from 0 to 3); three pairs of
// zeros follow. With t = i / 512 both weights are exact fractions, which are
// rounded here in integers: 16384 L0 = -(i - 512)(i - 1024)(i - 1536) / 49152
// and 16384 L1 = i (i - 1024)(i - 1536) / 16384.
constexpr int32_t kCubTabLast = 1536;
constexpr float ownpi_iCubTabDeltaF = 512.0f;

struct CubicWeightTable {
    int16_t pair[kCubTabLast + 4][2];
};

// n / d rounded to nearest, d > 0 (no value of the table is a tie).
constexpr int64_t RoundedQuotient(int64_t n, int64_t d) {
    int64_t twice = 2 * n + d, divisor = 2 * d;
    int64_t q = twice / divisor;
    return (twice % divisor != 0 && twice < 0) ? q - 1 : q;
}

constexpr CubicWeightTable MakeCubicWeightTable() {
    CubicWeightTable table{};
    for (int64_t i = 0; i <= kCubTabLast; ++i) {
        table.pair[i][0] = static_cast<int16_t>(RoundedQuotient(-(i - 512) * (i - 1024) * (i - 1536), 49152));
        table.pair[i][1] = static_cast<int16_t>(RoundedQuotient(i * (i - 1024) * (i - 1536), 16384));
    }
    return table;
}

inline constexpr CubicWeightTable ownpi_iCubTab = MakeCubicWeightTable();

// The pair at i as one word, the first weight in the low half.
inline int32_t CubicPairWord(int32_t i) {
    int32_t word;
    memcpy(&word, ownpi_iCubTab.pair[i], 4);
    return word;
}

// ---- InterpCubic, 8u, fixed point ----

// The four int16 weights (w0, w1) and (w2, w3) of a table index f, each pair
// repeated over the four 32-bit lanes, ready for _mm_madd_epi16.
inline void CubicWeightPairs(int32_t f, __m128i* w01, __m128i* w23) {
    uint32_t mirrored = static_cast<uint32_t>(CubicPairWord(kCubTabLast - f));
    *w01 = _mm_set1_epi32(CubicPairWord(f));
    *w23 = _mm_set1_epi32(static_cast<int32_t>((mirrored >> 16) | (mirrored << 16)));
}

// The four pixels at p, weighted by (w0, w1, w2, w3), summed per channel and
// shifted right by 8: one row's horizontal pass, four int32 lanes.
inline __m128i CubicRowSum(const uint8_t* p, __m128i w01, __m128i w23) {
    const __m128i zero = _mm_setzero_si128();
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
#ifdef __SSSE3__
    // Channel by channel: taps 0 and 1 side by side, then taps 2 and 3.
    v = _mm_shuffle_epi8(v, _mm_setr_epi8(0, 4, 1, 5, 2, 6, 3, 7, 8, 12, 9, 13, 10, 14, 11, 15));
    __m128i taps01 = _mm_unpacklo_epi8(v, zero);
    __m128i taps23 = _mm_unpackhi_epi8(v, zero);
#else
    __m128i low = _mm_unpacklo_epi8(v, zero), high = _mm_unpackhi_epi8(v, zero);
    __m128i taps01 = _mm_unpacklo_epi16(low, _mm_srli_si128(low, 8));
    __m128i taps23 = _mm_unpacklo_epi16(high, _mm_srli_si128(high, 8));
#endif
    __m128i sum = _mm_add_epi32(_mm_madd_epi16(taps01, w01), _mm_madd_epi16(taps23, w23));
    return _mm_srai_epi32(sum, 8);
}

// InterpCubic of one pixel at (x, y). The first tap is trunc(x) clamped from
// above to lastCol - 2 and then moved one left when positive; at the borders
// the taps shift instead of replicating, so t = x - first tap runs from 0 to
// 3 and the table index f = round(512 t) from 0 to 1536. Each row's sum is
// shifted right by 8 and held in 16 bits, the column of four row sums is
// rounded at 2^20 and saturated. The source is at least 4 by 4.
inline void ownpi_Cubic_8u_AC4(const uint8_t* src, int32_t srcStep, float x, float y, int32_t lastCol,
                               int32_t lastRow, uint8_t* dst) {
    int32_t ix = static_cast<int32_t>(x), iy = static_cast<int32_t>(y);
    if (ix > lastCol - 2) ix = lastCol - 2;
    if (ix > 0) --ix;
    if (iy > lastRow - 2) iy = lastRow - 2;
    if (iy > 0) --iy;
    int32_t f = RoundNonNegative((x - static_cast<float>(ix)) * ownpi_iCubTabDeltaF);
    int32_t g = RoundNonNegative((y - static_cast<float>(iy)) * ownpi_iCubTabDeltaF);

    __m128i w01, w23, v01, v23;
    CubicWeightPairs(f, &w01, &w23);
    CubicWeightPairs(g, &v01, &v23);
    const uint8_t* row = src + static_cast<ptrdiff_t>(iy) * srcStep + 4 * static_cast<ptrdiff_t>(ix);
    __m128i s0 = CubicRowSum(row, w01, w23);
    __m128i s1 = CubicRowSum(row + srcStep, w01, w23);
    __m128i s2 = CubicRowSum(row + 2 * static_cast<ptrdiff_t>(srcStep), w01, w23);
    __m128i s3 = CubicRowSum(row + 3 * static_cast<ptrdiff_t>(srcStep), w01, w23);
    // The row sums fit 16 bits, so the saturating pack keeps them as they are.
    __m128i s02 = _mm_packs_epi32(s0, s2), s13 = _mm_packs_epi32(s1, s3);
    __m128i sum = _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi16(s02, s13), v01),
                                _mm_madd_epi16(_mm_unpackhi_epi16(s02, s13), v23));
    __m128i result = _mm_srai_epi32(_mm_add_epi32(sum, _mm_set1_epi32(524288)), 20);
    result = _mm_packus_epi16(_mm_packs_epi32(result, result), result);
    uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(result));
    memcpy(dst, &word, 3);
}

// A row of InterpCubic samples: pixel i of dst from (xs[i], ys[i]). A
// position below xMin or yMin or above xMax or yMax, compared as floats,
// leaves its pixel as it was; a bound itself is inside, and so is a NaN.
inline void ownpi_dInterVectorClip_C_8u_AC4(const uint8_t* src, int32_t srcStep, uint8_t* dst, const float* xs,
                                            const float* ys, int32_t count, int32_t xMin, int32_t yMin,
                                            int32_t xMax, int32_t yMax, int32_t lastCol, int32_t lastRow) {
    const float left = static_cast<float>(xMin), top = static_cast<float>(yMin);
    const float right = static_cast<float>(xMax), bottom = static_cast<float>(yMax);
    for (int32_t i = 0; i < count; ++i) {
        float x = xs[i], y = ys[i];
        if (x < left || y < top || x > right || y > bottom) continue;
        ownpi_Cubic_8u_AC4(src, srcStep, x, y, lastCol, lastRow, dst + 4 * static_cast<ptrdiff_t>(i));
    }
}

// ---- Double-precision kernels ----

// A double sum as an 8-bit value: saturated, else rounded half up.
inline uint8_t ownpi_Finish_8u(double v) {
    if (v > 255.0) return 255;
    if (v < 0.0) return 0;
    return static_cast<uint8_t>(static_cast<int32_t>(v + 0.5));
}

// t squared in single precision, as the kernels below take some squares.
inline double SquareInFloat(double t) {
    float f = static_cast<float>(t);
    return static_cast<double>(f * f);
}

// The cubic through four taps, t measured from tap 1.
inline void ownpi_CubicWeights(double t, double w[4]) {
    double t2 = t * t, t3 = t2 * t;
    w[0] = ((-1.0 / 6.0 * t + 0.5) * t - 1.0 / 3.0) * t;
    w[1] = 0.5 * (t3 - t) + (1.0 - SquareInFloat(t));
    w[2] = (-0.5 * t + 0.5) * t2 + t;
    w[3] = (t3 - t) / 6.0;
}

// Catmull-Rom over four taps, t measured from tap 1.
inline void ownpi_CatmullRomWeights(double t, double w[4]) {
    double t2 = t * t;
    w[0] = (-0.5 * t2 - 0.5) * t + SquareInFloat(t);
    w[1] = (1.5 * t - 2.5) * t2 + 1.0;
    w[2] = (-1.5 * t2 + 2.0 * t + 0.5) * t;
    w[3] = (t2 - t) * t * 0.5;
}

inline double Sinc(double u) {
    if (u == 0.0) return 1.0;
    const double pi = 3.141592653589793;
    return std::sin(pi * u) / (pi * u);
}

// Lanczos-3 over six taps, d0 = first tap - position: tap k lies at d0 + k.
// The weights are divided by their sum, so that a flat image stays flat.
inline void ownpi_Lanczos3Weights(double d0, double w[6]) {
    double sum = 0.0;
    for (int k = 0; k < 6; ++k) {
        double d = d0 + k;
        w[k] = (d > -3.0 && d < 3.0) ? Sinc(d) * Sinc(d / 3.0) : 0.0;
        sum += w[k];
    }
    for (int k = 0; k < 6; ++k) w[k] /= sum;
}

// Tap indices around v for a source of n samples on this axis, clamped to
// 0..n-1: i - 1 .. i + 2 for Catmull-Rom, i - 2 .. i + 3 for Lanczos-3, with
// i = trunc(v + 1e-7).
inline void SetClampedIndices(int32_t n, int32_t* index, int32_t taps, double v) {
    int32_t first = static_cast<int32_t>(v + 1e-7) - (taps / 2 - 1);
    for (int32_t k = 0; k < taps; ++k) {
        int32_t i = first + k;
        index[k] = i < 0 ? 0 : (i > n - 1 ? n - 1 : i);
    }
}
inline void setIndexCR(int32_t n, int32_t index[4], double v) { SetClampedIndices(n, index, 4, v); }
inline void setIndexL3(int32_t n, int32_t index[6], double v) { SetClampedIndices(n, index, 6, v); }

// The separable sum at one pixel: for each channel, the rows' horizontal sums
// weighted by the rows' weights, in double. Sample (k, r) is
// origin[rowOffset[r] + tapOffset[k] + channel].
template <int Taps>
inline void owniInterPoint_8u(const uint8_t* origin, const ptrdiff_t* rowOffset, const ptrdiff_t* tapOffset,
                              uint8_t* dst, int32_t channels, const double* wx, const double* wy) {
    for (int32_t c = 0; c < channels; ++c) {
        double sum = 0.0;
        for (int r = 0; r < Taps; ++r) {
            const uint8_t* row = origin + rowOffset[r] + c;
            double across = 0.0;
            for (int k = 0; k < Taps; ++k) across += row[tapOffset[k]] * wx[k];
            sum += across * wy[r];
        }
        dst[c] = ownpi_Finish_8u(sum);
    }
}

// Interior form: first points at the top-left tap; taps follow each other by
// stride bytes across and step bytes down.
template <int Taps>
inline void owniInterPointPixel_8u(const uint8_t* first, int32_t step, int32_t stride, uint8_t* dst,
                                   int32_t channels, const double* wx, const double* wy) {
    ptrdiff_t rowOffset[Taps], tapOffset[Taps];
    for (int k = 0; k < Taps; ++k) {
        rowOffset[k] = static_cast<ptrdiff_t>(k) * step;
        tapOffset[k] = static_cast<ptrdiff_t>(k) * stride;
    }
    owniInterPoint_8u<Taps>(first, rowOffset, tapOffset, dst, channels, wx, wy);
}

// Border form: src is the image's first sample, the taps are the clamped
// column and row indices.
template <int Taps>
inline void owniInterPointPixelB_8u(const uint8_t* src, int32_t step, int32_t stride, uint8_t* dst,
                                    int32_t channels, const double* wx, const double* wy, const int32_t* xIndex,
                                    const int32_t* yIndex) {
    ptrdiff_t rowOffset[Taps], tapOffset[Taps];
    for (int k = 0; k < Taps; ++k) {
        rowOffset[k] = static_cast<ptrdiff_t>(yIndex[k]) * step;
        tapOffset[k] = static_cast<ptrdiff_t>(xIndex[k]) * stride;
    }
    owniInterPoint_8u<Taps>(src, rowOffset, tapOffset, dst, channels, wx, wy);
}

// Cubic and Catmull-Rom at fractions tx, ty from tap 1 of four; Lanczos-3 at
// dx0, dy0, the first of six taps minus the position.
inline void ownpi_dInterPoint_C_Pixel_8u(const uint8_t* first, int32_t step, int32_t stride, uint8_t* dst,
                                         int32_t channels, double tx, double ty) {
    double wx[4], wy[4];
    ownpi_CubicWeights(tx, wx);
    ownpi_CubicWeights(ty, wy);
    owniInterPointPixel_8u<4>(first, step, stride, dst, channels, wx, wy);
}

inline void ownpi_dInterPoint_C_PixelB_8u(const uint8_t* src, int32_t step, int32_t stride, uint8_t* dst,
                                          int32_t channels, double tx, double ty, const int32_t xIndex[4],
                                          const int32_t yIndex[4]) {
    double wx[4], wy[4];
    ownpi_CubicWeights(tx, wx);
    ownpi_CubicWeights(ty, wy);
    owniInterPointPixelB_8u<4>(src, step, stride, dst, channels, wx, wy, xIndex, yIndex);
}

inline void ownpi_dInterPoint_CR_Pixel_8u(const uint8_t* first, int32_t step, int32_t stride, uint8_t* dst,
                                          int32_t channels, double tx, double ty) {
    double wx[4], wy[4];
    ownpi_CatmullRomWeights(tx, wx);
    ownpi_CatmullRomWeights(ty, wy);
    owniInterPointPixel_8u<4>(first, step, stride, dst, channels, wx, wy);
}

inline void ownpi_dInterPoint_CR_PixelB_8u(const uint8_t* src, int32_t step, int32_t stride, uint8_t* dst,
                                           int32_t channels, double tx, double ty, const int32_t xIndex[4],
                                           const int32_t yIndex[4]) {
    double wx[4], wy[4];
    ownpi_CatmullRomWeights(tx, wx);
    ownpi_CatmullRomWeights(ty, wy);
    owniInterPointPixelB_8u<4>(src, step, stride, dst, channels, wx, wy, xIndex, yIndex);
}

inline void ownpi_dInterPoint_L3_Pixel_8u(const uint8_t* first, int32_t step, int32_t stride, uint8_t* dst,
                                          int32_t channels, double dx0, double dy0) {
    double wx[6], wy[6];
    ownpi_Lanczos3Weights(dx0, wx);
    ownpi_Lanczos3Weights(dy0, wy);
    owniInterPointPixel_8u<6>(first, step, stride, dst, channels, wx, wy);
}

inline void ownpi_dInterPoint_L3_PixelB_8u(const uint8_t* src, int32_t step, int32_t stride, uint8_t* dst,
                                           int32_t channels, double dx0, double dy0, const int32_t xIndex[6],
                                           const int32_t yIndex[6]) {
    double wx[6], wy[6];
    ownpi_Lanczos3Weights(dx0, wx);
    ownpi_Lanczos3Weights(dy0, wy);
    owniInterPointPixelB_8u<6>(src, step, stride, dst, channels, wx, wy, xIndex, yIndex);
}

}  // namespace PRIM_BUILD

#endif
