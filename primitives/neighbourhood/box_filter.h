// The three implementations behind primiFilterBox_8u_AC4R. Each writes, for
// every destination pixel, a rounded mean of the source window whose
// top-left corner lies anchor.x pixels left of and anchor.y rows above the
// pixel's own source position; the rounding is each path's own.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_BOX_FILTER_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_BOX_FILTER_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// The top-left pixel of the first destination pixel's window.
inline const uint8_t* BoxWindowOrigin(const uint8_t* src, int32_t srcStep, PrimPoint anchor) {
    return src - static_cast<ptrdiff_t>(anchor.y) * srcStep - 4 * static_cast<ptrdiff_t>(anchor.x);
}

// A 3x3 window, with no scratch memory.
PrimStatus ownBlur_8u_33(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                         PrimPoint anchor);

// Integer running sums, for masks of area up to 8100 other than 3x3.
PrimStatus ownBlur_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                      PrimSize maskSize, PrimPoint anchor);

// Single-precision running sums, for masks of area above 8100.
PrimStatus ownBlurFloat_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                           PrimSize maskSize, PrimPoint anchor);

}  // namespace PRIM_BUILD

#endif
