// The worker of primiFilter_8u_AC4R and its two paths. Both compute, for
// each colour element, the wrapping 32-bit sum of kernel times source over
// the flipped kernel, and divide it by the divisor in one of three modes; the
// fast path works a row at a time on packed 16-bit coefficients, the
// per-pixel path takes any kernel.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_CONVOLUTION_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_CONVOLUTION_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// How a sum is divided: kWhole for a divisor of 1, kShift for a positive
// power of two (shift is its log2), kScale otherwise (scale is 1 / divisor).
struct Division {
    enum Mode { kWhole, kShift, kScale };
    Mode mode;
    int32_t shift;
    float scale;
};

// The kernel's geometry: kernel[j * width + i] multiplies the source pixel
// anchor.x - i columns and anchor.y - j rows away from the output's own.
struct Kernel {
    const int32_t* values;
    int32_t width, height;
    int32_t anchorX, anchorY;
};

void piFilter_8u_AC4R(const uint8_t* pSrc, int32_t srcStep, uint8_t* pDst, int32_t dstStep, int32_t width,
                      int32_t height, const int32_t* pKernel, int32_t kernelWidth, int32_t kernelHeight,
                      int32_t anchorX, int32_t anchorY, int32_t divisor, int32_t* scratch);

// The fast path. Packs the kernel into the scratch block's coefficient
// region; false, with the path not taken, when a coefficient lies outside
// -32767..32766.
bool PackCoefficients(const Kernel& kernel, int32_t* block);
void FilterByRows(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                  const Kernel& kernel, const Division& division, int32_t* block);

// The per-pixel path.
void FilterByPixels(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                    const Kernel& kernel, const Division& division);

}  // namespace PRIM_BUILD

#endif
