// The fixed-kernel filters as their kernels and result rules define them:
// the entry at column i, row j (from -r to r) multiplies the source pixel at
// (x + i, y + j), each colour channel on its own.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_FIXED_REFERENCE_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_FIXED_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "kelvarine_prims.h"
#include "padded_source.h"

namespace kvtest {

struct Tap {
    int dx, dy, weight;
};

struct FixedFilter {
    std::string name;
    Reach reach;
    std::vector<Tap> taps;
    uint8_t (*result)(int s);
    PrimStatus (*call)(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size);

    // The result at (x, y) of a source read through at(x, y, c).
    template <class Source>
    uint8_t At(const Source& at, int x, int y, int c) const {
        int s = 0;
        for (const Tap& t : taps) s += t.weight * at(x + t.dx, y + t.dy, c);
        return result(s);
    }
};

// A square kernel, written row by row from the top.
inline std::vector<Tap> Square(int radius, const std::vector<int>& rows) {
    std::vector<Tap> taps;
    const int edge = 2 * radius + 1;
    for (int k = 0; k < edge * edge; ++k)
        if (rows[k] != 0) taps.push_back({k % edge - radius, k / edge - radius, rows[k]});
    return taps;
}

inline uint8_t Clamped(int s) { return uint8_t(std::min(std::max(s, 0), 255)); }

inline uint8_t SixteenthToEven(int s) {
    int q = s / 16, r = s % 16;
    return uint8_t(q + (r > 8 || (r == 8 && (q & 1))));
}

inline uint8_t Gauss5Result(int s) {
    const uint32_t bits = 0x3AE58C54;
    float reciprocal;
    std::memcpy(&reciprocal, &bits, 4);
    return Clamped(int(std::nearbyint(float(s) * reciprocal)));
}

inline uint8_t Lowpass3Result(int s) { return uint8_t(((s + 5) * 7281) >> 16); }
inline uint8_t Lowpass5Result(int s) { return uint8_t((((s + 13) * 10485) >> 16) >> 2); }

inline const std::vector<FixedFilter>& FixedFilters() {
    static const Reach r1{1, 1, 1, 1}, r2{2, 2, 2, 2};
    static const std::vector<int> laplace3 = {-1, -1, -1, -1, 8, -1, -1, -1, -1};
    static const std::vector<int> laplace5 = {-1, -3, -4, -3, -1, -3, 0, 6, 0, -3, -4, 6, 20,
                                              6,  -4, -3, 0, 6, 0, -3, -1, -3, -4, -3, -1};
    static const std::vector<int> hipass5 = [] {
        std::vector<int> k(25, -1);
        k[12] = 24;
        return k;
    }();
    static const std::vector<int> gauss5 = {2,  7,  12, 7,  2,  7,  31, 52, 31, 7,  12, 52, 127,
                                            52, 12, 7,  31, 52, 31, 7,  2,  7,  12, 7,  2};
    static const std::vector<FixedFilter> filters = {
        {"PrewittVert", r1, Square(1, {1, 0, -1, 1, 0, -1, 1, 0, -1}), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterPrewittVert_8u_AC4R(s, ss, d, ds, z); }},
        {"SobelVert", r1, Square(1, {1, 0, -1, 2, 0, -2, 1, 0, -1}), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterSobelVert_8u_AC4R(s, ss, d, ds, z); }},
        {"PrewittHoriz", r1, Square(1, {-1, -1, -1, 0, 0, 0, 1, 1, 1}), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterPrewittHoriz_8u_AC4R(s, ss, d, ds, z); }},
        {"SobelHoriz", r1, Square(1, {-1, -2, -1, 0, 0, 0, 1, 2, 1}), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterSobelHoriz_8u_AC4R(s, ss, d, ds, z); }},
        {"RobertsDown", {1, 1, 0, 0}, {{0, 0, 1}, {-1, -1, -1}}, Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterRobertsDown_8u_AC4R(s, ss, d, ds, z); }},
        {"RobertsUp", {0, 1, 1, 0}, {{0, 0, 1}, {1, -1, -1}}, Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterRobertsUp_8u_AC4R(s, ss, d, ds, z); }},
        {"Laplace3x3", r1, Square(1, laplace3), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterLaplace_8u_AC4R(s, ss, d, ds, z, MaskSize3x3); }},
        {"Laplace5x5", r2, Square(2, laplace5), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterLaplace_8u_AC4R(s, ss, d, ds, z, MaskSize5x5); }},
        {"Hipass3x3", r1, Square(1, laplace3), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterHipass_8u_AC4R(s, ss, d, ds, z, MaskSize3x3); }},
        {"Hipass5x5", r2, Square(2, hipass5), Clamped,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterHipass_8u_AC4R(s, ss, d, ds, z, MaskSize5x5); }},
        {"Gauss3x3", r1, Square(1, {1, 2, 1, 2, 4, 2, 1, 2, 1}), SixteenthToEven,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterGauss_8u_AC4R(s, ss, d, ds, z, MaskSize3x3); }},
        {"Gauss5x5", r2, Square(2, gauss5), Gauss5Result,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterGauss_8u_AC4R(s, ss, d, ds, z, MaskSize5x5); }},
        {"Lowpass3x3", r1, Square(1, std::vector<int>(9, 1)), Lowpass3Result,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterLowpass_8u_AC4R(s, ss, d, ds, z, MaskSize3x3); }},
        {"Lowpass5x5", r2, Square(2, std::vector<int>(25, 1)), Lowpass5Result,
         [](const uint8_t* s, int32_t ss, uint8_t* d, int32_t ds, PrimSize z) { return primiFilterLowpass_8u_AC4R(s, ss, d, ds, z, MaskSize5x5); }},
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
