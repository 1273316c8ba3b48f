#ifndef KV_EFFECTS_BRIGHTNESS_H
#define KV_EFFECTS_BRIGHTNESS_H

#include "effects/Effect_Base.h"

// Adds amount to (or, when negative, subtracts its size from) the three
// colour bytes, saturating at 0 and 255.
class Brightness : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    // Refuses an amount outside -255..255 with -1 and keeps the old one.
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    static void Brightness_Proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount);

    int32_t amount = -50;
};

#endif
