// The per-pixel path of primiFilter_8u_AC4R, for any kernel: three sums a
// pixel over the window, walking the kernel from its last element back, in
// wrapping 32-bit arithmetic; then the division, written out per mode.
#include "primitives/neighbourhood/convolution.h"

namespace PRIM_BUILD {
namespace {

inline uint8_t Clamped(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// v / 2^s, rounded to nearest with ties to the even quotient.
inline uint8_t ShiftRounded(int32_t v, int32_t s) {
    if (v < 1) return 0;
    const int32_t q = v >> s;
    return Clamped(q + (((v & ((1 << s) - 1)) + (1 << (s - 1)) + (q & 1) - 1) >> s));
}

// v * scale, rounded to nearest with ties to even whatever the rounding
// mode: half is added in double, and a result exactly half above the
// product is made even.
inline uint8_t ScaleRounded(int32_t v, float scale) {
    const float t = static_cast<float>(v) * scale;
    if (t >= 255.0f) return 255;
    if (t <= 0.5f) return 0;
    int32_t r = static_cast<int32_t>(static_cast<double>(t) + 0.5);
    if (static_cast<float>(r) - t == 0.5f) r &= ~1;
    return static_cast<uint8_t>(r);
}

uint8_t Divided(int32_t v, const Division& division) {
    switch (division.mode) {
        case Division::kWhole:
            return Clamped(v);
        case Division::kShift:
            return ShiftRounded(v, division.shift);
        case Division::kScale:
            break;
    }
    return ScaleRounded(v, division.scale);
}

}  // namespace

void FilterByPixels(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                    const Kernel& kernel, const Division& division) {
    const int32_t* last = kernel.values + static_cast<ptrdiff_t>(kernel.width) * kernel.height - 1;
    for (int32_t y = 0; y < size.height; ++y) {
        uint8_t* out = dst + static_cast<ptrdiff_t>(y) * dstStep;
        for (int32_t x = 0; x < size.width; ++x) {
            // The pixel under the kernel's last element, the window's top left.
            const uint8_t* corner = src + static_cast<ptrdiff_t>(y + kernel.anchorY - (kernel.height - 1)) * srcStep +
                                    4 * static_cast<ptrdiff_t>(x + kernel.anchorX - (kernel.width - 1));
            for (int c = 0; c < 3; ++c) {
                uint32_t sum = 0;
                const int32_t* k = last;
                for (int32_t j = 0; j < kernel.height; ++j) {
                    const uint8_t* row = corner + static_cast<ptrdiff_t>(j) * srcStep + c;
                    for (int32_t i = 0; i < kernel.width; ++i, --k) sum += static_cast<uint32_t>(*k) * row[4 * i];
                }
                out[4 * x + c] = Divided(static_cast<int32_t>(sum), division);
            }
        }
    }
}

}  // namespace PRIM_BUILD
