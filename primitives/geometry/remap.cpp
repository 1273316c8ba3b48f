// Resampling through two coordinate maps: primiRemap_8u_AC4R.
//
// Destination pixel (i, j) takes the source at (xMap[j][i], yMap[j][i]), in
// absolute source coordinates, with the kernel that the interpolation word
// names; positions outside the source rectangle leave their pixel alone.
#include "primitives/frame/build.h"
#include "primitives/geometry/remap_rows.h"

namespace PRIM_BUILD {
namespace {

constexpr uint32_t kSmoothEdgeFlag = 0x80000000u;

// The kernels in column order: nearest, linear, cubic, Catmull-Rom, Lanczos-3.
const RemapRowDriver ownpi_RemapFunc[5] = {ownpi_Remap_NN_8_AC4, ownpi_Remap_L_8u_AC4, ownpi_Remap_C_8u_AC4,
                                           ownpi_Remap_CR_8u_AC4, ownpi_Remap_L3_8u_AC4};
const RemapRowDriver ownpi_RemapSFunc[5] = {ownpi_RemapS_NN_8_AC4, ownpi_RemapS_L_8u_AC4, ownpi_RemapS_C_8u_AC4,
                                            ownpi_RemapS_CR_8u_AC4, ownpi_RemapS_L3_8u_AC4};

bool KnownKernel(int32_t code) {
    return code == InterpNearest || code == InterpLinear || code == InterpCubic || code == InterpCatmullRom ||
           code == InterpLanczos3;
}

// A small source cannot feed a wide kernel: by the size of the whole source,
// not of its rectangle, Lanczos-3 needs 6 pixels a side, cubic and
// Catmull-Rom need 4, and a single row or column can only be copied.
int32_t KernelForSource(int32_t code, PrimSize srcSize) {
    if (srcSize.width < 6 || srcSize.height < 6) {
        if (code == InterpLanczos3) code = InterpCubic;
    }
    if (srcSize.width < 4 || srcSize.height < 4) {
        if (code == InterpCatmullRom || code == InterpCubic) code = InterpLinear;
    }
    if (srcSize.width == 1 || srcSize.height == 1) code = InterpNearest;
    return code;
}

int32_t KernelColumn(int32_t code) { return code == InterpLanczos3 ? code >> 2 : code >> 1; }

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiRemap_8u_AC4R)(const uint8_t* src, PrimSize srcSize, int32_t srcStep,
                                               PrimRect srcRoi, const float* xMap, int32_t xMapStep,
                                               const float* yMap, int32_t yMapStep, uint8_t* dst,
                                               int32_t dstStep, PrimSize dstRoiSize, int32_t interpolation) {
    if (src == nullptr || dst == nullptr || xMap == nullptr || yMap == nullptr) return PrimNullPtrErr;
    if (srcSize.width < 1 || srcSize.height < 1 || srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 ||
        srcRoi.height < 1 || dstRoiSize.width < 1 || dstRoiSize.height < 1)
        return PrimSizeErr;
    int32_t code = static_cast<int32_t>(static_cast<uint32_t>(interpolation) & ~kSmoothEdgeFlag);
    if (!KnownKernel(code)) return PrimInterpolationErr;
    if (srcStep < 1 || dstStep < 1 || xMapStep < 1 || yMapStep < 1) return PrimStepErr;
    if (srcRoi.x >= srcSize.width || srcRoi.y >= srcSize.height) return PrimNoOverlapWrn;

    if (srcRoi.width > srcSize.width - srcRoi.x) srcRoi.width = srcSize.width - srcRoi.x;
    if (srcRoi.height > srcSize.height - srcRoi.y) srcRoi.height = srcSize.height - srcRoi.y;
    code = KernelForSource(code, srcSize);
    bool smooth = (static_cast<uint32_t>(interpolation) & kSmoothEdgeFlag) != 0;
    RemapRowDriver driver = (smooth ? ownpi_RemapSFunc : ownpi_RemapFunc)[KernelColumn(code)];

    RemapJob job = {src,
                    srcStep,
                    dst,
                    dstStep,
                    xMap,
                    xMapStep,
                    yMap,
                    yMapStep,
                    dstRoiSize.width,
                    dstRoiSize.height,
                    srcRoi.x,
                    srcRoi.y,
                    srcRoi.x + srcRoi.width - 1,
                    srcRoi.y + srcRoi.height - 1,
                    srcSize.width - 1,
                    srcSize.height - 1};
    driver(job);
    return PrimOk;
}
