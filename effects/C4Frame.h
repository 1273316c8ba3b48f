// What the effects on C4 primitives share. Those primitives replicate the
// frame's border themselves and cannot work in place: they write into a
// buffer of the frame's size, which then goes over the frame, all four
// bytes of each pixel.
#ifndef KV_EFFECTS_C4_FRAME_H
#define KV_EFFECTS_C4_FRAME_H

#include "kelvarine_prims.h"

// The bytes of a frame and of its buffer: width x height x 4, a 32-bit count.
inline int32_t FrameBytes(int32_t width, int32_t height) {
    return static_cast<int32_t>(static_cast<uint32_t>(width) * static_cast<uint32_t>(height) * 4u);
}

// Copies FrameBytes from buffer over the frame.
void CopyBack(unsigned char* frame, const unsigned char* buffer, int32_t width, int32_t height);

using MorphologyFilter = PrimStatus (*)(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                        PrimSize roiSize, int32_t borderType, MorphologyState* state);

// Dilates or erodes the frame into buffer with a full size x size square,
// anchored at its middle (right of it for an even size), then copies the
// buffer back. The structuring state is built and released on every call.
void MorphSquare(unsigned char* frame, int32_t width, int32_t height, int32_t size, unsigned char* buffer,
                 MorphologyFilter filter);

#endif
