// The per-channel median over any rectangle with odd sides. The anchor is
// turned into a shift of the source, so that every path below sees a window
// centred on its pixel; the mask's shape then picks the path.
#include "primitives/neighbourhood/median_common.h"

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterMedian_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                      int32_t dstStep, PrimSize size, PrimSize mask, PrimPoint anchor) {
    PrimStatus status = CheckRegion(src, srcStep, dst, dstStep, size);
    if (status != PrimOk) return status;
    if (mask.width <= 0 || mask.height <= 0 || (mask.width & 1) == 0 || (mask.height & 1) == 0) {
        return PrimMaskSizeErr;
    }
    if (anchor.x < 0 || anchor.x >= mask.width || anchor.y < 0 || anchor.y >= mask.height) return PrimAnchorErr;

    const int32_t halfWidth = mask.width >> 1, halfHeight = mask.height >> 1;
    const uint8_t* centre = PixelAt(src, srcStep, halfHeight - anchor.y, halfWidth - anchor.x);
    const auto is = [&](int32_t width, int32_t height) { return mask.width == width && mask.height == height; };
    if (is(3, 3)) return ownprimiFilterMedianSqr_8u_AC4R(centre, srcStep, dst, dstStep, size, MaskSize3x3);
    if (is(5, 5)) return ownprimiFilterMedianSqr_8u_AC4R(centre, srcStep, dst, dstStep, size, MaskSize5x5);
    if (is(3, 1)) return PRIM(primiFilterMedianHoriz_8u_AC4R)(centre, srcStep, dst, dstStep, size, MaskSize3x1);
    if (is(5, 1)) return PRIM(primiFilterMedianHoriz_8u_AC4R)(centre, srcStep, dst, dstStep, size, MaskSize5x1);
    if (is(1, 3)) return PRIM(primiFilterMedianVert_8u_AC4R)(centre, srcStep, dst, dstStep, size, MaskSize1x3);
    if (is(1, 5)) return PRIM(primiFilterMedianVert_8u_AC4R)(centre, srcStep, dst, dstStep, size, MaskSize1x5);
    // A single pixel is its own median: the colours are copied, the
    // destination keeps its fourth bytes.
    if (is(1, 1)) return PRIM(primiCopy_8u_AC4R)(centre, srcStep, dst, dstStep, size);
    return ownprimiFilterMedianCom_8u(PixelAt(centre, srcStep, -halfHeight, -halfWidth), srcStep, dst, dstStep, size,
                                      mask);
}
