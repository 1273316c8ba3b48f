// The kernels of the affine warp and what they share: the job the driver
// hands them, the walk over the spans with the sampling position carried as
// running sums, and the writing of a span's colour bytes.
#ifndef KV_PRIMITIVES_GEOMETRY_WARP_KERNELS_H
#define KV_PRIMITIVES_GEOMETRY_WARP_KERNELS_H

#include <cstdint>
#include <cstring>

#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {

// Where a destination point (X, Y) samples the source:
// x = a X + b Y + offsetX, y = c X + e Y + offsetY.
struct SamplingTransform {
    double a, b, offsetX;
    double c, e, offsetY;
};

// dst points at row top of the destination; the spans hold first and last
// column of each row from top to bottom; srcLastX and srcLastY are the
// source image's last column and row; scratch is the cubic kernel's room for
// one row of positions.
struct WarpJob {
    const uint8_t* src;
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    int32_t top, bottom;
    const int32_t* spans;
    SamplingTransform t;
    int32_t srcLastX, srcLastY;
    uint8_t* scratch;
};

using WarpKernel = void (*)(const WarpJob& job);

void ownpi_WarpAffine_NN_8_AC4(const WarpJob& job);
void ownpi_WarpAffine_L_8u_AC4(const WarpJob& job);
void ownpi_WarpAffine_C_8u_AC4(const WarpJob& job);
void ownpi_WarpAffine_CR_8u_AC4(const WarpJob& job);

// Calls span(out, count, x, y) for every row whose span is not empty: out
// points at the span's first destination pixel, and (x, y) is its sampling
// position, which span advances past the count pixels. The position is
// carried as running sums, never recomputed: a base per row, advanced by b
// and e from row to row, to which bias (the nearest kernel's 0.5) is added
// once at the start of the span, and to which a kernel adds a and c from
// pixel to pixel.
template <class SpanFunction>
void ForEachSpan(const WarpJob& job, double bias, SpanFunction&& span) {
    const SamplingTransform& t = job.t;
    double rowX = t.b * job.top + t.offsetX;
    double rowY = t.e * job.top + t.offsetY;
    uint8_t* row = job.dst;
    for (int32_t y = job.top; y <= job.bottom; ++y, row += job.dstStep) {
        const int32_t first = job.spans[2 * (y - job.top)], last = job.spans[2 * (y - job.top) + 1];
        if (last >= first) {
            double x = t.a * first + rowX + bias, yy = t.c * first + rowY + bias;
            span(row + 4 * static_cast<ptrdiff_t>(first), last - first + 1, x, yy);
        }
        rowX += t.b;
        rowY += t.e;
    }
}

// Asks for the two source rows that the pixel kPrefetchPixels further on
// will read (roughly: that position is multiplied out, not summed). A walk
// along a destination row that crosses source rows every few pixels defeats
// the processor's own prefetching.
constexpr double kPrefetchPixels = 24.0;

inline void PrefetchAhead(const WarpJob& job, double x, double y) {
    const ptrdiff_t ax = _mm_cvttsd_si32(_mm_set_sd(x + kPrefetchPixels * job.t.a));
    const ptrdiff_t ay = _mm_cvttsd_si32(_mm_set_sd(y + kPrefetchPixels * job.t.c));
    // A plain number, not a pointer: the pixel may lie outside the image,
    // which a prefetch tolerates.
    const uintptr_t at = reinterpret_cast<uintptr_t>(job.src) + static_cast<uintptr_t>(ay * job.srcStep + 4 * ax);
    _mm_prefetch(reinterpret_cast<const char*>(at), _MM_HINT_T0);
    _mm_prefetch(reinterpret_cast<const char*>(at + static_cast<uintptr_t>(ptrdiff_t{job.srcStep})), _MM_HINT_T0);
}

// Four positions along a row, x and y, two to a register.
struct Positions {
    __m128d x01, x23, y01, y23;
};

// Writes the colour bytes of count pixels from out on, four at a time, from
// sample(positions), which gives four pixel words. The positions run on by
// the transform's (a, c) from pixel to pixel, one addition after the other,
// and (x, y) ends past the last pixel. A last pixel or three are sampled
// alone, in every lane. The fourth byte of every destination pixel stays.
template <class Sample>
void WriteSpan(const WarpJob& job, uint8_t* out, int32_t count, double& x, double& y, Sample&& sample) {
    const double a = job.t.a, c = job.t.c;
    const __m128i colour = Broadcast(kColourMask);
    for (; count >= 4; count -= 4, out += 16) {
        const double x1 = x + a, x2 = x1 + a, x3 = x2 + a;
        const double y1 = y + c, y2 = y1 + c, y3 = y2 + c;
        const __m128i four =
            sample(Positions{_mm_setr_pd(x, x1), _mm_setr_pd(x2, x3), _mm_setr_pd(y, y1), _mm_setr_pd(y2, y3)});
        StoreUnaligned(out, Merge(four, LoadUnaligned(out), colour));
        PrefetchAhead(job, x, y);
        x = x3 + a;
        y = y3 + c;
    }
    for (; count > 0; --count, out += 4) {
        const __m128d px = _mm_set1_pd(x), py = _mm_set1_pd(y);
        const uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(sample(Positions{px, px, py, py})));
        memcpy(out, &word, 3);
        x += a;
        y += c;
    }
}

// The four positions truncated to integers.
inline __m128i Truncate(__m128d v01, __m128d v23) {
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(v01), _mm_cvttpd_epi32(v23));
}

// The address of source pixel (x, y).
inline const uint8_t* SourcePixel(const WarpJob& job, int32_t x, int32_t y) {
    return job.src + static_cast<ptrdiff_t>(y) * job.srcStep + 4 * static_cast<ptrdiff_t>(x);
}

// The addresses of the four source pixels (ix, iy), lane by lane.
inline void SourcePixels(const WarpJob& job, __m128i ix, __m128i iy, const uint8_t* cells[4]) {
    alignas(16) int32_t xs[4], ys[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(xs), ix);
    _mm_store_si128(reinterpret_cast<__m128i*>(ys), iy);
    for (int k = 0; k < 4; ++k) cells[k] = SourcePixel(job, xs[k], ys[k]);
}

}  // namespace PRIM_BUILD

#endif
