// Row routines of the Wiener filter: rolling window sums, local mean and
// variance, and the adaptive pull towards the mean.
//
// The window sums of a row come from the row above in constant time per
// pixel, whatever the mask: the window gains its new bottom row and loses its
// old top row. Along the row, the sum of the changes over the window's
// columns is kept up by adding the column that enters and taking off the one
// that leaves. Sums stay in int32 (wrapping, for masks too large for the
// squares) until the finished row turns into floats.
#include "primitives/pixel/wiener_rows.h"

#include <emmintrin.h>

#include <cstring>

#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

// Window sums of one pixel, or a change of them: values S and squares Q, a
// 32-bit lane for each byte of the pixel.
struct LaneSums {
    __m128i s;
    __m128i q;
};

inline LaneSums Plus(LaneSums a, LaneSums b) { return {_mm_add_epi32(a.s, b.s), _mm_add_epi32(a.q, b.q)}; }
inline LaneSums Minus(LaneSums a, LaneSums b) { return {_mm_sub_epi32(a.s, b.s), _mm_sub_epi32(a.q, b.q)}; }

// A row of the work buffer holds int32 sums until it is turned into floats.
inline LaneSums LoadSums(const float* sRow, const float* qRow, int32_t x) {
    return {_mm_load_si128(reinterpret_cast<const __m128i*>(sRow + 4 * x)),
            _mm_load_si128(reinterpret_cast<const __m128i*>(qRow + 4 * x))};
}
inline void StoreSums(float* sRow, float* qRow, int32_t x, LaneSums v) {
    _mm_store_si128(reinterpret_cast<__m128i*>(sRow + 4 * x), v.s);
    _mm_store_si128(reinterpret_cast<__m128i*>(qRow + 4 * x), v.q);
}

inline __m128i Low16(__m128i bytes) { return _mm_unpacklo_epi8(bytes, _mm_setzero_si128()); }
inline __m128i High16(__m128i bytes) { return _mm_unpackhi_epi8(bytes, _mm_setzero_si128()); }

// What each column of the image adds to the window sums when the window
// gains row `added` and loses row `removed`: a - r to S and a^2 - r^2 to Q.
// A window built from scratch gains its rows one by one and loses none.
template <bool kRemoves>
class ColumnChange {
public:
    ColumnChange(const uint8_t* added, const uint8_t* removed) : added_(added), removed_(removed) {}

    LaneSums At(int32_t column) const {
        LaneSums change = Values(added_ + 4 * column);
        return kRemoves ? Minus(change, Values(removed_ + 4 * column)) : change;
    }

    // At(enter + k) - At(leave + k) for k = 0..3: how the sums of a window
    // change as it moves one pixel right, four times over.
    void FourSteps(int32_t enter, int32_t leave, LaneSums step[4]) const {
        const __m128i addedIn = LoadUnaligned(added_ + 4 * enter);
        const __m128i addedOut = LoadUnaligned(added_ + 4 * leave);
        const __m128i removedIn = kRemoves ? LoadUnaligned(removed_ + 4 * enter) : _mm_setzero_si128();
        const __m128i removedOut = kRemoves ? LoadUnaligned(removed_ + 4 * leave) : _mm_setzero_si128();
        TwoSteps(Low16(addedIn), Low16(removedIn), Low16(addedOut), Low16(removedOut), step);
        TwoSteps(High16(addedIn), High16(removedIn), High16(addedOut), High16(removedOut), step + 2);
    }

private:
    static LaneSums Values(const uint8_t* pixel) {
        const __m128i zero = _mm_setzero_si128();
        const __m128i v = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(LoadWord(pixel)), zero), zero);
        return {v, _mm_madd_epi16(v, v)};
    }

    // Two pixels in 16-bit lanes. With d = a - r and t = a + r of the column
    // entering and of the one leaving, S changes by dIn - dOut and Q by
    // dIn * tIn - dOut * tOut, one multiply-add over the interleaved pairs.
    static void TwoSteps(__m128i aIn, __m128i rIn, __m128i aOut, __m128i rOut, LaneSums step[2]) {
        const __m128i dIn = _mm_sub_epi16(aIn, rIn);
        const __m128i tIn = _mm_add_epi16(aIn, rIn);
        const __m128i dOut = _mm_sub_epi16(aOut, rOut);
        const __m128i minusTOut = _mm_sub_epi16(_mm_sub_epi16(_mm_setzero_si128(), aOut), rOut);
        const __m128i ds = _mm_sub_epi16(dIn, dOut);
        step[0].s = _mm_srai_epi32(_mm_unpacklo_epi16(ds, ds), 16);
        step[1].s = _mm_srai_epi32(_mm_unpackhi_epi16(ds, ds), 16);
        step[0].q = _mm_madd_epi16(_mm_unpacklo_epi16(dIn, dOut), _mm_unpacklo_epi16(tIn, minusTOut));
        step[1].q = _mm_madd_epi16(_mm_unpackhi_epi16(dIn, dOut), _mm_unpackhi_epi16(tIn, minusTOut));
    }

    const uint8_t* added_;
    const uint8_t* removed_;
};

