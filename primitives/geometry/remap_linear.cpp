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
// stage results at most 255 * 64.
#include "primitives/frame/build.h"
#include "primitives/geometry/interpolation.h"
#include "primitives/geometry/remap_rows.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kLinearBias = 33;

struct LinearRow {
    explicit LinearRow(const RemapJob& job)
        : src(job.src),
          srcStep(job.srcStep),
          left(_mm_set1_ps(static_cast<float>(job.xMin))),
          top(_mm_set1_ps(static_cast<float>(job.yMin))),
          right(_mm_set1_ps(static_cast<float>(job.xMax))),
          bottom(_mm_set1_ps(static_cast<float>(job.yMax))),
          lastColumn(_mm_set1_epi32(job.xMax)),
          lastRow(_mm_set1_epi32(job.yMax)) {}

    // The integer part, stepped back on the last column or row, and the
    // fraction in 14 bits. A step back from column 0 (a rectangle one column
    // wide at the image's left edge) reads column -1 with weight 0: column 0
    // with fraction 0 is the same sample and stays inside the image.
    static void Axis(__m128 v, __m128i last, __m128i* index, __m128i* fraction) {
        __m128i i = _mm_cvttps_epi32(v);
        i = _mm_add_epi32(i, _mm_cmpeq_epi32(i, last));
        __m128i f = RoundNonNegative(_mm_mul_ps(_mm_sub_ps(v, _mm_cvtepi32_ps(i)), _mm_set1_ps(16384.0f)));
        __m128i before = _mm_cmplt_epi32(i, _mm_setzero_si128());
        *index = _mm_andnot_si128(before, i);
        *fraction = _mm_andnot_si128(before, f);
    }

    // One pixel from the 2x2 cell at p, with horizontal weight pair wx =
    // (16384 - fx, fx) and vertical pair wy, both repeated over four lanes.
    __m128i Cell(const uint8_t* p, __m128i wx, __m128i wy) const {
        __m128i cell = _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)),
                                          _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + srcStep)));
        __m128i upper, lower;
        PairPixels(cell, &upper, &lower);
        __m128i top = _mm_srai_epi32(_mm_madd_epi16(upper, wx), 8);
        __m128i bottom = _mm_srai_epi32(_mm_madd_epi16(lower, wx), 8);
        __m128i stages = _mm_packs_epi32(top, bottom);
        __m128i pairs = _mm_unpacklo_epi16(stages, _mm_srli_si128(stages, 8));
        return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(pairs, wy), _mm_set1_epi32(kLinearBias)), 20);
    }

    // Four destination pixels from four positions; lanes outside the
    // rectangle keep old entirely.
    __m128i Four(__m128 x, __m128 y, __m128i old) const {
        __m128 out = _mm_or_ps(_mm_or_ps(_mm_cmplt_ps(x, left), _mm_cmplt_ps(y, top)),
                               _mm_or_ps(_mm_cmpgt_ps(x, right), _mm_cmpgt_ps(y, bottom)));
        // Outside lanes sample the rectangle's corner, so that every read
        // stays inside the image.
        x = _mm_or_ps(_mm_and_ps(out, left), _mm_andnot_ps(out, x));
        y = _mm_or_ps(_mm_and_ps(out, top), _mm_andnot_ps(out, y));
        __m128i ix, fx, iy, fy;
        Axis(x, lastColumn, &ix, &fx);
        Axis(y, lastRow, &iy, &fy);
        const __m128i one = _mm_set1_epi32(16384);
        __m128i wx = _mm_or_si128(_mm_slli_epi32(fx, 16), _mm_sub_epi32(one, fx));
        __m128i wy = _mm_or_si128(_mm_slli_epi32(fy, 16), _mm_sub_epi32(one, fy));

        alignas(16) int32_t col[4], row[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(col), ix);
        _mm_store_si128(reinterpret_cast<__m128i*>(row), iy);
        auto at = [&](int k) { return src + static_cast<ptrdiff_t>(row[k]) * srcStep + 4 * static_cast<ptrdiff_t>(col[k]); };
        __m128i p0 = Cell(at(0), _mm_shuffle_epi32(wx, 0x00), _mm_shuffle_epi32(wy, 0x00));
        __m128i p1 = Cell(at(1), _mm_shuffle_epi32(wx, 0x55), _mm_shuffle_epi32(wy, 0x55));
        __m128i p2 = Cell(at(2), _mm_shuffle_epi32(wx, 0xAA), _mm_shuffle_epi32(wy, 0xAA));
        __m128i p3 = Cell(at(3), _mm_shuffle_epi32(wx, 0xFF), _mm_shuffle_epi32(wy, 0xFF));
        __m128i fresh = _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
        __m128i write = _mm_andnot_si128(_mm_castps_si128(out), Broadcast(kColourMask));
        return Merge(fresh, old, write);
    }

    const uint8_t* src;
    int32_t srcStep;
    __m128 left, top, right, bottom;
    __m128i lastColumn, lastRow;
};

}  // namespace

void ownpi_Remap_L_8u_AC4(const RemapJob& job) {
    const LinearRow linear(job);
    for (int32_t y = 0; y < job.height; ++y) {
        const uint8_t* xs = reinterpret_cast<const uint8_t*>(RowOf(job.xMap, job.xMapStep, y));
        const uint8_t* ys = reinterpret_cast<const uint8_t*>(RowOf(job.yMap, job.yMapStep, y));
        uint8_t* dst = RowOf(job.dst, job.dstStep, y);
        int32_t i = 0;
        for (; i + 4 <= job.width; i += 4) {
            __m128 x = _mm_loadu_ps(reinterpret_cast<const float*>(xs + 4 * static_cast<ptrdiff_t>(i)));
            __m128 yv = _mm_loadu_ps(reinterpret_cast<const float*>(ys + 4 * static_cast<ptrdiff_t>(i)));
            uint8_t* d = dst + 4 * static_cast<ptrdiff_t>(i);
            StoreUnaligned(d, linear.Four(x, yv, LoadUnaligned(d)));
        }
        if (i == job.width) continue;
        // The last one to three pixels go through the same code from copies;
        // the unused lanes lie left of every rectangle and are skipped.
        size_t rest = static_cast<size_t>(job.width - i);
        float xTail[4] = {-1.0f, -1.0f, -1.0f, -1.0f}, yTail[4] = {-1.0f, -1.0f, -1.0f, -1.0f};
        uint8_t dstTail[16] = {};
        memcpy(xTail, xs + 4 * static_cast<ptrdiff_t>(i), 4 * rest);
        memcpy(yTail, ys + 4 * static_cast<ptrdiff_t>(i), 4 * rest);
        memcpy(dstTail, dst + 4 * static_cast<ptrdiff_t>(i), 4 * rest);
        StoreUnaligned(dstTail, linear.Four(_mm_loadu_ps(xTail), _mm_loadu_ps(yTail), LoadUnaligned(dstTail)));
        memcpy(dst + 4 * static_cast<ptrdiff_t>(i), dstTail, 4 * rest);
    }
}

}  // namespace PRIM_BUILD
