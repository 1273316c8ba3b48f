// What every effect class shares: the frame guard, its texts, FullBack.
#ifndef KV_EFFECTS_EFFECT_BASE_H
#define KV_EFFECTS_EFFECT_BASE_H

#include "kelvarine.h"

// The two messages a guarded Proc writes for a null frame and a bad size.
// Many classes share the texts of "Box"; that is how they report.
struct ProcTexts {
    const char* nullFrame;
    const char* badSize;  // takes width and height
};

extern const ProcTexts kBoxTexts;
extern const ProcTexts kCannyTexts;
extern const ProcTexts kMinFilterTexts;
extern const ProcTexts kFilmMonoTexts;
extern const ProcTexts kOldFilmTexts;
extern const ProcTexts kColorEmphaseTexts;
extern const ProcTexts kBrightnessTexts;
extern const ProcTexts kRotateTexts;
extern const ProcTexts kMirrorTexts;
extern const ProcTexts kGrayTexts;

// The guard of a guarded Proc: false, after one level 3 log message, when the
// frame is null or its width or height is not above 0.
bool FrameAccepted(const unsigned char* frame, int32_t width, int32_t height, const ProcTexts& texts);

// Fills width * height pixels with opaque black: bytes 00 00 00 FF.
void FullBack(unsigned char* buffer, int32_t width, int32_t height);

// Clamps a parameter word into lo..hi.
inline int32_t ClampWord(int32_t value, int32_t lo, int32_t hi) {
    return value < lo ? lo : (value > hi ? hi : value);
}

#endif
