// The affine warp driver: where the source rectangle lands, which
// destination pixels it covers, and the inverse transform its kernels sample
// by; primiGetAffineQuad.
#include "primitives/geometry/warp_affine.h"

#include <cmath>

#include "primitives/geometry/quad_clip.h"
#include "primitives/geometry/warp_kernels.h"

namespace PRIM_BUILD {
namespace {

// Kernels by interpolation code shifted right by one: nearest, linear,
// cubic, Catmull-Rom.
const WarpKernel kWarpKernels[4] = {ownpi_WarpAffine_NN_8_AC4, ownpi_WarpAffine_L_8u_AC4, ownpi_WarpAffine_C_8u_AC4,
                                    ownpi_WarpAffine_CR_8u_AC4};

// The corners (x0, y0), (x1, y0), (x1, y1), (x0, y1) under the transform.
void ownpi_WarpAffineRect(const double c[2][3], PrimPoint topLeft, PrimPoint bottomRight, Quad quad) {
    const double xs[4] = {double(topLeft.x), double(bottomRight.x), double(bottomRight.x), double(topLeft.x)};
    const double ys[4] = {double(topLeft.y), double(topLeft.y), double(bottomRight.y), double(bottomRight.y)};
    for (int i = 0; i < 4; ++i) {
        quad[i][0] = c[0][0] * xs[i] + c[0][1] * ys[i] + c[0][2];
        quad[i][1] = c[1][0] * xs[i] + c[1][1] * ys[i] + c[1][2];
    }
}

// A transform whose determinant vanishes relative to its diagonal product,
// or whose products are both negligible, cannot be inverted.
bool IsSingular(const double c[2][3]) {
    const double p = c[0][0] * c[1][1], q = c[0][1] * c[1][0];
    if (fabs(p) > 1e-200) return fabs((p - q) / p) <= 1e-10;
    return fabs(q) <= 1e-10;
}

// The last column or row of a rectangle, held within 32 bits.
int32_t LastOf(int32_t origin, int32_t length) {
    const int64_t last = int64_t{origin} + length - 1;
    return last > INT32_MAX ? INT32_MAX : static_cast<int32_t>(last);
}

bool IsWarpInterpolation(int32_t mode) {
    return mode == InterpNearest || mode == InterpLinear || mode == InterpCubic || mode == InterpCatmullRom;
}

// The inverse comes from three corners of the quad rather than from the
// matrix: P0 -> P1 spans the source row, P1 -> P2 the source column.
// Orientation is 1 when the quad runs clockwise on the screen.
SamplingTransform SamplingFromQuad(const Quad quad, PrimRect roi, int* orientation) {
    const double x0 = quad[0][0], y0 = quad[0][1], x1 = quad[1][0], y1 = quad[1][1];
    const double x2 = quad[2][0], y2 = quad[2][1];
    const double d = (x1 - x0) * (y2 - y1) - (x2 - x1) * (y1 - y0);
    const double k = 1.0 / d;
    const double u = (roi.width - 1) * k, v = (roi.height - 1) * k;
    SamplingTransform t;
    t.a = (y2 - y1) * u;
    t.b = 0.0 - (x2 - x1) * u;
    t.c = 0.0 - (y1 - y0) * v;
    t.e = (x1 - x0) * v;
    t.offsetX = roi.x - t.a * x0 - t.b * y0;
    t.offsetY = roi.y - t.c * x0 - t.e * y0;
    *orientation = k > 0.0 ? 1 : 0;
    return t;
}

}  // namespace

// Tests in a fixed order; all come before the first write. The interpolation
// word carries InterpSmoothEdge in its top bit.
PrimStatus ownpi_WarpAffine(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst,
                            int32_t dstStep, PrimRect dstRoi, const double coeffs[2][3], int32_t interpolation) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (srcSize.width < 1 || srcSize.height < 1 || srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 ||
        srcRoi.height < 1 || dstRoi.x < 0 || dstRoi.y < 0 || dstRoi.width < 1 || dstRoi.height < 1)
        return PrimSizeErr;
    int32_t mode = interpolation & 0x7FFFFFFF;
    if (!IsWarpInterpolation(mode)) return PrimInterpolationErr;
    if (IsSingular(coeffs)) return PrimCoeffErr;

    const bool smoothEdge = (interpolation & InterpSmoothEdge) != 0;
    // A source one pixel across has no neighbours to blend; one under four
    // has too few for the cubic.
    if (srcSize.width == 1 || srcSize.height == 1) {
        mode = InterpNearest;
    } else if (mode == InterpCubic && (srcSize.width < 4 || srcSize.height < 4)) {
        mode = InterpLinear;
    }

    if (srcRoi.x >= srcSize.width || srcRoi.y >= srcSize.height) return PrimNoOverlapWrn;
    if (srcRoi.width > srcSize.width - srcRoi.x) srcRoi.width = srcSize.width - srcRoi.x;
    if (srcRoi.height > srcSize.height - srcRoi.y) srcRoi.height = srcSize.height - srcRoi.y;
    if (srcRoi.width < 2 || srcRoi.height < 2) return PrimRectErr;

    double quad[4][2];
    if (PRIM(primiGetAffineQuad)(srcRoi, quad, coeffs) != PrimOk) return PrimCoeffErr;
    int orientation;
    const SamplingTransform t = SamplingFromQuad(quad, srcRoi, &orientation);

    const PrimPoint dstMin = {dstRoi.x, dstRoi.y};
    const PrimPoint dstMax = {LastOf(dstRoi.x, dstRoi.width), LastOf(dstRoi.y, dstRoi.height)};
    int32_t* spans;
    int32_t top, bottom;
    if (!ownpi_ClipQuad(quad, dstMin, dstMax, orientation, &spans, &top, &bottom)) return PrimNoResultWrn;

    uint8_t* scratch = mode == InterpCubic ? PRIM(primsMalloc_8u)(dstRoi.width * 2 * 4) : nullptr;
    const WarpJob job = {src, srcStep, dst + static_cast<ptrdiff_t>(top) * dstStep, dstStep, top, bottom, spans, t,
                         srcSize.width - 1, srcSize.height - 1, scratch};
    kWarpKernels[mode >> 1](job);
    PRIM(primsFree)(scratch);
    PRIM(primsFree)(spans);

    if (smoothEdge) ownpi_SmoothBorder(dst, dstStep, quad, dstMin, dstMax, orientation);
    return PrimOk;
}

}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiGetAffineQuad)(PrimRect srcRoi, double quad[4][2], const double coeffs[2][3]) {
    if (srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 || srcRoi.height < 1) return PrimSizeErr;
    const PrimPoint last = {LastOf(srcRoi.x, srcRoi.width), LastOf(srcRoi.y, srcRoi.height)};
    ownpi_WarpAffineRect(coeffs, {srcRoi.x, srcRoi.y}, last, quad);
    const int check = ownpi_CheckQuad(quad);
    return check == PrimQuadNotConvex || check == PrimQuadDegenerate ? PrimCoeffErr : PrimOk;
}
