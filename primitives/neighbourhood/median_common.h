// What the median filters of a build share: the entry checks, pixel I/O four
// pixels or one pixel at a time, the small min/max networks, and the inner
// routines that one entry hands to another.
//
// Every network works on whole 16-byte vectors, so each byte lane (a channel
// of a pixel) is ranked on its own. The fourth byte of a pixel is ranked too,
// and then dropped: stores keep the destination's own fourth byte.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_MEDIAN_COMMON_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_MEDIAN_COMMON_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {

// Pointers, then size, then steps (any step of at least 1 will do).
inline PrimStatus CheckRegion(const uint8_t* src, int32_t srcStep, const uint8_t* dst, int32_t dstStep, PrimSize size) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    return PrimOk;
}

// The address rows rows down and pixels pixels right of at; either may be
// negative, since windows reach above and left of the region.
inline const uint8_t* PixelAt(const uint8_t* at, int32_t step, int32_t rows, int32_t pixels) {
    return at + static_cast<ptrdiff_t>(rows) * step + static_cast<ptrdiff_t>(pixels) * 4;
}
inline uint8_t* PixelAt(uint8_t* at, int32_t step, int32_t rows, int32_t pixels) {
    return at + static_cast<ptrdiff_t>(rows) * step + static_cast<ptrdiff_t>(pixels) * 4;
}

// Four pixels in one vector.
struct FourPixels {
    static constexpr int32_t kPixels = 4;
    static __m128i Load(const void* at) { return _mm_loadu_si128(static_cast<const __m128i*>(at)); }
    static void Store(void* at, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(at), v); }
    // The colour bytes of v; the destination's fourth bytes stay.
    static void StoreColour(uint8_t* at, __m128i v) { Store(at, Merge(v, Load(at), Broadcast(kColourMask))); }
};

// One pixel in the lowest lane; the other lanes are zero and never stored.
struct OnePixel {
    static constexpr int32_t kPixels = 1;
    static __m128i Load(const void* at) {
        return _mm_cvtsi32_si128(static_cast<int32_t>(LoadWord(static_cast<const uint8_t*>(at))));
    }
    static void Store(void* at, __m128i v) {
        const uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(v));
        memcpy(at, &word, 4);
    }
    static void StoreColour(uint8_t* at, __m128i v) {
        const uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(v));
        const uint32_t kept = (word & kColourMask) | (LoadWord(at) & ~kColourMask);
        memcpy(at, &kept, 4);
    }
};

// Calls visit(i, io) for positions 0..count-1: four at a time with FourPixels
// while four remain, then one at a time with OnePixel. The same code serves
// both, so the last pixels of a row take the same network as the rest and no
// load reaches past the row.
template <class Visit>
inline __attribute__((always_inline)) void ForEachGroup(int32_t count, Visit visit) {
    int32_t i = 0;
    for (; i + 4 <= count; i += 4) visit(i, FourPixels());
    for (; i < count; ++i) visit(i, OnePixel());
}

// Calls visit(y, x0, n) for each run of n <= chunk pixels from x0 on, row by
// row, for the filters that keep a chunk of a row in lines on the stack.
template <class Visit>
inline void ForEachChunk(PrimSize size, int32_t chunk, Visit visit) {
    for (int32_t y = 0; y < size.height; ++y)
        for (int32_t x0 = 0; x0 < size.width; x0 += chunk)
            visit(y, x0, size.width - x0 < chunk ? size.width - x0 : chunk);
}

// Each destination pixel of the region from window(at, step, io): the median
// of the window around the source pixel(s) at `at`, loaded through io.
template <class Window>
void FilterEachPixel(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size, Window window) {
    for (int32_t y = 0; y < size.height; ++y) {
        const uint8_t* from = PixelAt(src, srcStep, y, 0);
        uint8_t* to = PixelAt(dst, dstStep, y, 0);
        ForEachGroup(size.width,
                     [&](int32_t x, auto io) { io.StoreColour(to + 4 * x, window(from + 4 * x, srcStep, io)); });
    }
}

// ---- Small networks on byte lanes ----

inline void Sort2(__m128i& low, __m128i& high) {
    const __m128i smaller = _mm_min_epu8(low, high);
    high = _mm_max_epu8(low, high);
    low = smaller;
}

inline void Sort3(__m128i& a, __m128i& b, __m128i& c) {
    Sort2(a, b);
    Sort2(b, c);
    Sort2(a, b);
}

inline __m128i Min3(__m128i a, __m128i b, __m128i c) { return _mm_min_epu8(_mm_min_epu8(a, b), c); }
inline __m128i Max3(__m128i a, __m128i b, __m128i c) { return _mm_max_epu8(_mm_max_epu8(a, b), c); }

// Order the first two; the smaller of the larger and the third; the larger
// of that and the smaller.
inline __m128i Median3(__m128i a, __m128i b, __m128i c) {
    Sort2(a, b);
    return _mm_max_epu8(a, _mm_min_epu8(b, c));
}

// With a <= b and c <= d, the larger of the two smaller and the smaller of
// the two larger bound the median of the four from below and above, and the
// median of five is the median of those two with the fifth.
inline __m128i Median5(__m128i a, __m128i b, __m128i c, __m128i d, __m128i e) {
    Sort2(a, b);
    Sort2(c, d);
    return Median3(_mm_max_epu8(a, c), _mm_min_epu8(b, d), e);
}

// The median of nine values given as three sorted triples (low <= middle <=
// high in each): the largest low, the median middle and the smallest high,
// and then their median.
inline __m128i Median9OfSortedTriples(__m128i low0, __m128i middle0, __m128i high0, __m128i low1, __m128i middle1,
                                      __m128i high1, __m128i low2, __m128i middle2, __m128i high2) {
    return Median3(Max3(low0, low1, low2), Median3(middle0, middle1, middle2), Min3(high0, high1, high2));
}

// ---- Inner routines reached from more than one entry ----

// Square 3x3 (mask 33) or 5x5 (any other code) windows centred on each
// pixel of the region.
PrimStatus ownprimiFilterMedianSqr_8u_AC4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                           PrimSize size, int32_t mask);

// Any odd mask; src is the top-left pixel of the first window. Masks one
// pixel wide are ranked by partial sorting in an allocated buffer, which can
// fail with PrimMemAllocErr before anything is written; the others slide a
// histogram along each row.
PrimStatus ownprimiFilterMedianCom_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                                      PrimSize mask);

}  // namespace PRIM_BUILD

#endif
