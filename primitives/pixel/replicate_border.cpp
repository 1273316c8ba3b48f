// Copies with a replicated border: primiCopyReplicateBorder_8u_AC4R,
// primiCopyReplicateBorder_8u_C4R and the in-place primiCopyReplicateBorder_8u_C4IR.
//
// Every pixel outside the inner image takes the value of the nearest inner
// pixel: the left and right parts of a row repeat its first and last pixel,
// and the rows above and below repeat the first and last extended row, so
// the corners take the inner corners' values.
#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

// The geometry of an inner image inside an outer one.
struct Frame {
    int32_t step;
    PrimSize inner;
    PrimSize outer;
    int32_t top;
    int32_t left;
};

PrimStatus CheckSizes(const Frame& f) {
    if (f.inner.width < 1 || f.inner.height < 1 || f.outer.width < 1 || f.outer.height < 1) return PrimSizeErr;
    if (f.top < 0 || f.left < 0) return PrimSizeErr;
    if (f.outer.width < int64_t{f.inner.width} + f.left || f.outer.height < int64_t{f.inner.height} + f.top)
        return PrimSizeErr;
    return PrimOk;
}

// Writes the border around an inner image that already stands in place at
// inner. Stores decides whether all four bytes or only the colour bytes
// are written (with mask).
template <class Stores>
void ReplicateAround(uint8_t* inner, const Frame& f, uint32_t mask) {
    const size_t leftBytes = 4 * static_cast<size_t>(f.left);
    const size_t innerBytes = 4 * static_cast<size_t>(f.inner.width);
    const size_t rightBytes = 4 * static_cast<size_t>(f.outer.width - f.left - f.inner.width);
    const size_t outerBytes = 4 * static_cast<size_t>(f.outer.width);
    auto innerRow = [&](int32_t y) { return inner + static_cast<ptrdiff_t>(y) * f.step; };
    auto outerRow = [&](int32_t y) { return innerRow(y - f.top) - leftBytes; };
    auto extend = [&](int32_t y) {
        uint8_t* row = innerRow(y);
        FillPattern<Stores>(row - leftBytes, leftBytes, LoadWord(row), mask);
        FillPattern<Stores>(row + innerBytes, rightBytes, LoadWord(row + innerBytes - 4), mask);
    };

    extend(0);
    for (int32_t y = 0; y < f.top; ++y) CopyBytes<Stores>(outerRow(f.top), outerRow(y), outerBytes, mask);
    for (int32_t y = 1; y < f.inner.height; ++y) extend(y);
    const int32_t lastInner = f.top + f.inner.height - 1;
    for (int32_t y = lastInner + 1; y < f.outer.height; ++y)
        CopyBytes<Stores>(outerRow(lastInner), outerRow(y), outerBytes, mask);
}

// The copy form: the source rows go to their place in the destination, and
// the border is replicated around them there.
template <class Stores>
PrimStatus CopyReplicate(const uint8_t* src, int32_t srcStep, PrimSize srcSize, uint8_t* dst, int32_t dstStep,
                         PrimSize dstSize, int32_t top, int32_t left, uint32_t mask) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    const Frame f{dstStep, srcSize, dstSize, top, left};
    PrimStatus status = CheckSizes(f);
    if (status != PrimOk) return status;

    uint8_t* inner = dst + static_cast<ptrdiff_t>(top) * dstStep + 4 * static_cast<ptrdiff_t>(left);
    for (int32_t y = 0; y < srcSize.height; ++y)
        CopyBytes<Stores>(src + static_cast<ptrdiff_t>(y) * srcStep, inner + static_cast<ptrdiff_t>(y) * dstStep,
                          4 * static_cast<size_t>(srcSize.width), mask);
    ReplicateAround<Stores>(inner, f, mask);
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiCopyReplicateBorder_8u_AC4R)(const uint8_t* src, int32_t srcStep, PrimSize srcSize,
                                                              uint8_t* dst, int32_t dstStep, PrimSize dstSize,
                                                              int32_t top, int32_t left) {
    return CopyReplicate<MergedStores>(src, srcStep, srcSize, dst, dstStep, dstSize, top, left, kColourMask);
}

extern "C" PrimStatus PRIM(primiCopyReplicateBorder_8u_C4R)(const uint8_t* src, int32_t srcStep, PrimSize srcSize,
                                                             uint8_t* dst, int32_t dstStep, PrimSize dstSize,
                                                             int32_t top, int32_t left) {
    return CopyReplicate<PlainStores>(src, srcStep, srcSize, dst, dstStep, dstSize, top, left, kAllBytes);
}

extern "C" PrimStatus PRIM(primiCopyReplicateBorder_8u_C4IR)(uint8_t* image, int32_t step, PrimSize innerSize,
                                                              PrimSize outerSize, int32_t top, int32_t left) {
    if (image == nullptr) return PrimNullPtrErr;
    if (step < 1) return PrimStepErr;
    const Frame f{step, innerSize, outerSize, top, left};
    PrimStatus status = CheckSizes(f);
    if (status != PrimOk) return status;
    ReplicateAround<PlainStores>(image, f, kAllBytes);
    return PrimOk;
}
