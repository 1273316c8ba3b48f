// The colour (vector) median over 3x3 and 5x5 windows: each destination
// pixel takes the colours of the window pixel whose summed distance to all
// the others is smallest, the first in row-major order among equals. The
// distance of two pixels is the sum of the absolute differences of their
// three colour bytes; the fourth byte takes no part.
//
// Every pair of pixels is measured once, however many windows hold it. A
// chunk of a row is worked in two passes over lines on the stack, eight
// output pixels to a vector of 16-bit lanes:
//  1. For each image column i and each row r of the window band, the summed
//     distance from pixel (i, r) to the rest of its own column ("within"),
//     to all of column i + d ("right", d = 1..N-1), and from pixel (i + d, r)
//     to all of column i ("left").
//  2. The score of a window pixel is its within-sum plus one right- or
//     left-sum for each other column of the window; a running minimum over
//     the window in row-major order, replacing only on a strictly smaller
//     score, picks the pixel.
// Scores stay below 24 * 765 = 18360, so 16-bit lanes hold them.
#include "primitives/neighbourhood/median_common.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kChunk = 128;  // output pixels per chunk, a multiple of 8
constexpr int32_t kLanes = 8;

// Pixels are kept spread over 8 bytes each: the three colour bytes, then
// zeros. A sum of absolute differences over 8 bytes then measures one pair
// of pixels, two to a vector.
inline __m128i Distances2(const uint64_t* a, const uint64_t* b) {
    return _mm_sad_epu8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a)),
                        _mm_loadu_si128(reinterpret_cast<const __m128i*>(b)));
}

// Distances of eight pixel pairs in 16-bit lanes, in order: each sum lies in
// the low 16 bits of a 64-bit lane with zeros above, so two rounds of packs
// gather the eight.
inline __m128i Distances8(const uint64_t* a, const uint64_t* b) {
    return _mm_packs_epi32(_mm_packs_epi32(Distances2(a, b), Distances2(a + 2, b + 2)),
                           _mm_packs_epi32(Distances2(a + 4, b + 4), Distances2(a + 6, b + 6)));
}

inline __m128i Load16(const int16_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
inline void Store16(int16_t* at, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v); }

template <int N>
class ColourMedianRows {
public:
    // src is the top-left pixel of the first window of the region.
    void Filter(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size) {
        // Lanes past a chunk's end read whatever the lines hold; clearing
        // them once keeps that defined.
        memset(pixels_, 0, sizeof pixels_);
        ForEachChunk(size, kChunk, [&](int32_t y, int32_t x0, int32_t n) {
            LoadBand(PixelAt(src, srcStep, y, x0), srcStep, n);
            const int32_t outputGroups = (n + kLanes - 1) / kLanes * kLanes;
            for (int32_t i = 0; i < outputGroups + N - 1; i += kLanes) MeasureColumns(i);
            uint8_t* to = PixelAt(dst, dstStep, y, x0);
            for (int32_t j = 0; j < n; j += kLanes) StoreWinners(to + 4 * j, j, n - j < kLanes ? n - j : kLanes);
        });
    }

private:
    static constexpr int32_t kLine = kChunk + 2 * N + kLanes;

    // Line column i is the chunk's image column i - N/2, for the N rows of
    // the window band; colours only, spread.
    void LoadBand(const uint8_t* topLeft, int32_t srcStep, int32_t n) {
        const __m128i colours = Broadcast(kColourMask), zero = _mm_setzero_si128();
        for (int r = 0; r < N; ++r) {
            const uint8_t* row = PixelAt(topLeft, srcStep, r, 0);
            int32_t i = 0;
            for (; i + 4 <= n + N - 1; i += 4) {
                const __m128i four = _mm_and_si128(FourPixels::Load(row + 4 * i), colours);
                FourPixels::Store(&pixels_[r][i], _mm_unpacklo_epi32(four, zero));
                FourPixels::Store(&pixels_[r][i + 2], _mm_unpackhi_epi32(four, zero));
            }
            for (; i < n + N - 1; ++i) pixels_[r][i] = LoadWord(row + 4 * i) & kColourMask;
        }
    }

