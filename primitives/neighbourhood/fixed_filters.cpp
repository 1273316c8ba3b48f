// The ten fixed-kernel filters: Prewitt, Sobel, Roberts, Laplace, Gauss,
// Hipass and Lowpass. They read the pixels around their region as they
// stand: one on each side for 3x3 kernels, two for 5x5.
#include "primitives/neighbourhood/fixed_filters.h"

namespace PRIM_BUILD {
namespace {

// Pointers, then the size, then the steps, which need only be positive.
PrimStatus CheckImages(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pDst, int32_t dstStep,
                       PrimSize roiSize) {
    if (pSrc == nullptr || pDst == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    return PrimOk;
}

PrimStatus CheckImagesAndMask(const uint8_t* pSrc, int32_t srcStep, const uint8_t* pDst, int32_t dstStep,
                              PrimSize roiSize, int32_t mask) {
    const PrimStatus status = CheckImages(pSrc, srcStep, pDst, dstStep, roiSize);
    if (status != PrimOk) return status;
    return mask == MaskSize3x3 || mask == MaskSize5x5 ? PrimOk : PrimMaskSizeErr;
}

// The filter's result once its checks pass.
template <class Filter>
PrimStatus Checked(PrimStatus status, Filter filter) {
    return status != PrimOk ? status : filter();
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterPrewittVert_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                            int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return ownprimiFilterPrewittSobelVert(pSrc, srcStep, pDst, dstStep, roiSize, kPrewitt, kType8u, kChannelsAC4);
    });
}

extern "C" PrimStatus PRIM(primiFilterSobelVert_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                          int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return ownprimiFilterPrewittSobelVert(pSrc, srcStep, pDst, dstStep, roiSize, kSobel, kType8u, kChannelsAC4);
    });
}

extern "C" PrimStatus PRIM(primiFilterPrewittHoriz_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                             int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return ownprimiFilterPrewittSobelHoriz(pSrc, srcStep, pDst, dstStep, roiSize, kPrewitt, kType8u, kChannelsAC4);
    });
}

extern "C" PrimStatus PRIM(primiFilterSobelHoriz_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                           int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return ownprimiFilterPrewittSobelHoriz(pSrc, srcStep, pDst, dstStep, roiSize, kSobel, kType8u, kChannelsAC4);
    });
}

// The Roberts filters are an image difference with the pixel diagonally
// above: the one up and left, or up and right, is the first source,
// subtracted from the pixel itself.
extern "C" PrimStatus PRIM(primiFilterRobertsDown_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                            int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return PRIM(primiSub_8u_AC4RSfs)(pSrc - srcStep - 4, srcStep, pSrc, srcStep, pDst, dstStep, roiSize, 0);
    });
}

extern "C" PrimStatus PRIM(primiFilterRobertsUp_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                          int32_t dstStep, PrimSize roiSize) {
    return Checked(CheckImages(pSrc, srcStep, pDst, dstStep, roiSize), [&] {
        return PRIM(primiSub_8u_AC4RSfs)(pSrc - srcStep + 4, srcStep, pSrc, srcStep, pDst, dstStep, roiSize, 0);
    });
}

extern "C" PrimStatus PRIM(primiFilterLaplace_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                        int32_t dstStep, PrimSize roiSize, int32_t mask) {
    return Checked(CheckImagesAndMask(pSrc, srcStep, pDst, dstStep, roiSize, mask), [&] {
        if (mask == MaskSize3x3)
            return ownprimiFilterLaplace3x3(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
        return ownprimiFilterLaplGaus5x5(pSrc, srcStep, pDst, dstStep, roiSize, kLaplace, kType8u, kChannelsAC4);
    });
}

extern "C" PrimStatus PRIM(primiFilterGauss_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                      int32_t dstStep, PrimSize roiSize, int32_t mask) {
    return Checked(CheckImagesAndMask(pSrc, srcStep, pDst, dstStep, roiSize, mask), [&] {
        if (mask == MaskSize3x3)
            return ownprimiFilterGauss3x3(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
        return ownprimiFilterLaplGaus5x5(pSrc, srcStep, pDst, dstStep, roiSize, kGauss, kType8u, kChannelsAC4);
    });
}

// Hipass 3x3 is the Laplace 3x3 kernel and runs its code.
extern "C" PrimStatus PRIM(primiFilterHipass_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                       int32_t dstStep, PrimSize roiSize, int32_t mask) {
    return Checked(CheckImagesAndMask(pSrc, srcStep, pDst, dstStep, roiSize, mask), [&] {
        if (mask == MaskSize3x3)
            return ownprimiFilterLaplace3x3(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
        return ownprimiFilterHipass5x5(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
    });
}

extern "C" PrimStatus PRIM(primiFilterLowpass_8u_AC4R)(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst,
                                                        int32_t dstStep, PrimSize roiSize, int32_t mask) {
    return Checked(CheckImagesAndMask(pSrc, srcStep, pDst, dstStep, roiSize, mask), [&] {
        if (mask == MaskSize3x3)
            return ownprimiFilterLowpass3x3(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
        return ownprimiFilterLowpass5x5(pSrc, srcStep, pDst, dstStep, roiSize, kType8u, kChannelsAC4);
    });
}
