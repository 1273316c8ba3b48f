// The loops that copy and fill bytes, shared by the copy, set, zero, border,
// mirror and arithmetic code of a build.
//
// A fill writes a 4-byte word over and over from its first byte on; a copy
// moves bytes. Both take a 4-byte mask, periodic in the same way: where a
// mask byte is 0 the destination byte keeps its old value, which is how the
// three-colour-byte forms leave the fourth byte of every pixel alone.
//
// How the 16-byte blocks are written is a policy: plain stores, streaming
// stores (which bypass the cache and need a StoreFence at the end of the
// job), or a merge with the old destination under the mask. Every loop
// aligns the destination to 16 bytes first; the policies give the same bytes.
#ifndef KV_PRIMITIVES_PIXEL_MEMORY_LOOPS_H
#define KV_PRIMITIVES_PIXEL_MEMORY_LOOPS_H

#include <emmintrin.h>
#ifdef __SSE4_1__
#include <smmintrin.h>
#endif

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace PRIM_BUILD {

// 0xFF in the three colour bytes of a pixel, 0x00 in the fourth.
constexpr uint32_t kColourMask = 0x00FFFFFFu;
constexpr uint32_t kAllBytes = 0xFFFFFFFFu;

// The streaming copy pulls its source into the cache a block at a time.
constexpr size_t kStreamBlockBytes = 262144;
constexpr size_t kCacheTouchStride = 128;

// The bytes of fresh where mask is 0xFF, of old where it is 0x00.
inline __m128i Merge(__m128i fresh, __m128i old, __m128i mask) {
#ifdef __SSE4_1__
    return _mm_blendv_epi8(old, fresh, mask);
#else
    return _mm_or_si128(_mm_and_si128(mask, fresh), _mm_andnot_si128(mask, old));
#endif
}

// A 4-byte periodic word as it reads from offset bytes further on.
inline uint32_t RotateBytes(uint32_t word, size_t offset) {
    unsigned bits = static_cast<unsigned>(offset & 3) * 8;
    return bits == 0 ? word : (word >> bits) | (word << (32 - bits));
}

inline uint32_t LoadWord(const uint8_t* at) {
    uint32_t word;
    memcpy(&word, at, 4);
    return word;
}

// Three colour bytes as a pixel word with a zero fourth byte.
inline uint32_t ColourWord(const uint8_t value[3]) {
    return value[0] | static_cast<uint32_t>(value[1]) << 8 | static_cast<uint32_t>(value[2]) << 16;
}

inline __m128i LoadUnaligned(const uint8_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }
inline void StoreUnaligned(uint8_t* at, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(at), v); }
inline __m128i Broadcast(uint32_t word) { return _mm_set1_epi32(static_cast<int>(word)); }

// Four pixels in reverse order.
inline __m128i ReversePixels(__m128i v) { return _mm_shuffle_epi32(v, _MM_SHUFFLE(0, 1, 2, 3)); }

struct PlainStores {
    static void Prepare(const uint8_t*, size_t) {}
    static void WriteUnaligned(uint8_t* at, __m128i v, __m128i) { StoreUnaligned(at, v); }
    static void Write(uint8_t* at, __m128i v, __m128i) { _mm_store_si128(reinterpret_cast<__m128i*>(at), v); }
};

// Non-temporal stores for images larger than the cache: the destination is
// not read back soon, so it should not evict what is. The source of a copy
// is touched once per 128 bytes of a block beforehand, so that its loads
// come from the cache while the stores stream out.
struct StreamingStores {
    static void Prepare(const uint8_t* source, size_t bytes) {
        for (size_t i = 0; i < bytes; i += kCacheTouchStride) (void)*static_cast<const volatile uint8_t*>(source + i);
    }
    static void WriteUnaligned(uint8_t* at, __m128i v, __m128i) { StoreUnaligned(at, v); }
    static void Write(uint8_t* at, __m128i v, __m128i) { _mm_stream_si128(reinterpret_cast<__m128i*>(at), v); }
};

// Orders streaming stores before whatever the caller writes next.
inline void StoreFence() { _mm_sfence(); }

struct MergedStores {
    static void Prepare(const uint8_t*, size_t) {}
    static void WriteUnaligned(uint8_t* at, __m128i v, __m128i mask) {
        StoreUnaligned(at, Merge(v, LoadUnaligned(at), mask));
    }
    static void Write(uint8_t* at, __m128i v, __m128i mask) {
        __m128i* block = reinterpret_cast<__m128i*>(at);
        _mm_store_si128(block, Merge(v, _mm_load_si128(block), mask));
    }
};

