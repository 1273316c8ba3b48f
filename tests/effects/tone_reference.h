// The tone effects' arithmetic written out plainly, one value at a time.
#ifndef KV_TESTS_EFFECTS_TONE_REFERENCE_H
#define KV_TESTS_EFFECTS_TONE_REFERENCE_H

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "kelvarine.h"

namespace kvtest {

inline int Clamp255(int v) { return v < 0 ? 0 : (v > 255 ? 255 : v); }

inline int ContrastReference(int v, int k) {
    int d = std::abs(127 - v);
    int q = d * k / 255;
    return v > 127 ? v + q : v - q;
}

struct SaturationReference {
    explicit SaturationReference(int amount) : factor(2 * amount + 255) {
        for (int i = 0; i < 256; ++i) {
            scale[i] = (factor * i) >> 8;
            for (int j = 0; j < 3; ++j) spread[3 * i + j] = i - scale[i];
        }
    }
    int operator()(int value, int sum) const { return scale[value] + spread[sum]; }
    int factor;
    int scale[256];
    int spread[768];
};

// Applies change(b, g, r) to each pixel's colour bytes; the fourth stays.
template <class Change>
std::vector<uint8_t> EachPixel(std::vector<uint8_t> frame, Change change) {
    for (size_t i = 0; i < frame.size(); i += 4) {
        int b = frame[i], g = frame[i + 1], r = frame[i + 2];
        change(b, g, r);
        frame[i] = static_cast<uint8_t>(b);
        frame[i + 1] = static_cast<uint8_t>(g);
        frame[i + 2] = static_cast<uint8_t>(r);
    }
    return frame;
}

// Widths around the four-pixel loop, and a few longer rows.
const int kFrameSizes[][2] = {{1, 1}, {3, 1}, {4, 1}, {5, 3}, {17, 9}, {131, 7}, {640, 2}};

inline EffectArgs Words(int32_t w0, int32_t w1 = 0, int32_t w2 = 0) { return EffectArgs{{w0, w1, w2, 0, 0, 0}}; }

// A fresh effect of class Effect with the words set runs once on frame.
template <class Effect>
int32_t ProcWith(EffectArgs args, std::vector<uint8_t>& frame, const int size[2]) {
    Effect effect;
    effect.SetArgs(&args);
    return effect.Proc(frame.data(), size[0], size[1]);
}

}  // namespace kvtest

#endif
