// A constant added to or subtracted from the colour bytes of an image in
// place: primiAddC_8u_AC4IRSfs, primiSubC_8u_AC4IRSfs.
#include "primitives/pixel/arith_sfs.h"

namespace PRIM_BUILD {
namespace {

// Steps are not tested: the image is walked at whatever step it is given.
template <class V>
PrimStatus ArithConstInPlace(const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size, int32_t k) {
    if (value == nullptr || image == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    return ArithSfs<V>(image, step, ConstantOperand(value), image, step, size, k);
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiAddC_8u_AC4IRSfs)(const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size,
                                                   int32_t scaleFactor) {
    return PRIM_BUILD::ArithConstInPlace<PRIM_BUILD::Sum>(value, image, step, size, scaleFactor);
}

extern "C" PrimStatus PRIM(primiSubC_8u_AC4IRSfs)(const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size,
                                                   int32_t scaleFactor) {
    return PRIM_BUILD::ArithConstInPlace<PRIM_BUILD::Difference>(value, image, step, size, scaleFactor);
}
