// The drivers of the fixed-kernel filters. Each takes the five image
// arguments, the kernel kind where one driver serves two kernels, then the
// data type and channel code by which it picks its row functions from
// tables. Only type 0 (8u) is built, and the entries pass channel code 4
// (AC4): the slot of a layout is type * 4 + channels - 1.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_FIXED_FILTERS_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_FIXED_FILTERS_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

constexpr int32_t kType8u = 0;
constexpr int32_t kChannelsAC4 = 4;

// Kernel kinds.
constexpr int32_t kPrewitt = 0, kSobel = 1;
constexpr int32_t kLaplace = 0, kGauss = 1;

PrimStatus ownprimiFilterPrewittSobelVert(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                          PrimSize roiSize, int32_t kind, int32_t type, int32_t channels);
PrimStatus ownprimiFilterPrewittSobelHoriz(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                           PrimSize roiSize, int32_t kind, int32_t type, int32_t channels);
PrimStatus ownprimiFilterGauss3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize roiSize, int32_t type, int32_t channels);
PrimStatus ownprimiFilterLaplace3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels);
PrimStatus ownprimiFilterLowpass3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels);
PrimStatus ownprimiFilterLaplGaus5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                     PrimSize roiSize, int32_t kind, int32_t type, int32_t channels);
PrimStatus ownprimiFilterHipass5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                   PrimSize roiSize, int32_t type, int32_t channels);
PrimStatus ownprimiFilterLowpass5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels);

}  // namespace PRIM_BUILD

#endif
