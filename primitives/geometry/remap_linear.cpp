// The linear remap row, four pixels at a time.
//
// For a position (x, y) inside the source rectangle: ix = trunc(x), stepped
// back one column when it is the rectangle's last (so that a position on the
// last column blends with fraction 1.0 and the two-by-two cell lies inside);
// fx = round((x - ix) * 16384) in float, ties to even; likewise iy and fy.
// Per channel, with weights of 14 fraction bits:
//   top    = (p00 (16384 - fx) + p10 fx) >> 8
//   bottom = (p01 (16384 - fx) + p11 fx) >> 8
//   result = (top (16384 - fy) + bottom fy + 33) >> 20
// The bias of 33 keeps the result close to truncation. Both stages fit the
// 16-bit pairs of _mm_madd_epi16: samples and weights below 2^15, first
// stage results at most 255 * 64. The fractions are rounded by the
// processor, in round-to-nearest mode for the length of the call.
#include "primitives/frame/build.h"
#include "primitives/geometry/interpolation.h"
#include "primitives/geometry/remap_rows.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kLinearBias = 33;

// The four samples of the cell at p, channel by channel as int16: p00, p10,
// p01, p11 of channels 0 and 1 into c01, of channels 2 and 3 into c23. Each
// pair (p00, p10) and (p01, p11) meets the horizontal weights in one
// _mm_madd_epi16, which so gives top and bottom side by side.
inline void CellByChannel(const uint8_t* p, int32_t step, __m128i* c01, __m128i* c23) {
    const __m128i zero = _mm_setzero_si128();
#ifdef __SSSE3__
    __m128i cell = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                      _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + step)));
    cell = _mm_shuffle_epi8(cell, _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15));
#else
    __m128i upper = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(p))),
                                      _mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(p + 4))));
    __m128i lower = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(p + step))),
                                      _mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(p + step + 4))));
    __m128i cell = _mm_unpacklo_epi16(upper, lower);
#endif
    *c01 = _mm_unpacklo_epi8(cell, zero);
    *c23 = _mm_unpackhi_epi8(cell, zero);
}

struct LinearFour {
    explicit LinearFour(const RemapJob& job)
        : src(job.src),
          srcStep(job.srcStep),
          lastColumn(_mm_set1_epi32(job.xMax)),
          lastRow(_mm_set1_epi32(job.yMax)),
          stepsBeforeImage((job.xMin == 0 && job.xMax == 0) || (job.yMin == 0 && job.yMax == 0)) {}

    // The integer part, stepped back on the last column or row, and the
    // fraction in 14 bits, rounded in the processor's (nearest) mode.
    void Axis(__m128 v, __m128i last, __m128i* index, __m128i* fraction) const {
        __m128i i = _mm_cvttps_epi32(v);
        i = _mm_add_epi32(i, _mm_cmpeq_epi32(i, last));
        __m128i f = _mm_cvtps_epi32(_mm_mul_ps(_mm_sub_ps(v, _mm_cvtepi32_ps(i)), _mm_set1_ps(16384.0f)));
        if (stepsBeforeImage) {
            // A rectangle one column wide at the image's left edge steps back
            // to column -1, read with weight 0: column 0 with fraction 0 is
            // the same sample and stays inside the image. Likewise for rows.
            __m128i before = _mm_cmplt_epi32(i, _mm_setzero_si128());
            i = _mm_andnot_si128(before, i);
            f = _mm_andnot_si128(before, f);
        }
        *index = i;
        *fraction = f;
    }

    // One pixel from the cell at p, with weight pairs wx = (16384 - fx, fx)
    // and wy repeated over the four lanes.
    __m128i Cell(const uint8_t* p, __m128i wx, __m128i wy) const {
        __m128i c01, c23;
        CellByChannel(p, srcStep, &c01, &c23);
        __m128i stages = _mm_packs_epi32(_mm_srai_epi32(_mm_madd_epi16(c01, wx), 8),
                                         _mm_srai_epi32(_mm_madd_epi16(c23, wx), 8));
        return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(stages, wy), _mm_set1_epi32(kLinearBias)), 20);
    }

    // Four pixels from four positions inside the rectangle.
    __m128i operator()(__m128 x, __m128 y) const {
        __m128i ix, fx, iy, fy;
        Axis(x, lastColumn, &ix, &fx);
        Axis(y, lastRow, &iy, &fy);
        const __m128i one = _mm_set1_epi32(16384);
        __m128i wx = _mm_or_si128(_mm_slli_epi32(fx, 16), _mm_sub_epi32(one, fx));
        __m128i wy = _mm_or_si128(_mm_slli_epi32(fy, 16), _mm_sub_epi32(one, fy));

        alignas(16) int32_t col[4], row[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(col), ix);
        _mm_store_si128(reinterpret_cast<__m128i*>(row), iy);
        auto at = [&](int k) {
            return src + static_cast<ptrdiff_t>(row[k]) * srcStep + 4 * static_cast<ptrdiff_t>(col[k]);
        };
        __m128i p0 = Cell(at(0), _mm_shuffle_epi32(wx, 0x00), _mm_shuffle_epi32(wy, 0x00));
        __m128i p1 = Cell(at(1), _mm_shuffle_epi32(wx, 0x55), _mm_shuffle_epi32(wy, 0x55));
        __m128i p2 = Cell(at(2), _mm_shuffle_epi32(wx, 0xAA), _mm_shuffle_epi32(wy, 0xAA));
        __m128i p3 = Cell(at(3), _mm_shuffle_epi32(wx, 0xFF), _mm_shuffle_epi32(wy, 0xFF));
        return _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
    }

    const uint8_t* src;
    int32_t srcStep;
    __m128i lastColumn, lastRow;
    bool stepsBeforeImage;
};

}  // namespace

void ownpi_Remap_L_8u_AC4(const RemapJob& job) {
    const uint32_t callerWord = prim_set_rc_ssx(0);
    RemapFourAtATime(job, LinearFour(job));
    prim_set_cw_ssx(callerWord);
}

}  // namespace PRIM_BUILD
