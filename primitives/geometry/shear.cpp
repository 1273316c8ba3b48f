// primiShear_8u_AC4R: the affine warp by a shear along both axes.
#include "primitives/geometry/warp_affine.h"

using namespace PRIM_BUILD;

// The steps are tested first, ahead of every test of the warp itself.
extern "C" PrimStatus PRIM(primiShear_8u_AC4R)(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi,
                                                uint8_t* dst, int32_t dstStep, PrimRect dstRoi, double xShear,
                                                double yShear, double xShift, double yShift, int32_t interpolation) {
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    const double coeffs[2][3] = {{1.0, xShear, xShift}, {yShear, 1.0, yShift}};
    return ownpi_WarpAffine(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, coeffs, interpolation);
}
