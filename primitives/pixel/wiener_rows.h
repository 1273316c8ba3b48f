// The two row routines of the Wiener filter on four-byte pixels.
//
// A row of the work buffer holds four 32-bit lanes per pixel, one for each
// byte; the fourth lane is carried along and its results are never used.
// Rows come in pairs, used in turn from one image row to the next.
#ifndef KV_PRIMITIVES_PIXEL_WIENER_ROWS_H
#define KV_PRIMITIVES_PIXEL_WIENER_ROWS_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Local mean and variance of image row y into meanRow and varRow.
//
// window is the top-left pixel of the window of the row's first output
// pixel. On row 0 the int32 sums S (values) and Q (squares) of every window
// are added up from scratch; unless y is the last row, the next row's sums go
// otherRow bytes away, taken from this row's. Then this row becomes, lane by
// lane, mean = n * S and variance = max(Q - S * S * n, noise) in float.
void owniLocalVarMean_8u32f_AC4L_M7(const uint8_t* window, int32_t srcStep, const PrimSize* mask, float* meanRow,
                                    float* varRow, int32_t otherRow, const PrimSize* roi, int32_t y,
                                    const float* invArea, const float noise[4]);

// One output row: each colour byte s is pulled towards its local mean M by
// M + (V - noise) / V * (s - M), with a Newton-refined fast reciprocal of V,
// rounded in the current mode and saturated. The fourth byte of dst stays.
void owniWiener_8u32f_AC4R_M7(const uint8_t* src, const float* meanRow, const float* varRow, uint8_t* dst,
                              const float noise[4], int32_t width);

}  // namespace PRIM_BUILD

#endif
