// The methods of the elliptical and the arbitrary mask kinds. Each takes an
// image that the entry point has checked against the state.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_MORPHOLOGY_KINDS_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_MORPHOLOGY_KINDS_H

#include "primitives/frame/build.h"
#include "primitives/neighbourhood/morphology_state.h"

namespace PRIM_BUILD {

// Both are built for PickMax (dilation) and PickMin (erosion).
template <class Pick>
void ownMorphEllipse_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                            const MorphologyState& state);

// selectTable is the state's dilateTable for PickMax, erodeTable for PickMin.
template <class Pick>
void ownMorphArbitrary_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                              const MorphologyState& state, const uint8_t* selectTable);

}  // namespace PRIM_BUILD

#endif
