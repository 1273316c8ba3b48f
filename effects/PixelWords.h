// Pixel loops that treat a pixel as one little-endian word 0xAARRGGBB: one
// load and one store a pixel, four pixels at a time where the frame allows.
#ifndef KV_EFFECTS_PIXEL_WORDS_H
#define KV_EFFECTS_PIXEL_WORDS_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

constexpr uint32_t kAlphaByte = 0xFF000000u;

// Replaces every pixel word w of the frame by op(w). op takes and returns
// either four pixels as an __m128i or one pixel as a uint32_t.
template <typename PixelOp>
void ForEachPixelWord(unsigned char* frame, size_t pixels, const PixelOp& op) {
    size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(frame + 4 * i);
        _mm_storeu_si128(at, op(_mm_loadu_si128(at)));
    }
    for (; i < pixels; ++i) {
        uint32_t pixel;
        memcpy(&pixel, frame + 4 * i, 4);
        pixel = op(pixel);
        memcpy(frame + 4 * i, &pixel, 4);
    }
}

// (b + g + r) / 3, truncated.
inline uint32_t ColourMean(uint32_t pixel) {
    return ((pixel & 0xFF) + ((pixel >> 8) & 0xFF) + ((pixel >> 16) & 0xFF)) / 3;
}

// The same in each 32-bit lane. The sum never exceeds 765, so
// (sum * 0xAAAB) >> 17 is exactly sum / 3.
inline __m128i ColourMean(__m128i pixels) {
    const __m128i low = _mm_set1_epi32(0xFF);
    __m128i sum = _mm_add_epi32(_mm_and_si128(pixels, low),
                                _mm_add_epi32(_mm_and_si128(_mm_srli_epi32(pixels, 8), low),
                                              _mm_and_si128(_mm_srli_epi32(pixels, 16), low)));
    return _mm_srli_epi32(_mm_mulhi_epu16(sum, _mm_set1_epi32(0xAAAB)), 1);
}

// A byte value in each 32-bit lane, copied into the three colour bytes.
inline __m128i InColourBytes(__m128i value) {
    return _mm_or_si128(value, _mm_or_si128(_mm_slli_epi32(value, 8), _mm_slli_epi32(value, 16)));
}

inline __m128i AlphaOf(__m128i pixels) { return _mm_and_si128(pixels, _mm_set1_epi32(static_cast<int32_t>(kAlphaByte))); }

// The number of pixels of a frame as the 32-bit product of its sides.
inline int32_t PixelCount(int32_t width, int32_t height) {
    return static_cast<int32_t>(static_cast<uint32_t>(width) * static_cast<uint32_t>(height));
}

#endif
