// primiFilter_8u_AC4R: the three colour channels convolved with an integer
// kernel of any size and divided by an integer divisor.
#include "primitives/frame/memory.h"
#include "primitives/neighbourhood/convolution.h"

namespace PRIM_BUILD {
namespace {

Division DivisionBy(int32_t divisor) {
    if (divisor == 1) return {Division::kWhole, 0, 1.0f};
    if (divisor > 1 && (divisor & (divisor - 1)) == 0) {
        int32_t shift = 0;
        while ((1 << shift) != divisor) ++shift;
        return {Division::kShift, shift, 1.0f};
    }
    return {Division::kScale, 0, 1.0f / static_cast<float>(divisor)};
}

}  // namespace

// The fast path needs a kernel at least 3 wide, a row of at least four
// pixels, the scratch block and 16-bit coefficients; otherwise, and
// silently when the block could not be had, the per-pixel path runs.
void piFilter_8u_AC4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, int32_t width,
                      int32_t height, const int32_t* pKernel, int32_t kernelWidth, int32_t kernelHeight,
                      int32_t anchorX, int32_t anchorY, int32_t divisor, int32_t* scratch) {
    const Kernel kernel{pKernel, kernelWidth, kernelHeight, anchorX, anchorY};
    const Division division = DivisionBy(divisor);
    const PrimSize size{width, height};
    if (kernelWidth >= 3 && width >= 4 && scratch != nullptr && PackCoefficients(kernel, scratch)) {
        FilterByRows(pSrc, srcStep, pDst, dstStep, size, kernel, division, scratch);
    } else {
        FilterByPixels(pSrc, srcStep, pDst, dstStep, size, kernel, division);
    }
}

}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiFilter_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                 int32_t dstStep, PrimSize roiSize, const int32_t* pKernel,
                                                 PrimSize kernelSize, PrimPoint anchor, int32_t divisor) {
    using namespace PRIM_BUILD;
    if (pSrc == nullptr || pDst == nullptr || pKernel == nullptr) return PrimNullPtrErr;
    if (roiSize.width <= 0 || roiSize.height <= 0 || kernelSize.width <= 0 || kernelSize.height <= 0)
        return PrimSizeErr;
    if (divisor == 0) return PrimDivisorErr;
    // A source row must hold the region and the kernel's reach side by side.
    if (srcStep < (int64_t{roiSize.width} + kernelSize.width) * 4 - 4 || dstStep < int64_t{roiSize.width} * 4)
        return PrimStepErr;

    // Coefficients first, then one line of accumulators. A failed
    // allocation only costs speed.
    const uint32_t coefficients = static_cast<uint32_t>(kernelSize.width) * 4u * static_cast<uint32_t>(kernelSize.height);
    int32_t* scratch =
        primsMalloc_32s(static_cast<int32_t>(coefficients + static_cast<uint32_t>(roiSize.width) * 4u));
    piFilter_8u_AC4R(pSrc, srcStep, pDst, dstStep, roiSize.width, roiSize.height, pKernel, kernelSize.width,
                     kernelSize.height, anchor.x, anchor.y, divisor, scratch);
    PRIM(primsFree)(scratch);
    return PrimOk;
}
