// The exact path of the rotation: a quarter turn that lands on whole pixels
// is a permutation of pixels, with no interpolation.
#ifndef KV_PRIMITIVES_GEOMETRY_QUARTER_TURN_H
#define KV_PRIMITIVES_GEOMETRY_QUARTER_TURN_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Rotates srcRoi by angle (90, 180 or 270 degrees) and the whole shifts into
// dstRoi, copying the colour bytes of each pixel. src and dst are the
// images' origins. The interpolation word has no part here.
PrimStatus ownpi_RotateQuarter(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst,
                               int32_t dstStep, PrimRect dstRoi, double angle, double xShift, double yShift);

}  // namespace PRIM_BUILD

#endif
