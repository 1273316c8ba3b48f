// primiFilterBox_8u_AC4R: the mean of a rectangular window for each colour
// element. The mask's area picks the implementation, and with it the
// rounding: fixed 3x3, integer running sums, or float running sums above an
// area of 8100.
#include "primitives/neighbourhood/box_filter.h"

namespace {

constexpr int32_t kLargestIntegerArea = 8100;

}  // namespace

extern "C" PrimStatus PRIM(primiFilterBox_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                    int32_t dstStep, PrimSize roiSize, PrimSize maskSize,
                                                    PrimPoint anchor) {
    using namespace PRIM_BUILD;
    if (pSrc == nullptr || pDst == nullptr) return PrimNullPtrErr;
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    if (maskSize.width <= 0 || maskSize.height <= 0) return PrimMaskSizeErr;
    if (anchor.x < 0 || anchor.y < 0 || anchor.x >= maskSize.width || anchor.y >= maskSize.height)
        return PrimAnchorErr;

    // The area as a 32-bit product, wrapped as it comes.
    const int32_t area =
        static_cast<int32_t>(static_cast<uint32_t>(maskSize.width) * static_cast<uint32_t>(maskSize.height));
    if (area > kLargestIntegerArea)
        return ownBlurFloat_8u(pSrc, srcStep, pDst, dstStep, roiSize, maskSize, anchor);
    if (maskSize.width == 3 && maskSize.height == 3)
        return ownBlur_8u_33(pSrc, srcStep, pDst, dstStep, roiSize, anchor);
    return ownBlur_8u(pSrc, srcStep, pDst, dstStep, roiSize, maskSize, anchor);
}
