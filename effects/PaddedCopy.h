// The frame copied into a larger buffer with its edge pixels replicated
// around it, so that a neighbourhood filter can read from the copy and
// write straight back into the frame.
#ifndef KV_EFFECTS_PADDED_COPY_H
#define KV_EFFECTS_PADDED_COPY_H

#include "kelvarine_prims.h"

// Copies the frame into buffer (row step bufferStep, size padded) with
// border pixels above and to the left of it, and returns the address of the
// frame's first pixel in the buffer; null for a null buffer, which the
// copy and the filter then refuse.
inline unsigned char* CopyIntoPadded(const unsigned char* frame, int32_t width, int32_t height, unsigned char* buffer,
                                     int32_t bufferStep, PrimSize padded, int32_t border) {
    primiCopyReplicateBorder_8u_AC4R(frame, width * 4, {width, height}, buffer, bufferStep, padded, border, border);
    if (buffer == nullptr) return nullptr;
    return buffer + static_cast<ptrdiff_t>(border) * bufferStep + 4 * static_cast<ptrdiff_t>(border);
}

#endif
