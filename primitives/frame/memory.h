// Aligned allocation shared by the effects and the primitives.
#ifndef KV_PRIMITIVES_FRAME_MEMORY_H
#define KV_PRIMITIVES_FRAME_MEMORY_H

#include "kelvarine_prims.h"

extern "C" {
int16_t* primsMalloc_16s(int32_t length);
int32_t* primsMalloc_32s(int32_t length);
float* primsMalloc_32f(int32_t length);
}

#endif
