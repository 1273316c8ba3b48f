#ifndef KV_EFFECTS_REDUCEBITS_H
#define KV_EFFECTS_REDUCEBITS_H

#include "effects/Effect_Base.h"

// Quantises the colour channels to a few levels, with a choice of dither:
// word 0 the method (0 none, 1 Floyd-Steinberg, 2 Jarvis-Judice-Ninke,
// 3 Stucki, 4 Bayer), word 1 the noise in per cent, word 2 the levels.
// It has no row in the catalog; CreateInstance is the way to an instance.
// The frame's fourth bytes do not survive: they come back unset.
class CReduceBits : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    // -1 for a method outside 0..4 (the other words are then kept raw).
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

private:
    int32_t dither = 1;
    int32_t noise = 0;
    int32_t levels = 2;
};

#endif
