// The box filter's mean of a window, as the library defines it for each
// path, from the exact sum s of the window's elements.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_BOX_REFERENCE_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_BOX_REFERENCE_H

#include <algorithm>
#include <cstdint>

namespace kvtest {

struct MultiplierShift {
    uint32_t multiplier, shift;
};

// The integer path's reciprocal of the area: 1/area in single precision,
// scaled by 2^32 - 1 in double, normalised to a set top bit in at most 24
// steps, cut to 12 bits and raised by one. Masks 1x2 and 2x1 use 4096 >> 13.
inline MultiplierShift BoxMultiplier(int width, int height) {
    if (width + height == 3) return {4096, 13};
    float reciprocal = 1.0f / static_cast<float>(width * height);
    if (reciprocal == 1.0f) return {4096, 12};
    auto n = static_cast<uint32_t>(static_cast<double>(reciprocal) * 4294967295.0);
    uint32_t steps = 0;
    for (; steps < 24 && !(n & 0x80000000u); ++steps) n <<= 1;
    return {(n >> 20) + 1, steps + 12};
}

// Valid while sums stay below 2^24, where the float path's sums are exact
// whatever the order of its additions.
inline uint8_t BoxMean(uint32_t s, int width, int height) {
    const int area = width * height;
    if (area > 8100) {
        int mean = static_cast<int>((1.0f / static_cast<float>(area)) * static_cast<float>(s) + 9.0e-6f);
        return static_cast<uint8_t>(std::min(mean, 255));
    }
    if (width == 3 && height == 3) return static_cast<uint8_t>(((s * 29128) >> 16) >> 2);
    const MultiplierShift m = BoxMultiplier(width, height);
    return static_cast<uint8_t>(std::min<uint32_t>((m.multiplier * s) >> m.shift, 255));
}

}  // namespace kvtest

#endif
