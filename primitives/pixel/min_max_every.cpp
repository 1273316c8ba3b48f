// Element-wise maximum and minimum of two byte vectors, into the second:
// primsMaxEvery_8u_I, primsMinEvery_8u_I.
#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

struct Larger {
    static __m128i Wide(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
    static uint8_t Byte(uint8_t a, uint8_t b) { return a > b ? a : b; }
};

struct Smaller {
    static __m128i Wide(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
    static uint8_t Byte(uint8_t a, uint8_t b) { return a < b ? a : b; }
};

template <class Pick>
PrimStatus PickEvery(const uint8_t* src, uint8_t* srcDst, int32_t length) {
    if (src == nullptr || srcDst == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    size_t count = static_cast<size_t>(length);
    size_t i = 0;
    for (; i + 16 <= count; i += 16)
        StoreUnaligned(srcDst + i, Pick::Wide(LoadUnaligned(src + i), LoadUnaligned(srcDst + i)));
    for (; i < count; ++i) srcDst[i] = Pick::Byte(src[i], srcDst[i]);
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primsMaxEvery_8u_I)(const uint8_t* src, uint8_t* srcDst, int32_t length) {
    return PRIM_BUILD::PickEvery<PRIM_BUILD::Larger>(src, srcDst, length);
}

extern "C" PrimStatus PRIM(primsMinEvery_8u_I)(const uint8_t* src, uint8_t* srcDst, int32_t length) {
    return PRIM_BUILD::PickEvery<PRIM_BUILD::Smaller>(src, srcDst, length);
}
