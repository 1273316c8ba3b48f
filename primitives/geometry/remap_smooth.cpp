// The remap row drivers with InterpSmoothEdge: a band one pixel wide around
// the source rectangle fades the rectangle's edge pixels into what the
// destination already holds, so that the warped picture has no hard edge.
#include "primitives/frame/build.h"
#include "primitives/geometry/interpolation.h"
#include "primitives/geometry/remap_rows.h"

namespace PRIM_BUILD {
namespace {

// One axis of the linear kernel in 16 fraction bits, from the whole source:
// the left tap and the weight of the right one, up to 65536 on the last
// sample.
void LinearTap16(float v, int32_t last, int32_t* index, int32_t* weight) {
    int32_t f = static_cast<int32_t>(v * 65536.0f);
    if (f < static_cast<int64_t>(last) * 65536) {
        *index = f >> 16;
        *weight = f & 0xFFFF;
    } else {
        *index = last - 1;
        *weight = 65536;
    }
}

// The smoothing rows' own linear kernel: the colour values scaled by 64,
// rounded at the end.
void SampleLinear16(const RemapJob& job, float x, float y, uint8_t* dst) {
    int32_t col, wx, row, wy;
    LinearTap16(x, job.lastCol, &col, &wx);
    LinearTap16(y, job.lastRow, &row, &wy);
    const uint8_t* upper = PixelAt(job, col, row);
    const uint8_t* lower = upper + job.srcStep;
    for (int c = 0; c < 3; ++c) {
        int32_t top = 64 * upper[c] + ((64 * (upper[4 + c] - upper[c]) * wx) >> 16);
        int32_t bottom = 64 * lower[c] + ((64 * (lower[4 + c] - lower[c]) * wx) >> 16);
        dst[c] = static_cast<uint8_t>(((((bottom - top) * wy) >> 16) + top + 32) >> 6);
    }
}

// Where a position lies on one axis, seen from the band: the nearest sample
// of the rectangle and how far outside it the position is. Inside the
// rectangle that distance counts as 1.0.
struct BandAxis {
    int32_t index;
    float distance;
    bool out;
};

BandAxis AlongAxis(float v, float first, float last, int32_t firstIndex, int32_t lastIndex) {
    if (v < first) return {firstIndex, first - v, true};
    if (v > last) return {lastIndex, v - last, true};
    return {static_cast<int32_t>(v), 1.0f, false};
}

// A band pixel keeps part of its destination value and takes the rest from
// the rectangle's nearest pixel; off a corner the two axes' shares multiply.
void BlendBand(const RemapJob& job, const RoiBounds& roi, float x, float y, uint8_t* dst) {
    BandAxis across = AlongAxis(x, roi.left, roi.right, job.xMin, job.xMax);
    BandAxis down = AlongAxis(y, roi.top, roi.bottom, job.yMin, job.yMax);
    float keep, take;
    if (!down.out) {
        keep = across.distance;
        take = 1.0f - across.distance;
    } else if (across.out) {
        take = (1.0f - across.distance) * (1.0f - down.distance);
        keep = 1.0f - take;
    } else {
        keep = down.distance;
        take = 1.0f - down.distance;
    }
    const uint8_t* source = PixelAt(job, across.index, down.index);
    for (int c = 0; c < 3; ++c) dst[c] = static_cast<uint8_t>(static_cast<int32_t>(dst[c] * keep + source[c] * take));
}

template <class Sample>
void RemapSmooth(const RemapJob& job, Sample sample) {
    const RoiBounds roi(job);
    const float outerLeft = static_cast<float>(job.xMin - 1), outerTop = static_cast<float>(job.yMin - 1);
    const float outerRight = static_cast<float>(job.xMax + 1), outerBottom = static_cast<float>(job.yMax + 1);
    ForEachMapPosition(job, [&](float x, float y, uint8_t* dst) {
        if (x < outerLeft || x > outerRight || y < outerTop || y > outerBottom) return;
        if (roi.Outside(x, y))
            BlendBand(job, roi, x, y, dst);
        else
            sample(job, x, y, dst);
    });
}

}  // namespace

void ownpi_RemapS_NN_8_AC4(const RemapJob& job) { RemapSmooth(job, SampleNearest); }

void ownpi_RemapS_L_8u_AC4(const RemapJob& job) { RemapSmooth(job, SampleLinear16); }

void ownpi_RemapS_C_8u_AC4(const RemapJob& job) { RemapSmooth(job, SamplePoint<CubicKernel>); }

void ownpi_RemapS_CR_8u_AC4(const RemapJob& job) { RemapSmooth(job, SamplePoint<CatmullRomKernel>); }

void ownpi_RemapS_L3_8u_AC4(const RemapJob& job) { RemapSmooth(job, SamplePoint<Lanczos3Kernel>); }

}  // namespace PRIM_BUILD
