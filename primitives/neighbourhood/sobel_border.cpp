// primiFilterSobelHorizBorder_8u16s_C1R and primiFilterSobelNegVertBorder_8u16s_C1R,
// the 3x3 and 5x5 Sobel derivatives of an 8-bit image as signed 16-bit
// images with a border rule, and the sizes of their work buffers.
//
// The horizontal filter gives bottom minus top; the NegVert filter, despite
// its name, right minus left: its row part and its column part each carry
// one minus. Both are separable: a smoothing row part and a derivative
// column part, or the other way round, run by the pipeline driver.
#include "primitives/neighbourhood/filter_pipeline_8u16s.h"

namespace PRIM_BUILD {
namespace {

// Row parts of the kernels.
const int16_t kerSobel_3_16s[3] = {1, 2, 1};
const int16_t kerSobel_5_16s[5] = {1, 4, 6, 4, 1};
const int16_t kerDxNeg_3_16s[3] = {1, 0, -1};
const int16_t kerDxNeg_5_16s[5] = {1, 2, 0, -2, -1};

// One mask of a filter: its row kernel and the row and column functions.
struct SobelForm {
    const int16_t* rowKernel;
    int rowSlot;
    int columnSlot;
};

struct SobelFilter {
    SobelForm mask3x3;
    SobelForm mask5x5;
};

// Smoothing rows, then R(y+1) - R(y-1) and 2 (R(y+1) - R(y-1)) + R(y+2) - R(y-2).
const SobelFilter kSobelHoriz = {{kerSobel_3_16s, 6, 1}, {kerSobel_5_16s, 7, 4}};
// Left minus right in the rows, then the negated smoothing sum of the column.
const SobelFilter kSobelNegVert = {{kerDxNeg_3_16s, 2, 11}, {kerDxNeg_5_16s, 3, 12}};

bool MaskAccepted(int32_t mask) { return mask == MaskSize3x3 || mask == MaskSize5x5; }

PrimStatus SobelBufferSize(PrimSize roiSize, int32_t mask, int32_t* bufferSize) {
    if (bufferSize == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    if (!MaskAccepted(mask)) return PrimMaskSizeErr;
    const int32_t kernelSize = mask == MaskSize3x3 ? 3 : 5;
    // Rows of the padded width for the ring of H + 15 rows and H to spare,
    // the table of 3H + 30 pointers (24 H bytes here and 240 of the fixed
    // 368), the two alignments, and the scratch of the two stages.
    const uint32_t rows = mask == MaskSize3x3 ? 21u : 25u;
    const uint32_t pointers = mask == MaskSize3x3 ? 72u : 120u;
    int32_t rowScratch = 0, columnScratch = 0;
    PRIM(primiFilterRowBorderPipelineGetBufferSize_8u16s_C1R)(roiSize, kernelSize, &rowScratch);
    PRIM(primiFilterColumnPipelineGetBufferSize_16s_C1R)(roiSize, kernelSize, &columnScratch);
    const uint32_t paddedWidth = (static_cast<uint32_t>(roiSize.width) + 15u) & ~15u;
    *bufferSize = Wrap32(paddedWidth * 2u * rows + pointers + 368u + static_cast<uint32_t>(rowScratch) +
                         static_cast<uint32_t>(columnScratch));
    return PrimOk;
}

PrimStatus SobelBorder(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, PrimSize roiSize,
                       int32_t mask, int32_t borderType, uint8_t borderValue, uint8_t* buffer,
                       const SobelFilter& filter) {
    if (src == nullptr || dst == nullptr || buffer == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    if (srcStep < roiSize.width || dstStep < int64_t(roiSize.width) * 2) return PrimStepErr;
    if (dstStep & 1) return PrimStepNotEvenErr;
    const int32_t kind = borderType & 15;
    if (kind == 5 || kind > BorderInMem) return PrimBadArgErr;
    const int32_t allSides = BorderInMemTop | BorderInMemBottom | BorderInMemLeft | BorderInMemRight;
    if ((borderType & 0xFFF0) != 0 && (borderType & allSides) == 0) return PrimBadArgErr;
    if (!MaskAccepted(mask)) return PrimMaskSizeErr;

    // Memory on every side: the kind no longer matters.
    if (kind == BorderInMem) borderType = (borderType & ~15) | allSides;
    const SobelForm& form = mask == MaskSize3x3 ? filter.mask3x3 : filter.mask5x5;
    const int32_t kernelSize = mask == MaskSize3x3 ? 3 : 5;
    ownFilterConvolution_8u16s_C1R(src, srcStep, dst, dstStep, roiSize, form.rowKernel, kernelSize, kernelSize,
                                   form.rowSlot, form.columnSlot, borderType, borderValue, buffer);
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterSobelHorizGetBufferSize_8u16s_C1R)(PrimSize roiSize, int32_t mask,
                                                                         int32_t* bufferSize) {
    return SobelBufferSize(roiSize, mask, bufferSize);
}

extern "C" PrimStatus PRIM(primiFilterSobelNegVertGetBufferSize_8u16s_C1R)(PrimSize roiSize, int32_t mask,
                                                                           int32_t* bufferSize) {
    return SobelBufferSize(roiSize, mask, bufferSize);
}

extern "C" PrimStatus PRIM(primiFilterSobelHorizBorder_8u16s_C1R)(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                                                  int32_t dstStep, PrimSize roiSize, int32_t mask,
                                                                  int32_t borderType, uint8_t borderValue,
                                                                  uint8_t* buffer) {
    return SobelBorder(src, srcStep, dst, dstStep, roiSize, mask, borderType, borderValue, buffer, kSobelHoriz);
}

extern "C" PrimStatus PRIM(primiFilterSobelNegVertBorder_8u16s_C1R)(const uint8_t* src, int32_t srcStep, int16_t* dst,
                                                                    int32_t dstStep, PrimSize roiSize, int32_t mask,
                                                                    int32_t borderType, uint8_t borderValue,
                                                                    uint8_t* buffer) {
    return SobelBorder(src, srcStep, dst, dstStep, roiSize, mask, borderType, borderValue, buffer, kSobelNegVert);
}