// Calls visit(x, changes of columns x .. x + maskWidth - 1) for each pixel x
// of the row, from left to right.
template <class Change, class Visit>
void ForEachWindow(const Change& change, int32_t width, int32_t maskWidth, Visit visit) {
    LaneSums window = change.At(0);
    for (int32_t c = 1; c < maskWidth; ++c) window = Plus(window, change.At(c));
    visit(0, window);

    int32_t x = 1;
    for (; x + 4 <= width; x += 4) {
        LaneSums step[4];
        change.FourSteps(x + maskWidth - 1, x - 1, step);
        for (int32_t k = 0; k < 4; ++k) {
            window = Plus(window, step[k]);
            visit(x + k, window);
        }
    }
    for (; x < width; ++x) {
        window = Plus(window, Minus(change.At(x + maskWidth - 1), change.At(x - 1)));
        visit(x, window);
    }
}

// Turns window sums into floats: the mean n * S, and the variance
// Q - (S * S) * n, no smaller than the noise lane.
class Moments {
public:
    Moments(float* meanRow, float* varRow, float invArea, const float noise[4])
        : meanRow_(meanRow), varRow_(varRow), n_(_mm_set1_ps(invArea)), floor_(_mm_loadu_ps(noise)) {}

    void Store(int32_t x, LaneSums sums) const {
        const __m128 s = _mm_cvtepi32_ps(sums.s);
        const __m128 q = _mm_cvtepi32_ps(sums.q);
        _mm_store_ps(meanRow_ + 4 * x, _mm_mul_ps(n_, s));
        _mm_store_ps(varRow_ + 4 * x, _mm_max_ps(_mm_sub_ps(q, _mm_mul_ps(_mm_mul_ps(s, s), n_)), floor_));
    }

private:
    float* meanRow_;
    float* varRow_;
    __m128 n_;
    __m128 floor_;
};

// M + ((V - noise) * r) * (s - M), r being 1 / V from the fast reciprocal and
// one Newton step, as int32 lanes in the current rounding mode. A variance of
// 0 gives not a number, which converts to the integer indefinite value and
// saturates to 0.
inline __m128i PulledLanes(__m128 s, const float* meanRow, const float* varRow, int32_t x, __m128 noise) {
    const __m128 m = _mm_load_ps(meanRow + 4 * x);
    const __m128 v = _mm_load_ps(varRow + 4 * x);
    const __m128 r0 = _mm_rcp_ps(v);
    const __m128 r = _mm_sub_ps(_mm_add_ps(r0, r0), _mm_mul_ps(_mm_mul_ps(v, r0), r0));
    return _mm_cvtps_epi32(_mm_add_ps(m, _mm_mul_ps(_mm_mul_ps(_mm_sub_ps(v, noise), r), _mm_sub_ps(s, m))));
}

