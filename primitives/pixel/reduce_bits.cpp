// primiReduceBits_8u_AC4R: the entry's checks and choice of method, and the
// noise tables that the methods share.
#include "primitives/pixel/reduce_bits.h"

#include "primitives/frame/memory.h"

namespace PRIM_BUILD {

const float kBayerThresholds[4][4] = {
    {0.0f / 15, 8.0f / 15, 2.0f / 15, 10.0f / 15},
    {12.0f / 15, 4.0f / 15, 14.0f / 15, 6.0f / 15},
    {3.0f / 15, 11.0f / 15, 1.0f / 15, 9.0f / 15},
    {15.0f / 15, 7.0f / 15, 13.0f / 15, 5.0f / 15},
};

bool AllocNoiseTables(NoiseTables& tables) {
    tables.threshold = primsMalloc_32f(kNoiseTableLength);
    tables.index = primsMalloc_16s(kNoiseTableLength);
    if (tables.threshold != nullptr && tables.index != nullptr) return true;
    FreeNoiseTables(tables);
    return false;
}

bool FillNoiseTables(NoiseTables& tables, float low, float high) {
    PrimRandUniformState_16s* indexState = nullptr;
    if (PRIM(primsRandUniformInitAlloc_16s)(&indexState, 0, kNoiseTableLength, 0) != PrimOk) return false;
    PRIM(primsRandUniform_16s)(tables.index, kNoiseTableLength, indexState);
    PRIM(primsRandUniformFree_16s)(indexState);

    PrimRandUniformState_32f* thresholdState = nullptr;
    if (PRIM(primsRandUniformInitAlloc_32f)(&thresholdState, low, high, 0) != PrimOk) return false;
    PRIM(primsRandUniform_32f)(tables.threshold, kNoiseTableLength, thresholdState);
    PRIM(primsRandUniformFree_32f)(thresholdState);
    return true;
}

void FreeNoiseTables(NoiseTables& tables) {
    PRIM(primsFree)(tables.threshold);
    PRIM(primsFree)(tables.index);
    tables.threshold = nullptr;
    tables.index = nullptr;
}

}  // namespace PRIM_BUILD

// Noise is tested ahead of levels. A dither code outside 0..4 is no error:
// nothing is done and the result is PrimOk. Steps are not tested.
extern "C" PrimStatus PRIM(primiReduceBits_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                    int32_t dstStep, PrimSize size, int32_t noise,
                                                    int32_t dither, int32_t levels) {
    using namespace PRIM_BUILD;
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (noise < 0 || noise > 100) return PrimDitherNoiseErr;
    if (levels < 2 || levels > 256) return PrimDitherLevelsErr;
    const int32_t n = levels - 1;
    switch (dither) {
        case DitherNone:
            return ownNo_8u_PX(src, srcStep, dst, dstStep, size, n);
        case DitherFS:
            return ownReduceBits_fs_8u(src, srcStep, dst, dstStep, size, noise, MakeQuantLevels(n));
        case DitherJJN:
        case DitherStucki:
            return ownReduceBits_st_jj_8u(src, srcStep, dst, dstStep, size, noise, dither, MakeQuantLevels(n));
        case DitherBayer:
            return ownReduceBits_bayer_8u(src, srcStep, dst, dstStep, size, noise, MakeQuantLevels(n));
        default:
            return PrimOk;
    }
}
