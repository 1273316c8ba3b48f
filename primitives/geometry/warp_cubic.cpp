// The cubic and Catmull-Rom kernels of the affine warp, over the samplers
// shared with remap.
#include "primitives/geometry/interpolation.h"
#include "primitives/geometry/warp_kernels.h"

namespace PRIM_BUILD {
namespace {

// Taps within this of the next integer count as on it.
constexpr double kTapNudge = 1e-7;

}  // namespace

// A piece of a row's positions go into the scratch as floats, all x then all y, and
// the fixed-point cubic row samples them with bounds one pixel beyond the
// source on every side, so that it rejects none.
void ownpi_WarpAffine_C_8u_AC4(const WarpJob& job) {
    float* xs = reinterpret_cast<float*>(job.scratch);
    ForEachSpan(job, 0.0, [&job, xs](uint8_t* out, int32_t count, double& x, double& y) {
        float* ys = xs + count;
        for (int32_t i = 0; i < count; ++i) {
            xs[i] = static_cast<float>(x);
            ys[i] = static_cast<float>(y);
            x += job.t.a;
            y += job.t.c;
        }
        ownpi_dInterVectorClip_C_8u_AC4(job.src, job.srcStep, out, xs, ys, count, -1, -1, job.srcLastX + 1,
                                        job.srcLastY + 1, job.srcLastX, job.srcLastY);
    });
}

// Catmull-Rom in double, reading four taps on each axis around
// trunc(position + 1e-7); within a pixel of the border the taps are clamped.
void ownpi_WarpAffine_CR_8u_AC4(const WarpJob& job) {
    const int32_t width = job.srcLastX + 1, height = job.srcLastY + 1;
    ForEachSpan(job, 0.0, [&job, width, height](uint8_t* out, int32_t count, double& x, double& y) {
        for (int32_t i = 0; i < count; ++i, out += 4) {
            const int32_t ix = static_cast<int32_t>(x + kTapNudge), iy = static_cast<int32_t>(y + kTapNudge);
            const double tx = x - ix, ty = y - iy;
            if (ix >= 1 && ix < width - 2 && iy >= 1 && iy < height - 2) {
                ownpi_dInterPoint_CR_Pixel_8u(SourcePixel(job, ix - 1, iy - 1), job.srcStep, 4, out, 3, tx, ty);
            } else {
                int32_t xIndex[4], yIndex[4];
                setIndexCR(width, xIndex, x);
                setIndexCR(height, yIndex, y);
                ownpi_dInterPoint_CR_PixelB_8u(job.src, job.srcStep, 4, out, 3, tx, ty, xIndex, yIndex);
            }
            x += job.t.a;
            y += job.t.c;
        }
    });
}

}  // namespace PRIM_BUILD