inline __m128 LaneFloats(__m128i pixel16) { return _mm_cvtepi32_ps(_mm_unpacklo_epi16(pixel16, _mm_setzero_si128())); }

}  // namespace

void owniLocalVarMean_8u32f_AC4L_M7(const uint8_t* window, int32_t srcStep, const PrimSize* mask, float* meanRow,
                                    float* varRow, int32_t otherRow, const PrimSize* roi, int32_t y,
                                    const float* invArea, const float noise[4]) {
    const int32_t width = roi->width;
    if (y == 0) {
        PRIM(primsZero_8u)(reinterpret_cast<uint8_t*>(meanRow), 16 * width);
        PRIM(primsZero_8u)(reinterpret_cast<uint8_t*>(varRow), 16 * width);
        for (int32_t j = 0; j < mask->height; ++j) {
            const ColumnChange<false> rowJ(window + static_cast<ptrdiff_t>(j) * srcStep, nullptr);
            ForEachWindow(rowJ, width, mask->width, [&](int32_t x, LaneSums sums) {
                StoreSums(meanRow, varRow, x, Plus(LoadSums(meanRow, varRow, x), sums));
            });
        }
    }

    // The next row's sums are taken from this row's before it turns into
    // floats, in the same sweep.
    const Moments moments(meanRow, varRow, *invArea, noise);
    if (y + 1 < roi->height) {
        const ColumnChange<true> down(window + static_cast<ptrdiff_t>(mask->height) * srcStep, window);
        float* nextMean = reinterpret_cast<float*>(reinterpret_cast<uint8_t*>(meanRow) + otherRow);
        float* nextVar = reinterpret_cast<float*>(reinterpret_cast<uint8_t*>(varRow) + otherRow);
        ForEachWindow(down, width, mask->width, [&](int32_t x, LaneSums change) {
            const LaneSums sums = LoadSums(meanRow, varRow, x);
            StoreSums(nextMean, nextVar, x, Plus(sums, change));
            moments.Store(x, sums);
        });
    } else {
        for (int32_t x = 0; x < width; ++x) moments.Store(x, LoadSums(meanRow, varRow, x));
    }
}

void owniWiener_8u32f_AC4R_M7(const uint8_t* src, const float* meanRow, const float* varRow, uint8_t* dst,
                              const float noise[4], int32_t width) {
    const __m128 lanes = _mm_loadu_ps(noise);
    const __m128i colour = Broadcast(kColourMask);
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        const __m128i bytes = LoadUnaligned(src + 4 * x);
        const __m128i low = Low16(bytes);
        const __m128i high = High16(bytes);
        const __m128i p0 = PulledLanes(LaneFloats(low), meanRow, varRow, x, lanes);
        const __m128i p1 = PulledLanes(LaneFloats(_mm_unpackhi_epi64(low, low)), meanRow, varRow, x + 1, lanes);
        const __m128i p2 = PulledLanes(LaneFloats(high), meanRow, varRow, x + 2, lanes);
        const __m128i p3 = PulledLanes(LaneFloats(_mm_unpackhi_epi64(high, high)), meanRow, varRow, x + 3, lanes);
        const __m128i out = _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
        StoreUnaligned(dst + 4 * x, Merge(out, LoadUnaligned(dst + 4 * x), colour));
    }
    for (; x < width; ++x) {
        const __m128i pixel = Low16(_mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(src + 4 * x))));
        __m128i p = PulledLanes(LaneFloats(pixel), meanRow, varRow, x, lanes);
        p = _mm_packus_epi16(_mm_packs_epi32(p, p), p);
        const uint32_t word =
            (static_cast<uint32_t>(_mm_cvtsi128_si32(p)) & kColourMask) | (LoadWord(dst + 4 * x) & ~kColourMask);
        memcpy(dst + 4 * x, &word, 4);
    }
}

}  // namespace PRIM_BUILD
