#include "effects/Gray.h"

#include "effects/PixelWords.h"

Effect_Base* Gray::CreateInstance() { return new Gray; }

int32_t Gray::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kGrayTexts)) return -1;
    Gray_proc(frame, width, height);
    return 0;
}

int32_t Gray::SetArgs(EffectArgs*) { return 0; }

int32_t Gray::GetArgs(EffectArgs*) { return 0; }

namespace {

struct MeanInColourBytes {
    __m128i operator()(__m128i pixels) const { return _mm_or_si128(InColourBytes(ColourMean(pixels)), AlphaOf(pixels)); }
    uint32_t operator()(uint32_t pixel) const { return (pixel & kAlphaByte) | ColourMean(pixel) * 0x010101u; }
};

}  // namespace

// The mean goes into the three colour bytes and the fourth byte rides along.
void Gray::Gray_proc(unsigned char* frame, int32_t width, int32_t height) {
    ForEachPixelWord(frame, static_cast<size_t>(width) * static_cast<size_t>(height), MeanInColourBytes());
}
