#include "effects/C4Frame.h"

#include <cstring>

void CopyBack(unsigned char* frame, const unsigned char* buffer, int32_t width, int32_t height) {
    const int32_t bytes = FrameBytes(width, height);
    if (bytes > 0) memcpy(frame, buffer, static_cast<size_t>(bytes));
}

void MorphSquare(unsigned char* frame, int32_t width, int32_t height, int32_t size, unsigned char* buffer,
                 MorphologyFilter filter) {
    unsigned char mask[10 * 10];
    memset(mask, 1, static_cast<size_t>(size * size));
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    MorphologyState* state = nullptr;
    primiMorphologyInitAlloc_8u_C4R(width, mask, {size, size}, {size >> 1, size >> 1}, &state);
    filter(frame, step, buffer, step, {width, height}, BorderRepl, state);
    CopyBack(frame, buffer, width, height);
    primiMorphologyFree(state);
}
