// One image subtracted from another: primiSub_8u_AC4RSfs gives the second
// source minus the first, 0 where the first is larger, scaled.
#include "primitives/pixel/arith_sfs.h"

extern "C" PrimStatus PRIM(primiSub_8u_AC4RSfs)(const uint8_t* src1, int32_t src1Step, const uint8_t* src2,
                                                 int32_t src2Step, uint8_t* dst, int32_t dstStep, PrimSize size,
                                                 int32_t scaleFactor) {
    using namespace PRIM_BUILD;
    if (src1 == nullptr || src2 == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    return ArithSfs<Difference>(src2, src2Step, ImageOperand(src1, src1Step), dst, dstStep, size, scaleFactor);
}
