// The dispatched allocators, built once per processor generation.
#include "build.h"

extern "C" {

uint8_t* PRIM(primsMalloc_8u)(int32_t length) {
    if (length < 1) return nullptr;
    return static_cast<uint8_t*>(primMalloc(length));
}

void PRIM(primsFree)(void* ptr) { primFree(ptr); }

// Rows start on 32-byte boundaries. The step is written before the block is
// asked for, so it stays written when the allocation fails.
int16_t* PRIM(primiMalloc_16s_C1)(int32_t width, int32_t height, int32_t* step) {
    if (step == nullptr) return nullptr;
    if (width < 1 || height < 1) {
        *step = 0;
        return nullptr;
    }
    uint32_t rowBytes = (2u * static_cast<uint32_t>(width) + 31u) & ~31u;
    *step = static_cast<int32_t>(rowBytes);
    return static_cast<int16_t*>(primMalloc(static_cast<int32_t>(rowBytes * static_cast<uint32_t>(height))));
}

}  // extern "C"