    // The within-, right- and left-sums of columns i..i+7.
    void MeasureColumns(int32_t i) {
        __m128i within[N];
        for (int r = 0; r < N; ++r) within[r] = _mm_setzero_si128();
#pragma GCC unroll 5
        for (int r1 = 0; r1 < N; ++r1)
#pragma GCC unroll 5
            for (int r2 = r1 + 1; r2 < N; ++r2) {
                const __m128i d = Distances8(&pixels_[r1][i], &pixels_[r2][i]);
                within[r1] = _mm_add_epi16(within[r1], d);
                within[r2] = _mm_add_epi16(within[r2], d);
            }
        for (int r = 0; r < N; ++r) Store16(&within_[r][i], within[r]);

        for (int gap = 1; gap < N; ++gap) {
            __m128i right[N], left[N];
            for (int r = 0; r < N; ++r) right[r] = left[r] = _mm_setzero_si128();
#pragma GCC unroll 5
            for (int r1 = 0; r1 < N; ++r1)
#pragma GCC unroll 5
                for (int r2 = 0; r2 < N; ++r2) {
                    const __m128i d = Distances8(&pixels_[r1][i], &pixels_[r2][i + gap]);
                    right[r1] = _mm_add_epi16(right[r1], d);
                    left[r2] = _mm_add_epi16(left[r2], d);
                }
            for (int r = 0; r < N; ++r) {
                Store16(&right_[gap - 1][r][i], right[r]);
                Store16(&left_[gap - 1][r][i], left[r]);
            }
        }
    }

    // The scores of window pixel (c, r) for the windows at line columns
    // j..j+7: columns right of c through the right-sums at j + c, columns
    // left of it through the left-sums at their own column.
    __m128i Score(int c, int r, int32_t j) const {
        __m128i score = Load16(&within_[r][j + c]);
        for (int gap = 1; c + gap < N; ++gap) score = _mm_add_epi16(score, Load16(&right_[gap - 1][r][j + c]));
        for (int gap = 1; gap <= c; ++gap) score = _mm_add_epi16(score, Load16(&left_[gap - 1][r][j + c - gap]));
        return score;
    }

    void StoreWinners(uint8_t* to, int32_t j, int32_t count) const {
        __m128i best = Score(0, 0, j);
        __m128i winner = _mm_setzero_si128();
#pragma GCC unroll 25
        for (int k = 1; k < N * N; ++k) {
            const __m128i score = Score(k % N, k / N, j);
            const __m128i smaller = _mm_cmpgt_epi16(best, score);
            best = _mm_min_epi16(best, score);
            winner = Merge(_mm_set1_epi16(static_cast<int16_t>(k)), winner, smaller);
        }
        alignas(16) int16_t index[kLanes];
        _mm_store_si128(reinterpret_cast<__m128i*>(index), winner);
        for (int32_t l = 0; l < count; ++l) {
            const uint32_t colours = static_cast<uint32_t>(pixels_[index[l] / N][j + l + index[l] % N]);
            const uint32_t kept = colours | (LoadWord(to + 4 * l) & ~kColourMask);
            memcpy(to + 4 * l, &kept, 4);
        }
    }

    alignas(16) uint64_t pixels_[N][kLine];
    alignas(16) int16_t within_[N][kLine];
    alignas(16) int16_t right_[N - 1][N][kLine];
    alignas(16) int16_t left_[N - 1][N][kLine];
};

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterMedianColor_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                           int32_t dstStep, PrimSize size, int32_t mask) {
    PrimStatus status = CheckRegion(src, srcStep, dst, dstStep, size);
    if (status != PrimOk) return status;
    if (mask == MaskSize3x3) {
        ColourMedianRows<3>().Filter(PixelAt(src, srcStep, -1, -1), srcStep, dst, dstStep, size);
    } else if (mask == MaskSize5x5) {
        ColourMedianRows<5>().Filter(PixelAt(src, srcStep, -2, -2), srcStep, dst, dstStep, size);
    } else {
        return PrimMaskSizeErr;
    }
    return PrimOk;
}
