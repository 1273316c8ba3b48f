#ifndef KV_EFFECTS_CONTRAST_H
#define KV_EFFECTS_CONTRAST_H

#include <emmintrin.h>

#include "effects/Effect_Base.h"

// Moves each colour value away from the middle (amount above 0) or toward
// it and past it (below 0), by its distance from 127 times 2 * amount / 255.
class Contrast : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Contrast_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount);

    int32_t amount = 2;
};

// The contrast of one value v >= 0 with k = 2 * amount, not clamped. The
// middle is 127: 127 stays, 128 is already above it.
inline int32_t ContrastValue(int32_t v, int32_t k) {
    int32_t distance = v > 127 ? v - 127 : 127 - v;
    int32_t q = distance * k / 255;
    return v > 127 ? v + q : v - q;
}

inline void ContrastValues(int32_t k, int32_t& b, int32_t& g, int32_t& r) {
    b = ContrastValue(b, k);
    g = ContrastValue(g, k);
    r = ContrastValue(r, k);
}

// ContrastValue on eight 16-bit lanes: Bytes for values up to 255, Values
// for values up to 1023.
class ContrastWide {
public:
    explicit ContrastWide(int32_t k)
        : size_(_mm_set1_epi16(static_cast<int16_t>(k < 0 ? -k : k))),
          downBelowMiddle_(_mm_set1_epi16(static_cast<int16_t>(k > 0 ? -1 : 0))) {}

    // distance * |k| is at most 128 * 400 and fits 16 bits.
    __m128i Bytes(__m128i v) const { return Move(v, DivideBy255(_mm_mullo_epi16(Distance(v), size_))); }

    // distance * |k| = x needs up to 19 bits: x = high * 65536 + low, and as
    // 65536 = 257 * 255 + 1, x / 255 = 257 * high + low / 255, plus 1 when
    // low % 255 + high reaches 255.
    __m128i Values(__m128i v) const {
        const __m128i distance = Distance(v);
        const __m128i high = _mm_mulhi_epu16(distance, size_);
        const __m128i low = _mm_mullo_epi16(distance, size_);
        const __m128i lowQuotient = DivideBy255(low);
        const __m128i lowRemainder = _mm_sub_epi16(low, _mm_mullo_epi16(lowQuotient, _mm_set1_epi16(255)));
        const __m128i carry = _mm_cmpgt_epi16(_mm_add_epi16(lowRemainder, high), _mm_set1_epi16(254));
        const __m128i q = _mm_add_epi16(_mm_mullo_epi16(high, _mm_set1_epi16(257)), lowQuotient);
        return Move(v, _mm_sub_epi16(q, carry));
    }

private:
    static __m128i Distance(__m128i v) {
        const __m128i middle = _mm_set1_epi16(127);
        return _mm_max_epi16(_mm_sub_epi16(v, middle), _mm_sub_epi16(middle, v));
    }

    // v + q or v - q: where the value moves down, (q ^ m) - m with m all ones.
    __m128i Move(__m128i v, __m128i q) const {
        const __m128i down = _mm_xor_si128(_mm_cmpgt_epi16(v, _mm_set1_epi16(127)), downBelowMiddle_);
        return _mm_add_epi16(v, _mm_sub_epi16(_mm_xor_si128(q, down), down));
    }

    // x / 255 for unsigned 16-bit x, exactly: (x * 0x8081) >> 23.
    static __m128i DivideBy255(__m128i x) {
        return _mm_srli_epi16(_mm_mulhi_epu16(x, _mm_set1_epi16(static_cast<int16_t>(0x8081))), 7);
    }

    __m128i size_;             // |k|
    __m128i downBelowMiddle_;  // all ones when k > 0: values at or below 127 move down
};

#endif
