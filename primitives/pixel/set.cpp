// Filling images and vectors with a value: primiSet_8u_AC4R, primiSet_8u_C1R,
// primsZero_8u, primsZero_16s, primsSet_32f.
#include "primitives/frame/build.h"
#include "primitives/frame/cpu.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

// Below these sizes a fill always uses plain stores.
constexpr size_t kZeroStreamingFrom = 524288;
constexpr size_t kSet32StreamingFrom = 1048576;
constexpr int64_t kSetC1StreamingAbove = 524288;

// A large fill streams when this is the native vendor and the fill is at
// least as large as the largest cache that the processor names: it could
// not stay in the cache anyway.
bool FillStreams(size_t bytes, size_t plainBelow) {
    if (bytes < plainBelow) return false;
    int32_t cache = ownGetTableCacheSize();
    return cache > 0 && bytes >= static_cast<size_t>(cache);
}

void FillRun(uint8_t* dst, size_t bytes, uint32_t word, bool streaming) {
    if (streaming) {
        FillPattern<StreamingStores>(dst, bytes, word, kAllBytes);
        StoreFence();
    } else {
        FillPattern<PlainStores>(dst, bytes, word, kAllBytes);
    }
}

void ownsZero_8u(uint8_t* dst, size_t bytes) { FillRun(dst, bytes, 0, FillStreams(bytes, kZeroStreamingFrom)); }

void ownsSet_32s(uint32_t word, uint8_t* dst, size_t count) {
    size_t bytes = count * 4;
    FillRun(dst, bytes, word, FillStreams(bytes, kSet32StreamingFrom));
}

// Rows of pixelBytes * width bytes at the given step; one run when they touch.
template <class Stores>
void FillRows(uint8_t* image, int32_t step, PrimSize size, int32_t pixelBytes, uint32_t word, uint32_t mask) {
    size_t rowBytes = static_cast<size_t>(size.width) * static_cast<size_t>(pixelBytes);
    if (static_cast<int64_t>(step) == static_cast<int64_t>(rowBytes)) {
        rowBytes *= static_cast<size_t>(size.height);
        size.height = 1;
    }
    for (int32_t y = 0; y < size.height; ++y)
        FillPattern<Stores>(image + static_cast<ptrdiff_t>(y) * step, rowBytes, word, mask);
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiSet_8u_AC4R)(const uint8_t value[3], uint8_t* image, int32_t step, PrimSize size) {
    if (value == nullptr || image == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    FillRows<MergedStores>(image, step, size, 4, ColourWord(value), kColourMask);
    return PrimOk;
}

// Streams when the image is at least as large as the largest cache, as far
// as the cache size is known.
extern "C" PrimStatus PRIM(primiSet_8u_C1R)(uint8_t value, uint8_t* image, int32_t step, PrimSize size) {
    if (image == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    int64_t area = static_cast<int64_t>(size.width) * size.height;
    int32_t cache = 0;
    uint32_t word = value * 0x01010101u;
    if (area > kSetC1StreamingAbove && primGetMaxCacheSizeB(&cache) == PrimOk && area >= cache) {
        FillRows<StreamingStores>(image, step, size, 1, word, kAllBytes);
        StoreFence();
    } else {
        FillRows<PlainStores>(image, step, size, 1, word, kAllBytes);
    }
    return PrimOk;
}

extern "C" PrimStatus PRIM(primsZero_8u)(uint8_t* vector, int32_t length) {
    if (vector == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    ownsZero_8u(vector, static_cast<size_t>(length));
    return PrimOk;
}

extern "C" PrimStatus PRIM(primsZero_16s)(int16_t* vector, int32_t length) {
    if (vector == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    ownsZero_8u(reinterpret_cast<uint8_t*>(vector), 2 * static_cast<size_t>(length));
    return PrimOk;
}

extern "C" PrimStatus PRIM(primsSet_32f)(float value, float* vector, int32_t length) {
    if (vector == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    uint32_t bits;
    memcpy(&bits, &value, 4);
    ownsSet_32s(bits, reinterpret_cast<uint8_t*>(vector), static_cast<size_t>(length));
    return PrimOk;
}
