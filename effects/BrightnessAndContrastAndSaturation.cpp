#include "effects/BrightnessAndContrastAndSaturation.h"

#include "effects/Brightness.h"
#include "effects/Contrast.h"
#include "effects/Saturation.h"
#include "effects/ToneLoop.h"

Effect_Base* BrightnessAndContrastAndSaturation::CreateInstance() { return new BrightnessAndContrastAndSaturation; }

int32_t BrightnessAndContrastAndSaturation::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    BrightnessAndContrastAndSaturation_Proc(frame, width, height);
    return 0;
}

int32_t BrightnessAndContrastAndSaturation::SetArgs(EffectArgs* args) {
    brightness = ClampWord(args->word[0], -200, 200);
    contrast = ClampWord(args->word[1], -200, 200);
    saturation = ClampWord(args->word[2], -200, 200);
    return 0;
}

int32_t BrightnessAndContrastAndSaturation::GetArgs(EffectArgs* args) {
    args->word[0] = brightness;
    args->word[1] = contrast;
    args->word[2] = saturation;
    return 0;
}

// The saturation stage raises negative values to 0 but leaves values above
// 255 as they are, and the contrast stage measures its distance from them;
// only the end result is clamped.
void BrightnessAndContrastAndSaturation::BrightnessAndContrastAndSaturation_Proc(unsigned char* frame, int32_t width,
                                                                                 int32_t height) {
    const int32_t amount = brightness;
    if (brightness < 0) brightness = -brightness;
    Brightness::Brightness_Proc(frame, width, height, amount);
    if (contrast == 0 && saturation == 0) return;

    const int32_t k = 2 * contrast;
    const ContrastWide contrastWide(k);
    if (saturation == 0) {
        ToneLoop(frame, width, height, [contrastWide](__m128i v) { return contrastWide.Bytes(v); },
                 [k](int32_t& b, int32_t& g, int32_t& r) { ContrastValues(k, b, g, r); });
        return;
    }

    BuildSaturationTables(saturation, &factor, scale, spread);
    const SaturationWide saturateWide(factor);
    auto saturateNarrow = [this](int32_t& b, int32_t& g, int32_t& r) {
        SaturateValues(scale, spread, b, g, r);
        b = b < 0 ? 0 : b;
        g = g < 0 ? 0 : g;
        r = r < 0 ? 0 : r;
    };
    if (k == 0) {
        ToneLoop(frame, width, height, saturateWide, saturateNarrow);
        return;
    }
    ToneLoop(
        frame, width, height,
        [saturateWide, contrastWide](__m128i v) {
            return contrastWide.Values(_mm_max_epi16(saturateWide(v), _mm_setzero_si128()));
        },
        [&saturateNarrow, k](int32_t& b, int32_t& g, int32_t& r) {
            saturateNarrow(b, g, r);
            ContrastValues(k, b, g, r);
        });
}
