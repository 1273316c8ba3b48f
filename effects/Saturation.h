#ifndef KV_EFFECTS_SATURATION_H
#define KV_EFFECTS_SATURATION_H

#include <emmintrin.h>

#include "effects/Effect_Base.h"

// Scales each colour value by factor / 256, factor = 2 * amount + 255, and
// adds what the same scaling takes from the pixel's mean: a gray pixel stays
// as it is, the others move away from (or toward) their gray.
class Saturation : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Saturation_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount);

    int32_t amount = 2;
    // Rebuilt by each Saturation_proc with an amount other than 0.
    int32_t spread[768];
    int32_t scale[256];
    int32_t factor;
    int32_t lastAmount;
};

// factor = 2 * amount + 255; scale[i] = factor * i >> 8 (arithmetic, so a
// negative factor rounds toward minus infinity); spread[s] = m - scale[m]
// with m = s / 3, so that a sum of three values indexes its own mean.
void BuildSaturationTables(int32_t amount, int32_t* factor, int32_t scale[256], int32_t spread[768]);

// One pixel through the tables, not clamped.
inline void SaturateValues(const int32_t scale[256], const int32_t spread[768], int32_t& b, int32_t& g, int32_t& r) {
    const int32_t e = spread[b + g + r];
    b = scale[b] + e;
    g = scale[g] + e;
    r = scale[r] + e;
}

// scale[c] + spread[b + g + r] for each colour lane of two pixels in eight
// 16-bit lanes, b g r x b g r x, computed rather than looked up.
class SaturationWide {
public:
    explicit SaturationWide(int32_t factor) : twiceFactor_(_mm_set1_epi16(static_cast<int16_t>(2 * factor))) {}

    __m128i operator()(__m128i pixels) const {
        const __m128i colour = _mm_and_si128(pixels, _mm_set_epi16(0, -1, -1, -1, 0, -1, -1, -1));
        // Each colour lane gets the sum of its pixel's three lanes.
        __m128i sum = _mm_add_epi16(colour, RotateColourLanes<_MM_SHUFFLE(3, 0, 2, 1)>(colour));
        sum = _mm_add_epi16(sum, RotateColourLanes<_MM_SHUFFLE(3, 1, 0, 2)>(colour));
        // sum / 3 for sums up to 765: (sum * 0xAAAB) >> 17.
        const __m128i mean = _mm_srli_epi16(_mm_mulhi_epu16(sum, _mm_set1_epi16(static_cast<int16_t>(0xAAAB))), 1);
        return _mm_add_epi16(Scale(colour), _mm_sub_epi16(mean, Scale(mean)));
    }

private:
    template <int order>
    static __m128i RotateColourLanes(__m128i v) {
        return _mm_shufflehi_epi16(_mm_shufflelo_epi16(v, order), order);
    }

    // factor * v >> 8 for v up to 255 as the high half of (v << 7) * (2 * factor):
    // both fit signed 16 bits, and the high half of a signed product is
    // rounded toward minus infinity, as the arithmetic shift is.
    __m128i Scale(__m128i v) const { return _mm_mulhi_epi16(_mm_slli_epi16(v, 7), twiceFactor_); }

    __m128i twiceFactor_;
};

#endif
