#include "effects/FilmColor.h"

#include "effects/PixelWords.h"

Effect_Base* CFilmColor::CreateInstance() { return new CFilmColor; }

namespace {

struct Complement {
    __m128i operator()(__m128i pixels) const {
        return _mm_xor_si128(pixels, _mm_set1_epi32(static_cast<int32_t>(~kAlphaByte)));
    }
    uint32_t operator()(uint32_t pixel) const { return pixel ^ ~kAlphaByte; }
};

}  // namespace

int32_t CFilmColor::Proc(unsigned char* frame, int32_t width, int32_t height) {
    int32_t pixels = PixelCount(width, height);
    if (pixels > 0) ForEachPixelWord(frame, static_cast<size_t>(pixels), Complement());
    return 0;
}

int32_t CFilmColor::SetArgs(EffectArgs*) { return 0; }

int32_t CFilmColor::GetArgs(EffectArgs*) { return 0; }
