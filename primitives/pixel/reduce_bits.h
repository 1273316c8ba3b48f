// What the dither methods of primiReduceBits_8u_AC4R share: the quantising
// step, the noise tables and the inner routines of each method.
//
// All of it is single precision. A channel value v is brought down to a
// multiple of step = 255 / n (n = levels - 1), and goes one step up when the
// threshold t lies below what truncation cut off.
#ifndef KV_PRIMITIVES_PIXEL_REDUCE_BITS_H
#define KV_PRIMITIVES_PIXEL_REDUCE_BITS_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

struct QuantLevels {
    float step;     // 255 / n
    float inverse;  // n / 255
};

// The step is formed through a 16-bit scale: 65280 / n, then by 1/256. Float
// and double give the same bits here, since a quotient rounded to double and
// then to float is the float quotient, and the scaling is exact.
inline QuantLevels MakeQuantLevels(int32_t n) {
    QuantLevels levels;
    levels.step = (65280.0f / static_cast<float>(n)) * 0.00390625f;
    levels.inverse = static_cast<float>(n) / 255.0f;
    return levels;
}

// The quantised value of v before it becomes a byte. The step up is added
// as step or +0, a select rather than a branch: which way it goes is as good
// as random on real images. q is never -0 here, so adding +0 changes nothing.
inline float Quantise(float v, float threshold, const QuantLevels& levels) {
    float q = static_cast<float>(static_cast<int32_t>(v * levels.inverse)) * levels.step;
    return q + (threshold < v - q ? levels.step : 0.0f);
}

// Truncated, and held to a byte: a negative threshold can step a value of
// 255 one step further up.
inline uint8_t QuantisedByte(float q) {
    int32_t value = static_cast<int32_t>(q);
    return static_cast<uint8_t>(value > 255 ? 255 : value);
}

// The ordered-dither matrix, row-major, in fifteenths.
extern const float kBayerThresholds[4][4];

// The random thresholds of the noise forms: pixel i of a row reads
// threshold[(index[i mod 1024] + rowOffset + i) mod 1024]. Both tables come
// from the uniform generator with seed 0, so one image always dithers alike.
struct NoiseTables {
    float* threshold = nullptr;
    int16_t* index = nullptr;

    float At(uint32_t rowOffset, uint32_t i) const {
        return threshold[(static_cast<uint32_t>(index[i & 1023u]) + rowOffset + i) & 1023u];
    }
};

constexpr int32_t kNoiseTableLength = 1024;

// Allocates both tables, the thresholds first; on failure nothing stays
// allocated.
bool AllocNoiseTables(NoiseTables& tables);
// Fills the index table with 0..1024, then the threshold table with low..high.
bool FillNoiseTables(NoiseTables& tables, float low, float high);
void FreeNoiseTables(NoiseTables& tables);

// The methods, on the three colour bytes of an AC4 image; the fourth bytes of
// the destination are not written. Each returns PrimMemAllocErr before any
// write when its buffers cannot be had.
PrimStatus ownNo_8u_PX(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                       int32_t n);
PrimStatus ownReduceBits_bayer_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize size, int32_t noise, const QuantLevels& levels);
PrimStatus ownReduceBits_fs_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               PrimSize size, int32_t noise, const QuantLevels& levels);
// Jarvis-Judice-Ninke and Stucki, told apart by the dither code.
PrimStatus ownReduceBits_st_jj_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize size, int32_t noise, int32_t dither, const QuantLevels& levels);

}  // namespace PRIM_BUILD

#endif
