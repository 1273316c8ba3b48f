// The kernels of the affine warp and what they share: the job the driver
// hands them, the walk over the spans with the sampling position carried as
// running sums, and the writing of a span's colour bytes.
#ifndef KV_PRIMITIVES_GEOMETRY_WARP_KERNELS_H
#define KV_PRIMITIVES_GEOMETRY_WARP_KERNELS_H

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

// Calls span(row, first, last, x, y) for every row whose span is not empty,
// with row pointing at the destination row and (x, y) the sampling position
// of its first pixel. The position is carried as running sums, not
// recomputed: a base per row, advanced by b and e from row to row, to which
// a kernel adds a and c from pixel to pixel.
template <class SpanFunction>
void ForEachSpan(const WarpJob& job, SpanFunction&& span) {
    const SamplingTransform& t = job.t;
    double rowX = t.b * job.top + t.offsetX;
    double rowY = t.e * job.top + t.offsetY;
    uint8_t* row = job.dst;
    for (int32_t y = job.top; y <= job.bottom; ++y, row += job.dstStep) {
        const int32_t first = job.spans[2 * (y - job.top)], last = job.spans[2 * (y - job.top) + 1];
        if (last >= first) span(row + 4 * static_cast<ptrdiff_t>(first), last - first + 1, t.a * first + rowX,
                                t.c * first + rowY);
        rowX += t.b;
        rowY += t.e;
    }
}

// Writes the colour bytes of count pixels from out on, pixel i taking
// sample(x, y) (a pixel word in the low lane) at the i-th running position.
// The fourth byte of every destination pixel stays.
template <class Sample>
void WriteSpan(uint8_t* out, int32_t count, double x, double y, double a, double c, Sample&& sample) {
    const __m128i colour = Broadcast(kColourMask);
    int32_t i = 0;
    for (; i + 4 <= count; i += 4, out += 16) {
        const __m128i p0 = sample(x, y);
        x += a, y += c;
        const __m128i p1 = sample(x, y);
        x += a, y += c;
        const __m128i p2 = sample(x, y);
        x += a, y += c;
        const __m128i p3 = sample(x, y);
        x += a, y += c;
        const __m128i four = _mm_unpacklo_epi64(_mm_unpacklo_epi32(p0, p1), _mm_unpacklo_epi32(p2, p3));
        StoreUnaligned(out, Merge(four, LoadUnaligned(out), colour));
    }
    for (; i < count; ++i, out += 4) {
        const uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(sample(x, y)));
        x += a, y += c;
        memcpy(out, &word, 3);
    }
}

// The address of source pixel (x, y).
inline const uint8_t* SourcePixel(const WarpJob& job, int32_t x, int32_t y) {
    return job.src + static_cast<ptrdiff_t>(y) * job.srcStep + 4 * static_cast<ptrdiff_t>(x);
}

}  // namespace PRIM_BUILD

#endif
