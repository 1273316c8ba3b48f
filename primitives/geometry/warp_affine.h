// The affine warp behind the rotation and the shear.
#ifndef KV_PRIMITIVES_GEOMETRY_WARP_AFFINE_H
#define KV_PRIMITIVES_GEOMETRY_WARP_AFFINE_H

#include <emmintrin.h>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Takes the whole turns off an angle in degrees, through a 32-bit integer,
// so that the result lies in [0, 360).
inline double ownpi_NormaliseAngle(double angle) {
    double turns = _mm_cvttsd_si32(_mm_set_sd(angle / 360.0));
    double a = angle - turns * 360.0;
    return a < 0.0 ? a + 360.0 : a;
}

// Warps the source rectangle srcRoi by the transform c (source to
// destination: x' = c00 x + c01 y + c02, y' = c10 x + c11 y + c12) into the
// destination rectangle dstRoi. src and dst are the images' origins.
PrimStatus ownpi_WarpAffine(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst,
                            int32_t dstStep, PrimRect dstRoi, const double coeffs[2][3], int32_t interpolation);

}  // namespace PRIM_BUILD

#endif
