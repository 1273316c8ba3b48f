// What the remap entry hands to its row drivers, and the loops they share.
//
// A row driver walks the destination rectangle row by row, reads each
// pixel's source position from the two float maps and samples the source
// there with its kernel. A position outside the source rectangle (below its
// first column or row, or above its last, compared as floats) leaves the
// destination pixel as it was; a position on a bound is inside. Only the
// three colour bytes of a destination pixel are ever written.
#ifndef KV_PRIMITIVES_GEOMETRY_REMAP_ROWS_H
#define KV_PRIMITIVES_GEOMETRY_REMAP_ROWS_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "primitives/frame/build.h"
#include "primitives/geometry/interpolation.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {

struct RemapJob {
    const uint8_t* src;
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    const float* xMap;
    int32_t xMapStep;
    const float* yMap;
    int32_t yMapStep;
    int32_t width, height;           // of the destination rectangle
    int32_t xMin, yMin, xMax, yMax;  // the source rectangle, bounds included
    int32_t lastCol, lastRow;        // of the whole source image
};

using RemapRowDriver = void (*)(const RemapJob& job);

// Without smoothing: nearest, linear, cubic, Catmull-Rom, Lanczos-3.
void ownpi_Remap_NN_8_AC4(const RemapJob& job);
void ownpi_Remap_L_8u_AC4(const RemapJob& job);
void ownpi_Remap_C_8u_AC4(const RemapJob& job);
void ownpi_Remap_CR_8u_AC4(const RemapJob& job);
void ownpi_Remap_L3_8u_AC4(const RemapJob& job);

// With the source's edge faded into the destination over one pixel.
void ownpi_RemapS_NN_8_AC4(const RemapJob& job);
void ownpi_RemapS_L_8u_AC4(const RemapJob& job);
void ownpi_RemapS_C_8u_AC4(const RemapJob& job);
void ownpi_RemapS_CR_8u_AC4(const RemapJob& job);
void ownpi_RemapS_L3_8u_AC4(const RemapJob& job);

// Row y of an image or map with a step in bytes.
template <typename T>
inline T* RowOf(T* origin, int32_t step, int32_t y) {
    using Byte = typename std::conditional<std::is_const<T>::value, const uint8_t, uint8_t>::type;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(origin) + static_cast<ptrdiff_t>(y) * step);
}

inline const uint8_t* PixelAt(const RemapJob& job, int32_t x, int32_t y) {
    return job.src + static_cast<ptrdiff_t>(y) * job.srcStep + 4 * static_cast<ptrdiff_t>(x);
}

// Map rows may start anywhere, so their floats are read bytewise.
inline float MapValue(const float* row, int32_t i) {
    float v;
    memcpy(&v, row + i, 4);
    return v;
}

// The source rectangle's bounds as floats, and its test.
struct RoiBounds {
    explicit RoiBounds(const RemapJob& job)
        : left(static_cast<float>(job.xMin)),
          top(static_cast<float>(job.yMin)),
          right(static_cast<float>(job.xMax)),
          bottom(static_cast<float>(job.yMax)) {}
    bool Outside(float x, float y) const { return x < left || y < top || x > right || y > bottom; }
    float left, top, right, bottom;
};

// Calls visit(x, y, dstPixel) for every destination pixel, in row order.
template <class Visit>
inline void ForEachMapPosition(const RemapJob& job, Visit visit) {
    for (int32_t y = 0; y < job.height; ++y) {
        const float* xs = RowOf(job.xMap, job.xMapStep, y);
        const float* ys = RowOf(job.yMap, job.yMapStep, y);
        uint8_t* dst = RowOf(job.dst, job.dstStep, y);
        for (int32_t i = 0; i < job.width; ++i) visit(MapValue(xs, i), MapValue(ys, i), dst + 4 * static_cast<ptrdiff_t>(i));
    }
}

