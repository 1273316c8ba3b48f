// The fixed-kernel filters as their kernels and result rules define them:
// the entry at column i, row j (from -r to r) multiplies the source pixel at
// (x + i, y + j), each colour channel on its own.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_FIXED_REFERENCE_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_FIXED_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "kelvarine_prims.h"

namespace kvtest {

using FixedCall = PrimStatus (*)(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size);

template <int32_t kMask, PrimStatus (*kFilter)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t)>
PrimStatus WithMask(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size) {
    return kFilter(src, srcStep, dst, dstStep, size, kMask);
}

struct FixedFilter {
    std::string name;
    FixedCall call;
    int radius;
    std::vector<int> kernel;  // (2r + 1)^2 entries, row by row from the top
    uint8_t (*result)(int s);

    // The result at (x, y), reading the source through at(x, y, c) where
    // the kernel is not 0.
    template <class Source>
    uint8_t At(const Source& at, int x, int y, int c) const {
        const int edge = 2 * radius + 1;
        int s = 0;
        for (int k = 0; k < edge * edge; ++k)
            if (kernel[k] != 0) s += kernel[k] * at(x + k % edge - radius, y + k / edge - radius, c);
        return result(s);
    }
};

inline uint8_t Clamped(int s) { return uint8_t(std::min(std::max(s, 0), 255)); }
// Exact halves go to the even quotient.
inline uint8_t Sixteenth(int s) { return uint8_t(std::nearbyint(s / 16.0)); }
// Single precision times the float nearest 1/571 (0x3AE58C54), to nearest even.
inline uint8_t Gauss5Result(int s) { return Clamped(int(std::nearbyint(float(s) * (1.0f / 571.0f)))); }
inline uint8_t Lowpass3Result(int s) { return uint8_t(((s + 5) * 7281) >> 16); }
inline uint8_t Lowpass5Result(int s) { return uint8_t((((s + 13) * 10485) >> 16) >> 2); }

inline const std::vector<FixedFilter>& FixedFilters() {
    static const std::vector<int> laplace3 = {-1, -1, -1, -1, 8, -1, -1, -1, -1};
    static const std::vector<int> hipass5 = [] {
        std::vector<int> k(25, -1);
        k[12] = 24;
        return k;
    }();
    // Roberts: the pixel less its neighbour up and to the left, or right.
    static const std::vector<FixedFilter> filters = {
        {"PrewittVert", primiFilterPrewittVert_8u_AC4R, 1, {1, 0, -1, 1, 0, -1, 1, 0, -1}, Clamped},
        {"SobelVert", primiFilterSobelVert_8u_AC4R, 1, {1, 0, -1, 2, 0, -2, 1, 0, -1}, Clamped},
        {"PrewittHoriz", primiFilterPrewittHoriz_8u_AC4R, 1, {-1, -1, -1, 0, 0, 0, 1, 1, 1}, Clamped},
        {"SobelHoriz", primiFilterSobelHoriz_8u_AC4R, 1, {-1, -2, -1, 0, 0, 0, 1, 2, 1}, Clamped},
        {"RobertsDown", primiFilterRobertsDown_8u_AC4R, 1, {-1, 0, 0, 0, 1, 0, 0, 0, 0}, Clamped},
        {"RobertsUp", primiFilterRobertsUp_8u_AC4R, 1, {0, 0, -1, 0, 1, 0, 0, 0, 0}, Clamped},
        {"Laplace3x3", WithMask<MaskSize3x3, primiFilterLaplace_8u_AC4R>, 1, laplace3, Clamped},
        {"Laplace5x5", WithMask<MaskSize5x5, primiFilterLaplace_8u_AC4R>, 2,
         {-1, -3, -4, -3, -1, -3, 0, 6, 0, -3, -4, 6, 20, 6, -4, -3, 0, 6, 0, -3, -1, -3, -4, -3, -1}, Clamped},
        {"Hipass3x3", WithMask<MaskSize3x3, primiFilterHipass_8u_AC4R>, 1, laplace3, Clamped},
        {"Hipass5x5", WithMask<MaskSize5x5, primiFilterHipass_8u_AC4R>, 2, hipass5, Clamped},
        {"Gauss3x3", WithMask<MaskSize3x3, primiFilterGauss_8u_AC4R>, 1, {1, 2, 1, 2, 4, 2, 1, 2, 1}, Sixteenth},
        {"Gauss5x5", WithMask<MaskSize5x5, primiFilterGauss_8u_AC4R>, 2,
         {2, 7, 12, 7, 2, 7, 31, 52, 31, 7, 12, 52, 127, 52, 12, 7, 31, 52, 31, 7, 2, 7, 12, 7, 2}, Gauss5Result},
        {"Lowpass3x3", WithMask<MaskSize3x3, primiFilterLowpass_8u_AC4R>, 1, std::vector<int>(9, 1), Lowpass3Result},
        {"Lowpass5x5", WithMask<MaskSize5x5, primiFilterLowpass_8u_AC4R>, 2, std::vector<int>(25, 1), Lowpass5Result},
    };
    return filters;
}

inline const FixedFilter& FixedFilterNamed(const std::string& name) {
    for (const auto& f : FixedFilters())
        if (f.name == name) return f;
    std::abort();
}

}  // namespace kvtest

#endif
