// Dilation and erosion with replicated borders:
// primiDilateBorderReplicate_8u_C4R, primiErodeBorderReplicate_8u_C4R.
//
// Each byte of the destination is the maximum (dilation) or minimum
// (erosion) of the same channel over the source pixels under the mask's
// selected elements, the mask placed with its anchor on the pixel and not
// reflected; pixels outside the image take the nearest edge pixel's value.
// The state's mask kind picks the method: a copy for an empty mask, the
// min and max filters for a rectangle, shared row passes for an ellipse,
// and an element-by-element loop otherwise.
#include "primitives/neighbourhood/morphology_kinds.h"
#include "primitives/neighbourhood/rank_pick.h"

namespace PRIM_BUILD {
namespace {

// Where a rectangle's anchor lies outside it, along one axis: the part of
// the image that the filter computes, and the anchor it computes with.
struct AxisShift {
    int32_t source;  // pixels the source moves forward
    int32_t dest;    // pixels the destination moves forward
    int32_t anchor;
};

// An anchor before the rectangle means every window lies ahead of its
// pixel: the filter runs on the source moved forward, and the outputs at
// the far end, whose windows lie wholly past the image, are left to the
// border fill. An anchor past the rectangle is the mirror case at the near
// end. Both moves leave at least one pixel to compute.
AxisShift ShiftForAnchor(int32_t anchor, int32_t size, int32_t extent) {
    if (anchor < 0) {
        const int32_t n = anchor > 1 - extent ? anchor : 1 - extent;
        return {-n, 0, 0};
    }
    if (anchor >= size) {
        const int32_t n = anchor - size + 1 < extent - 1 ? anchor - size + 1 : extent - 1;
        return {0, n, size - 1};
    }
    return {0, 0, anchor};
}

template <class Pick>
PrimStatus MorphRectangle(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                          const MorphologyState& state) {
    const AxisShift x = ShiftForAnchor(state.anchorX, state.maskWidth, roi.width);
    const AxisShift y = ShiftForAnchor(state.anchorY, state.maskHeight, roi.height);
    const PrimSize computed = {roi.width - x.source - x.dest, roi.height - y.source - y.dest};
    uint8_t* inner = dst + static_cast<ptrdiff_t>(y.dest) * dstStep + 4 * x.dest;
    PrimStatus status = Pick::Filter(src + static_cast<ptrdiff_t>(y.source) * srcStep + 4 * x.source, srcStep, inner,
                                     dstStep, computed, {state.maskWidth, state.maskHeight}, {x.anchor, y.anchor},
                                     state.workBuffer);
    if (status != PrimOk) return status;
    if (computed.width != roi.width || computed.height != roi.height)
        PRIM(primiCopyReplicateBorder_8u_C4IR)(inner, dstStep, computed, roi, y.dest, x.dest);
    return PrimOk;
}

template <class Pick>
PrimStatus Morph(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi, int32_t borderType,
                 const MorphologyState* state, uint8_t* MorphologyState::*selectTable) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return PrimSizeErr;
    if (srcStep < 4 * int64_t{roi.width} || dstStep < 4 * int64_t{roi.width}) return PrimStepErr;
    if (borderType != BorderRepl) return PrimBadArgErr;
    if (roi.width > state->maxWidth) return PrimSizeErr;
    switch (state->maskKind) {
        case MaskEmpty:
            return PRIM(primiCopy_8u_C4R)(src, srcStep, dst, dstStep, roi);
        case MaskRectangle:
            return MorphRectangle<Pick>(src, srcStep, dst, dstStep, roi, *state);
        case MaskEllipse:
            ownMorphEllipse_8u_C4R<Pick>(src, srcStep, dst, dstStep, roi, *state);
            return PrimOk;
        default:
            ownMorphArbitrary_8u_C4R<Pick>(src, srcStep, dst, dstStep, roi, *state, state->*selectTable);
            return PrimOk;
    }
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiDilateBorderReplicate_8u_C4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                               int32_t dstStep, PrimSize roiSize, int32_t borderType,
                                                               MorphologyState* state) {
    return Morph<PickMax>(src, srcStep, dst, dstStep, roiSize, borderType, state, &MorphologyState::dilateTable);
}

extern "C" PrimStatus PRIM(primiErodeBorderReplicate_8u_C4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                              int32_t dstStep, PrimSize roiSize, int32_t borderType,
                                                              MorphologyState* state) {
    return Morph<PickMin>(src, srcStep, dst, dstStep, roiSize, borderType, state, &MorphologyState::erodeTable);
}