// Byte by byte, for runs shorter than one block.
inline void FillShort(uint8_t* dst, size_t bytes, uint32_t word, uint32_t mask) {
    for (size_t i = 0; i < bytes; ++i) {
        unsigned shift = static_cast<unsigned>(i & 3) * 8;
        if ((mask >> shift) & 0xFF) dst[i] = static_cast<uint8_t>(word >> shift);
    }
}

inline void CopyShort(const uint8_t* src, uint8_t* dst, size_t bytes, uint32_t mask) {
    for (size_t i = 0; i < bytes; ++i) {
        if ((mask >> ((i & 3) * 8)) & 0xFF) dst[i] = src[i];
    }
}

// The first 16 bytes go unaligned; the rest, from the next 16-byte boundary
// on, aligned; a last unaligned block ends the run. The overlaps write the
// same bytes twice.
template <class Stores>
void FillPattern(uint8_t* dst, size_t bytes, uint32_t word, uint32_t mask) {
    if (bytes < 16) {
        FillShort(dst, bytes, word, mask);
        return;
    }
    Stores::WriteUnaligned(dst, Broadcast(word), Broadcast(mask));
    size_t i = 16 - (reinterpret_cast<uintptr_t>(dst) & 15);
    const __m128i value = Broadcast(RotateBytes(word, i));
    const __m128i keep = Broadcast(RotateBytes(mask, i));
    for (; i + 64 <= bytes; i += 64) {
        Stores::Write(dst + i, value, keep);
        Stores::Write(dst + i + 16, value, keep);
        Stores::Write(dst + i + 32, value, keep);
        Stores::Write(dst + i + 48, value, keep);
    }
    for (; i + 16 <= bytes; i += 16) Stores::Write(dst + i, value, keep);
    if (i < bytes) {
        size_t last = bytes - 16;
        Stores::WriteUnaligned(dst + last, Broadcast(RotateBytes(word, last)), Broadcast(RotateBytes(mask, last)));
    }
}

// Source and destination must not overlap.
template <class Stores>
void CopyBytes(const uint8_t* src, uint8_t* dst, size_t bytes, uint32_t mask) {
    if (bytes < 16) {
        CopyShort(src, dst, bytes, mask);
        return;
    }
    Stores::WriteUnaligned(dst, LoadUnaligned(src), Broadcast(mask));
    size_t i = 16 - (reinterpret_cast<uintptr_t>(dst) & 15);
    const __m128i keep = Broadcast(RotateBytes(mask, i));
    while (i + 16 <= bytes) {
        size_t blockEnd = bytes - i > kStreamBlockBytes ? i + kStreamBlockBytes : bytes;
        Stores::Prepare(src + i, blockEnd - i);
        for (; i + 64 <= blockEnd; i += 64) {
            const __m128i a = LoadUnaligned(src + i), b = LoadUnaligned(src + i + 16);
            const __m128i c = LoadUnaligned(src + i + 32), d = LoadUnaligned(src + i + 48);
            Stores::Write(dst + i, a, keep);
            Stores::Write(dst + i + 16, b, keep);
            Stores::Write(dst + i + 32, c, keep);
            Stores::Write(dst + i + 48, d, keep);
        }
        for (; i + 16 <= blockEnd; i += 16) Stores::Write(dst + i, LoadUnaligned(src + i), keep);
    }
    if (i < bytes) {
        size_t last = bytes - 16;
        Stores::WriteUnaligned(dst + last, LoadUnaligned(src + last), Broadcast(RotateBytes(mask, last)));
    }
}

// The three colour bytes of each pixel; the fourth byte of dst stays.
inline void owniCopy8u_AC4_M7(const uint8_t* src, uint8_t* dst, size_t bytes) {
    CopyBytes<MergedStores>(src, dst, bytes, kColourMask);
}

// All bytes, with streaming stores when asked for; the caller fences.
inline void owniCopy_8u_C1_M7(const uint8_t* src, uint8_t* dst, size_t bytes, bool streaming) {
    if (streaming) {
        CopyBytes<StreamingStores>(src, dst, bytes, kAllBytes);
    } else {
        CopyBytes<PlainStores>(src, dst, bytes, kAllBytes);
    }
}

}  // namespace PRIM_BUILD

#endif
