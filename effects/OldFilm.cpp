#include "effects/OldFilm.h"

#include "effects/PixelWords.h"

Effect_Base* OldFilm::CreateInstance() { return new OldFilm; }

int32_t OldFilm::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kOldFilmTexts)) return -1;
    OldFilm_proc(frame, width, height);
    return 0;
}

int32_t OldFilm::SetArgs(EffectArgs*) { return 0; }

int32_t OldFilm::GetArgs(EffectArgs*) { return 0; }

namespace {

// From the mean m: blue m - 20, green m + 15, red m + 35, each held within a
// byte. Each colour byte takes only one of the saturating steps.
struct Sepia {
    __m128i operator()(__m128i pixels) const {
        __m128i mean = InColourBytes(ColourMean(pixels));
        mean = _mm_adds_epu8(mean, _mm_set1_epi32(0x00230F00));
        mean = _mm_subs_epu8(mean, _mm_set1_epi32(0x00000014));
        return _mm_or_si128(mean, AlphaOf(pixels));
    }
    uint32_t operator()(uint32_t pixel) const {
        uint32_t m = ColourMean(pixel);
        uint32_t blue = m > 20 ? m - 20 : 0;
        uint32_t green = m + 15 < 255 ? m + 15 : 255;
        uint32_t red = m + 35 < 255 ? m + 35 : 255;
        return (pixel & kAlphaByte) | red << 16 | green << 8 | blue;
    }
};

}  // namespace

void OldFilm::OldFilm_proc(unsigned char* frame, int32_t width, int32_t height) {
    ForEachPixelWord(frame, static_cast<size_t>(width) * static_cast<size_t>(height), Sepia());
}
