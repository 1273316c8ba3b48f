// Writing filter results into an AC4 destination: the three colour bytes of
// each pixel take the new value, the fourth byte keeps what it held.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_COLOUR_STORES_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_COLOUR_STORES_H

#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {

// Four pixels.
inline void StoreColours16(uint8_t* dst, __m128i bytes) {
    MergedStores::WriteUnaligned(dst, bytes, Broadcast(kColourMask));
}

// Two pixels, from the low eight bytes.
inline void StoreColours8(uint8_t* dst, __m128i bytes) {
    __m128i* at = reinterpret_cast<__m128i*>(dst);
    _mm_storel_epi64(at, Merge(bytes, _mm_loadl_epi64(at), Broadcast(kColourMask)));
}

// One pixel, from the low four bytes.
inline void StoreColours4(uint8_t* dst, __m128i bytes) {
    uint32_t word = (LoadWord(dst) & ~kColourMask) | (static_cast<uint32_t>(_mm_cvtsi128_si32(bytes)) & kColourMask);
    memcpy(dst, &word, 4);
}

// Stores width pixels from left to right, each from the four 32-bit lanes
// that next() gives for it, saturated to 0..255.
template <class Next>
void StorePixelsFromLanes(uint8_t* dst, int32_t width, Next next) {
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        const __m128i p0 = next(), p1 = next(), p2 = next(), p3 = next();
        StoreColours16(dst + 4 * x, _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3)));
    }
    for (; x < width; ++x) {
        const __m128i packed = _mm_packs_epi32(next(), _mm_setzero_si128());
        StoreColours4(dst + 4 * x, _mm_packus_epi16(packed, packed));
    }
}

}  // namespace PRIM_BUILD

#endif
