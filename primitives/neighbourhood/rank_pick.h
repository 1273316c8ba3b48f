// The two picks of the rank family, maximum and minimum, and the row loops
// built on them. The min and max filters, dilation and erosion are one code
// with the pick as a parameter.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_RANK_PICK_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_RANK_PICK_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Bytewise maximum: what dilation and the max filter take.
struct PickMax {
    static __m128i Of(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
    // The byte that never wins.
    static constexpr uint8_t kLoser = 0x00;
    // A source value where select is all ones, the loser where it is zero.
    static __m128i Masked(__m128i source, __m128i select) { return _mm_and_si128(source, select); }
    static PrimStatus Every(const uint8_t* src, uint8_t* srcDst, int32_t length) {
        return PRIM(primsMaxEvery_8u_I)(src, srcDst, length);
    }
    static PrimStatus Filter(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                             PrimSize mask, PrimPoint anchor, uint8_t* buffer) {
        return PRIM(primiFilterMaxBorderReplicate_8u_C4R)(src, srcStep, dst, dstStep, roi, mask, anchor, buffer);
    }
};

// Bytewise minimum: erosion and the min filter. Its selection tables hold
// zero where an element is chosen, so that OR keeps the source there.
struct PickMin {
    static __m128i Of(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
    static constexpr uint8_t kLoser = 0xFF;
    static __m128i Masked(__m128i source, __m128i select) { return _mm_or_si128(source, select); }
    static PrimStatus Every(const uint8_t* src, uint8_t* srcDst, int32_t length) {
        return PRIM(primsMinEvery_8u_I)(src, srcDst, length);
    }
    static PrimStatus Filter(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                             PrimSize mask, PrimPoint anchor, uint8_t* buffer) {
        return PRIM(primiFilterMinBorderReplicate_8u_C4R)(src, srcStep, dst, dstStep, roi, mask, anchor, buffer);
    }
};

// One pixel, four bytes, in the low lane of a vector.
inline __m128i LoadPixel(const uint8_t* at) {
    int32_t word;
    memcpy(&word, at, 4);
    return _mm_cvtsi32_si128(word);
}
inline void StorePixel(uint8_t* at, __m128i pixel) {
    int32_t word = _mm_cvtsi128_si32(pixel);
    memcpy(at, &word, 4);
}
inline __m128i Load16(const uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
inline void Store16(uint8_t* at, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v); }

// dst = the pick of Count rows of bytes, a multiple of 4. With stream set
// the 16-byte blocks bypass the cache (dst on a 16-byte boundary).
template <class Pick, int Count>
void PickRowsFixed(const uint8_t* const* rows, uint8_t* dst, size_t bytes, bool stream) {
    const uint8_t* row[Count];
    for (int j = 0; j < Count; ++j) row[j] = rows[j];
    size_t i = 0;
    for (; i + 16 <= bytes; i += 16) {
        __m128i acc = Load16(row[0] + i);
        for (int j = 1; j < Count; ++j) acc = Pick::Of(acc, Load16(row[j] + i));
        if (stream) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(dst + i), acc);
        } else {
            Store16(dst + i, acc);
        }
    }
    for (; i < bytes; i += 4) {
        __m128i acc = LoadPixel(row[0] + i);
        for (int j = 1; j < Count; ++j) acc = Pick::Of(acc, LoadPixel(row[j] + i));
        StorePixel(dst + i, acc);
    }
}

// dst = the pick of count rows of bytes (count of at least 1; dst may be
// one of the rows), up to eight rows a pass: each later pass takes the
// destination as one of its rows. With streaming set and dst on a 16-byte
// boundary the last pass bypasses the cache; the caller fences at the end
// of its own pass.
template <class Pick>
void PickRowSet(const uint8_t* const* rows, int32_t count, uint8_t* dst, size_t bytes, bool streaming) {
    using Pass = void (*)(const uint8_t* const*, uint8_t*, size_t, bool);
    static constexpr Pass kPasses[9] = {
        nullptr,
        PickRowsFixed<Pick, 1>,
        PickRowsFixed<Pick, 2>,
        PickRowsFixed<Pick, 3>,
        PickRowsFixed<Pick, 4>,
        PickRowsFixed<Pick, 5>,
        PickRowsFixed<Pick, 6>,
        PickRowsFixed<Pick, 7>,
        PickRowsFixed<Pick, 8>,
    };
    const bool aligned = (reinterpret_cast<uintptr_t>(dst) & 15) == 0;
    const uint8_t* pass[8];
    int32_t taken = 0;
    for (bool last = false; !last;) {
        int32_t n = 0;
        if (taken > 0) pass[n++] = dst;
        while (n < 8 && taken < count) pass[n++] = rows[taken++];
        last = taken == count;
        kPasses[n](pass, dst, bytes, last && streaming && aligned);
    }
}

template <class Pick>
void PickRows(const uint8_t* a, const uint8_t* b, uint8_t* dst, size_t bytes, bool streaming) {
    const uint8_t* const pair[2] = {a, b};
    PickRowSet<Pick>(pair, 2, dst, bytes, streaming);
}

}  // namespace PRIM_BUILD

#endif
