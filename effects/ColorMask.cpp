#include "effects/ColorMask.h"

#include "effects/PixelWords.h"

namespace {

constexpr int32_t kFirstMaskId = 1060;

// By id from 1060: red, green, blue, yellow, pink, purple, old picture. Every
// mask keeps the fourth byte. "Old Picture" is the same mask as "Pink".
constexpr uint32_t kMasks[] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFFFFFF00u,
                               0xFFFF00FFu, 0xFF00FFFFu, 0xFFFF00FFu};
constexpr int32_t kMaskCount = sizeof(kMasks) / sizeof(kMasks[0]);

struct KeepMasked {
    uint32_t mask;
    __m128i operator()(__m128i pixels) const {
        return _mm_and_si128(pixels, _mm_set1_epi32(static_cast<int32_t>(mask)));
    }
    uint32_t operator()(uint32_t pixel) const { return pixel & mask; }
};

}  // namespace

// Plain new, no value-initialisation: the mask stays as the memory held it.
Effect_Base* CColorMask::CreateInstance() { return new CColorMask; }

int32_t CColorMask::Proc(unsigned char* frame, int32_t width, int32_t height) {
    int32_t pixels = PixelCount(width, height);
    if (pixels > 0) ForEachPixelWord(frame, static_cast<size_t>(pixels), KeepMasked{mask});
    return 0;
}

int32_t CColorMask::SetArgs(EffectArgs* args) {
    int32_t id = args->word[0];
    if (id >= kFirstMaskId && id < kFirstMaskId + kMaskCount) mask = kMasks[id - kFirstMaskId];
    return 0;
}

int32_t CColorMask::GetArgs(EffectArgs*) { return 0; }
