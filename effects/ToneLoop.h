// The pixel loop of the tone effects: four pixels at a time in 16-bit lanes,
// the last few one by one. The fourth byte of every pixel is kept.
#ifndef KV_EFFECTS_TONELOOP_H
#define KV_EFFECTS_TONELOOP_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

inline uint8_t ClampToByte(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// wide(__m128i) takes two pixels as eight 16-bit lanes, b g r x b g r x, and
// gives their new values in the b, g, r lanes, which packing clamps to
// 0..255. narrow(b, g, r) changes one pixel's values, clamped afterwards.
template <class Wide, class Narrow>
void ToneLoop(unsigned char* frame, int32_t width, int32_t height, const Wide& wide, const Narrow& narrow) {
    const size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    const __m128i zero = _mm_setzero_si128();
    const __m128i colour = _mm_set1_epi32(0x00FFFFFF);
    size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(frame + 4 * i);
        const __m128i old = _mm_loadu_si128(at);
        const __m128i fresh =
            _mm_packus_epi16(wide(_mm_unpacklo_epi8(old, zero)), wide(_mm_unpackhi_epi8(old, zero)));
        _mm_storeu_si128(at, _mm_or_si128(_mm_and_si128(colour, fresh), _mm_andnot_si128(colour, old)));
    }
    for (; i < pixels; ++i) {
        unsigned char* p = frame + 4 * i;
        int32_t b = p[0], g = p[1], r = p[2];
        narrow(b, g, r);
        p[0] = ClampToByte(b);
        p[1] = ClampToByte(g);
        p[2] = ClampToByte(r);
    }
}

#endif
