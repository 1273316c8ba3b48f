// primMalloc and primFree: 32-byte-aligned blocks through replaceable hooks.
#include "memory.h"

#include <cstdint>
#include <cstdlib>

extern "C" {

KV_API void* (*i_malloc)(size_t) = std::malloc;
KV_API void* (*i_calloc)(size_t, size_t) = std::calloc;
KV_API void* (*i_realloc)(void*, size_t) = std::realloc;
KV_API void (*i_free)(void*) = std::free;

// The raw block is 40 bytes longer than asked: rounding (raw + 39) down to
// 32 bytes leaves at least 8 bytes in front of the start for the raw pointer
// and at least length bytes behind it.
KV_API void* primMalloc(int32_t length) {
    if (length <= 0) return nullptr;
    void* raw = i_malloc(static_cast<size_t>(length) + 40);
    if (raw == nullptr) return nullptr;
    uintptr_t start = (reinterpret_cast<uintptr_t>(raw) + 39) & ~static_cast<uintptr_t>(31);
    reinterpret_cast<void**>(start)[-1] = raw;
    return reinterpret_cast<void*>(start);
}

KV_API void primFree(void* ptr) {
    if (ptr == nullptr) return;
    i_free(static_cast<void**>(ptr)[-1]);
}

// Element counts times the element size; a count below 1 is refused by
// primMalloc itself, and so is a byte count that wraps to zero or below.
int16_t* primsMalloc_16s(int32_t length) {
    return static_cast<int16_t*>(primMalloc(static_cast<int32_t>(static_cast<uint32_t>(length) * 2u)));
}

int32_t* primsMalloc_32s(int32_t length) {
    return static_cast<int32_t*>(primMalloc(static_cast<int32_t>(static_cast<uint32_t>(length) * 4u)));
}

float* primsMalloc_32f(int32_t length) {
    return static_cast<float*>(primMalloc(static_cast<int32_t>(static_cast<uint32_t>(length) * 4u)));
}

}  // extern "C"
