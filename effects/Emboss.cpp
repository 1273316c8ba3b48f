#include "effects/Emboss.h"

#include "effects/PixelWords.h"

Effect_Base* Emboss::CreateInstance() { return new Emboss; }

int32_t Emboss::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Emboss_proc(frame, width, height, bias);
    return 0;
}

int32_t Emboss::SetArgs(EffectArgs* args) {
    bias = ClampWord(args->word[0], -200, 200);
    return 0;
}

int32_t Emboss::GetArgs(EffectArgs* args) {
    args->word[0] = bias;
    return 0;
}

namespace {

// Four pixels of a row against the four below and to the right, in 16-bit
// lanes; the bias vector is 0 in the fourth byte's lanes, whose result is
// replaced by the pixel's own fourth byte.
inline __m128i EmbossFour(__m128i pixels, __m128i lowerRight, __m128i bias) {
    const __m128i zero = _mm_setzero_si128();
    __m128i low = _mm_add_epi16(
        _mm_sub_epi16(_mm_unpacklo_epi8(pixels, zero), _mm_unpacklo_epi8(lowerRight, zero)), bias);
    __m128i high = _mm_add_epi16(
        _mm_sub_epi16(_mm_unpackhi_epi8(pixels, zero), _mm_unpackhi_epi8(lowerRight, zero)), bias);
    __m128i colours = _mm_and_si128(_mm_packus_epi16(low, high), _mm_set1_epi32(static_cast<int32_t>(~kAlphaByte)));
    return _mm_or_si128(colours, AlphaOf(pixels));
}

inline uint8_t Clamp(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

}  // namespace

// Rows top to bottom, pixels left to right, in place: a pixel's lower-right
// neighbour is read before its own row reaches it, so the result is that of
// the unchanged frame. The last row and column keep their colours; a bias of
// 0 leaves the whole frame as it is.
void Emboss::Emboss_proc(unsigned char* frame, int32_t width, int32_t height, int32_t bias) {
    if (bias == 0) return;
    const size_t step = static_cast<size_t>(width) * 4;
    const __m128i biasLanes = _mm_setr_epi16(bias, bias, bias, 0, bias, bias, bias, 0);
    for (int32_t y = 0; y + 1 < height; ++y) {
        unsigned char* row = frame + y * step;
        const unsigned char* below = row + step + 4;
        int32_t x = 0;
        for (; x + 4 <= width - 1; x += 4) {
            __m128i* at = reinterpret_cast<__m128i*>(row + 4 * x);
            __m128i lowerRight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(below + 4 * x));
            _mm_storeu_si128(at, EmbossFour(_mm_loadu_si128(at), lowerRight, biasLanes));
        }
        for (; x < width - 1; ++x)
            for (int c = 0; c < 3; ++c) row[4 * x + c] = Clamp(row[4 * x + c] - below[4 * x + c] + bias);
    }
}
