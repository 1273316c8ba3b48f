// Min and max filters with replicated borders:
// primiFilterMinGetBufferSize_8u_C4R, primiFilterMaxGetBufferSize_8u_C4R,
// primiFilterMinBorderReplicate_8u_C4R, primiFilterMaxBorderReplicate_8u_C4R.
//
// Each byte of the destination is the minimum or maximum of the same channel
// over a window of the source, all four channels alike. A window reaching
// past the image is cut at its edge, which for a minimum or maximum is the
// same as replicating the edge pixels; so nothing outside the region is
// read. The filter is separable: a row pass over each source row, driven by
// a column pass over the filtered rows.
//
// The caller's buffer holds, from its first 8-byte boundary, a table of
// 4 x H row pointers, then from the next 32-byte boundary the ring of
// filtered rows, each of width x 4 bytes rounded up to 32.
#include "primitives/frame/cpu.h"
#include "primitives/neighbourhood/min_max_column.h"

namespace PRIM_BUILD {
namespace {

PrimStatus GetBufferSize(int32_t roiWidth, PrimSize maskSize, int32_t* bufferSize) {
    if (bufferSize == nullptr) return PrimNullPtrErr;
    if (roiWidth < 1) return PrimSizeErr;
    if (maskSize.width < 1 || maskSize.height < 1) return PrimMaskSizeErr;
    const int64_t rows = 2 * int64_t{maskSize.height} * (4 * int64_t{roiWidth} + 32);
    *bufferSize = static_cast<int32_t>(rows + 4 * int64_t{maskSize.height} * 8 + 32);
    return PrimOk;
}

uint8_t* AlignUp(uint8_t* at, uintptr_t alignment) {
    return at + ((alignment - reinterpret_cast<uintptr_t>(at) % alignment) % alignment);
}

// The pointer table of 4 x maskHeight entries and the ring behind it.
uint8_t** LayOutBuffer(uint8_t* buffer, int32_t width, int32_t maskHeight, int32_t ringRows) {
    uint8_t** table = reinterpret_cast<uint8_t**>(AlignUp(buffer, 8));
    uint8_t* ring = AlignUp(reinterpret_cast<uint8_t*>(table + 4 * static_cast<size_t>(maskHeight)), 32);
    const size_t rowBytes = (4 * static_cast<size_t>(width) + 31) & ~size_t{31};
    for (int32_t i = 0; i < ringRows; ++i) table[i] = table[ringRows + i] = ring + i * rowBytes;
    return table;
}

template <class Pick>
PrimStatus FilterBorderReplicate(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                                 PrimSize mask, PrimPoint anchor, uint8_t* buffer) {
    if (src == nullptr || dst == nullptr || buffer == nullptr) return PrimNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return PrimSizeErr;
    if (mask.width < 1 || mask.height < 1) return PrimMaskSizeErr;
    if (anchor.x < 0 || anchor.x >= mask.width || anchor.y < 0 || anchor.y >= mask.height) return PrimAnchorErr;
    if (srcStep < 4 * int64_t{roi.width} || dstStep < 4 * int64_t{roi.width}) return PrimStepErr;

    const MaskAxis x = ClipMaskAxis(mask.width, anchor.x, roi.width);
    const MaskAxis y = ClipMaskAxis(mask.height, anchor.y, roi.height);

    // The short column passes keep H + 1 rows; the others two blocks of H.
    int32_t slot = 0;
    int32_t ringRows = 2 * y.size;
    if (roi.height >= 2 * int64_t{y.size} && (y.size == 1 || y.size == 3 || y.size == 5)) {
        slot = y.size;
        ringRows = y.size + 1;
    }
    // A destination that fits in half the cache is written through it;
    // a larger one goes around it.
    const int64_t cache = owncvGetCacheSize();
    const bool streaming = !(4 * int64_t{roi.width} * roi.height < (cache >> 1));

    FilteredRows rows{src,    srcStep, roi.width, x, ChooseRowPass<Pick>(roi, x.size),
                      LayOutBuffer(buffer, roi.width, y.size, ringRows), ringRows, 0};
    ColumnJob job{rows, dst, dstStep, roi.height, y, streaming};
    owntablFilterColumn_8u_C1<Pick>[slot](job);
    if (streaming) _mm_sfence();
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterMinGetBufferSize_8u_C4R)(int32_t roiWidth, PrimSize maskSize,
                                                                int32_t* bufferSize) {
    return GetBufferSize(roiWidth, maskSize, bufferSize);
}

extern "C" PrimStatus PRIM(primiFilterMaxGetBufferSize_8u_C4R)(int32_t roiWidth, PrimSize maskSize,
                                                                int32_t* bufferSize) {
    return GetBufferSize(roiWidth, maskSize, bufferSize);
}

extern "C" PrimStatus PRIM(primiFilterMinBorderReplicate_8u_C4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                                  int32_t dstStep, PrimSize roiSize,
                                                                  PrimSize maskSize, PrimPoint anchor,
                                                                  uint8_t* buffer) {
    return FilterBorderReplicate<PickMin>(src, srcStep, dst, dstStep, roiSize, maskSize, anchor, buffer);
}

extern "C" PrimStatus PRIM(primiFilterMaxBorderReplicate_8u_C4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                                  int32_t dstStep, PrimSize roiSize,
                                                                  PrimSize maskSize, PrimPoint anchor,
                                                                  uint8_t* buffer) {
    return FilterBorderReplicate<PickMax>(src, srcStep, dst, dstStep, roiSize, maskSize, anchor, buffer);
}
