// Line loops of the fixed filters. A line is a run of elements, four a
// pixel, handled in 16-bit lanes: eight elements a step and the last pixel
// alone, or, where bytes are written, sixteen a step with tails of eight
// and four. Loads never reach past the elements a stage may read.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_FIXED_LINES_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_FIXED_LINES_H

#include "primitives/frame/build.h"
#include "primitives/neighbourhood/colour_stores.h"

namespace PRIM_BUILD {

// Eight elements widened to 16-bit lanes, or stored from them.
struct EightElements {
    static __m128i Load(const uint8_t* at) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)), _mm_setzero_si128());
    }
    static __m128i Load(const int16_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
    static void Store(int16_t* at, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v); }
};

// Four elements, one pixel, in the low four lanes.
struct FourElements {
    static __m128i Load(const uint8_t* at) {
        return _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int>(LoadWord(at))), _mm_setzero_si128());
    }
    static __m128i Load(const int16_t* at) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)); }
    static void Store(int16_t* at, __m128i v) { _mm_storel_epi64(reinterpret_cast<__m128i*>(at), v); }
};

// Calls op(i, EightElements()) or op(i, FourElements()) over count
// elements, a multiple of four.
template <class Op>
void ForEachElementRun(int32_t count, Op op) {
    int32_t i = 0;
    for (; i + 8 <= count; i += 8) op(i, EightElements());
    if (i < count) op(i, FourElements());
}

// Writes count elements into the colour bytes of dst, from op(i, Elements)
// saturated from signed 16 bits to 0..255.
template <class Op>
void WriteLine(uint8_t* dst, int32_t count, Op op) {
    int32_t i = 0;
    for (; i + 16 <= count; i += 16)
        StoreColours16(dst + i, _mm_packus_epi16(op(i, EightElements()), op(i + 8, EightElements())));
    if (i + 8 <= count) {
        StoreColours8(dst + i, _mm_packus_epi16(op(i, EightElements()), _mm_setzero_si128()));
        i += 8;
    }
    if (i < count) StoreColours4(dst + i, _mm_packus_epi16(op(i, FourElements()), _mm_setzero_si128()));
}

// Runs a row-by-row filter on a scratch block of the given size, released
// at the end; nothing is written when it cannot be had.
template <class Rows>
PrimStatus WithScratch(uint32_t bytes, Rows rows) {
    uint8_t* scratch = PRIM(primsMalloc_8u)(static_cast<int32_t>(bytes));
    if (scratch == nullptr) return PrimMemAllocErr;
    rows(scratch);
    PRIM(primsFree)(scratch);
    return PrimOk;
}

}  // namespace PRIM_BUILD

#endif