// Four destination pixels at a time from sample(x, y), which gives four
// pixels for four positions inside the rectangle. Lanes outside it sample the
// rectangle's corner instead, so that every read stays inside the image, and
// keep their old destination pixel; the others keep their fourth byte. The
// last one to three pixels of a row go through the same code from copies,
// with unused lanes left of every rectangle.
template <class SampleFour>
inline void RemapFourAtATime(const RemapJob& job, const SampleFour& sample) {
    const __m128 left = _mm_set1_ps(static_cast<float>(job.xMin)), top = _mm_set1_ps(static_cast<float>(job.yMin));
    const __m128 right = _mm_set1_ps(static_cast<float>(job.xMax)), bottom = _mm_set1_ps(static_cast<float>(job.yMax));
    const __m128i colour = Broadcast(kColourMask);
    auto four = [&](const uint8_t* xs, const uint8_t* ys, uint8_t* dst) {
        __m128 x = _mm_loadu_ps(reinterpret_cast<const float*>(xs));
        __m128 y = _mm_loadu_ps(reinterpret_cast<const float*>(ys));
        __m128 out = _mm_or_ps(_mm_or_ps(_mm_cmplt_ps(x, left), _mm_cmplt_ps(y, top)),
                               _mm_or_ps(_mm_cmpgt_ps(x, right), _mm_cmpgt_ps(y, bottom)));
        __m128i write = colour;
        if (_mm_movemask_ps(out) != 0) {
            x = _mm_or_ps(_mm_and_ps(out, left), _mm_andnot_ps(out, x));
            y = _mm_or_ps(_mm_and_ps(out, top), _mm_andnot_ps(out, y));
            write = _mm_andnot_si128(_mm_castps_si128(out), colour);
        }
        StoreUnaligned(dst, Merge(sample(x, y), LoadUnaligned(dst), write));
    };
    for (int32_t y = 0; y < job.height; ++y) {
        const uint8_t* xs = reinterpret_cast<const uint8_t*>(RowOf(job.xMap, job.xMapStep, y));
        const uint8_t* ys = reinterpret_cast<const uint8_t*>(RowOf(job.yMap, job.yMapStep, y));
        uint8_t* dst = RowOf(job.dst, job.dstStep, y);
        int32_t i = 0;
        for (; i + 4 <= job.width; i += 4) {
            ptrdiff_t at = 4 * static_cast<ptrdiff_t>(i);
            four(xs + at, ys + at, dst + at);
        }
        if (i == job.width) continue;
        size_t rest = static_cast<size_t>(job.width - i);
        ptrdiff_t at = 4 * static_cast<ptrdiff_t>(i);
        float xTail[4] = {-1.0f, -1.0f, -1.0f, -1.0f}, yTail[4] = {-1.0f, -1.0f, -1.0f, -1.0f};
        uint8_t dstTail[16] = {};
        memcpy(xTail, xs + at, 4 * rest);
        memcpy(yTail, ys + at, 4 * rest);
        memcpy(dstTail, dst + at, 4 * rest);
        four(reinterpret_cast<const uint8_t*>(xTail), reinterpret_cast<const uint8_t*>(yTail), dstTail);
        memcpy(dst + at, dstTail, 4 * rest);
    }
}

// The per-pixel samplers, each writing the colour bytes of dst from (x, y).

// The pixel at trunc(x + 0.5), trunc(y + 0.5), the additions in float.
inline void SampleNearest(const RemapJob& job, float x, float y, uint8_t* dst) {
    memcpy(dst, PixelAt(job, static_cast<int32_t>(x + 0.5f), static_cast<int32_t>(y + 0.5f)), 3);
}

// The double-precision kernels read taps around i = trunc(v + 1e-7): with all
// of them inside the source the interior form runs, else the clamped one.
// Cubic and Catmull-Rom take the fraction from tap 1 of four, Lanczos-3 the
// first of six taps minus the position.
struct CubicKernel {
    static constexpr int32_t kTaps = 4;
    static constexpr auto Pixel = ownpi_dInterPoint_C_Pixel_8u;
    static constexpr auto PixelB = ownpi_dInterPoint_C_PixelB_8u;
    static double Argument(float v, int32_t i) { return double{v} - i; }
};

struct CatmullRomKernel {
    static constexpr int32_t kTaps = 4;
    static constexpr auto Pixel = ownpi_dInterPoint_CR_Pixel_8u;
    static constexpr auto PixelB = ownpi_dInterPoint_CR_PixelB_8u;
    static double Argument(float v, int32_t i) { return double{v} - i; }
};

struct Lanczos3Kernel {
    static constexpr int32_t kTaps = 6;
    static constexpr auto Pixel = ownpi_dInterPoint_L3_Pixel_8u;
    static constexpr auto PixelB = ownpi_dInterPoint_L3_PixelB_8u;
    static double Argument(float v, int32_t i) { return (i - 2) - double{v}; }
};

template <class Kernel>
inline void SamplePoint(const RemapJob& job, float x, float y, uint8_t* dst) {
    constexpr int32_t taps = Kernel::kTaps, before = taps / 2 - 1;
    int32_t ix = static_cast<int32_t>(static_cast<double>(x) + 1e-7);
    int32_t iy = static_cast<int32_t>(static_cast<double>(y) + 1e-7);
    double ax = Kernel::Argument(x, ix), ay = Kernel::Argument(y, iy);
    if (ix >= before && ix + taps - before <= job.lastCol + 1 && iy >= before && iy + taps - before <= job.lastRow + 1) {
        Kernel::Pixel(PixelAt(job, ix - before, iy - before), job.srcStep, 4, dst, 3, ax, ay);
        return;
    }
    int32_t xIndex[taps], yIndex[taps];
    SetClampedIndices(job.lastCol + 1, xIndex, taps, x);
    SetClampedIndices(job.lastRow + 1, yIndex, taps, y);
    Kernel::PixelB(job.src, job.srcStep, 4, dst, 3, ax, ay, xIndex, yIndex);
}

}  // namespace PRIM_BUILD

#endif
