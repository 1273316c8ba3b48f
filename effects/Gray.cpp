#include "effects/Gray.h"

#include <emmintrin.h>

#include <cstring>

Effect_Base* Gray::CreateInstance() { return new Gray; }

int32_t Gray::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kGrayTexts)) return -1;
    Gray_proc(frame, width, height);
    return 0;
}

int32_t Gray::SetArgs(EffectArgs*) { return 0; }

int32_t Gray::GetArgs(EffectArgs*) { return 0; }

namespace {

// b + g + r of a pixel word; at most 765.
inline uint32_t ColourSum(uint32_t pixel) {
    return (pixel & 0xFF) + ((pixel >> 8) & 0xFF) + ((pixel >> 16) & 0xFF);
}

// The sum never exceeds 765, so (sum * 0xAAAB) >> 17 is exactly sum / 3.
inline __m128i MeanOfFourPixels(__m128i pixels) {
    const __m128i low = _mm_set1_epi32(0xFF);
    __m128i sum = _mm_add_epi32(_mm_and_si128(pixels, low),
                                _mm_add_epi32(_mm_and_si128(_mm_srli_epi32(pixels, 8), low),
                                              _mm_and_si128(_mm_srli_epi32(pixels, 16), low)));
    __m128i mean = _mm_srli_epi32(_mm_mulhi_epu16(sum, _mm_set1_epi32(0xAAAB)), 1);
    __m128i grey = _mm_or_si128(mean, _mm_or_si128(_mm_slli_epi32(mean, 8), _mm_slli_epi32(mean, 16)));
    return _mm_or_si128(grey, _mm_and_si128(pixels, _mm_set1_epi32(static_cast<int>(0xFF000000u))));
}

}  // namespace

// Each pixel is one 32-bit word: the mean goes into its three colour bytes
// and the fourth byte rides along.
void Gray::Gray_proc(unsigned char* frame, int32_t width, int32_t height) {
    size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(frame + 4 * i);
        _mm_storeu_si128(at, MeanOfFourPixels(_mm_loadu_si128(at)));
    }
    for (; i < pixels; ++i) {
        uint32_t pixel;
        memcpy(&pixel, frame + 4 * i, 4);
        pixel = (pixel & 0xFF000000u) | (ColourSum(pixel) / 3 * 0x010101u);
        memcpy(frame + 4 * i, &pixel, 4);
    }
}
