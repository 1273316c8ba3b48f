#ifndef KV_EFFECTS_BRIGHTNESSANDCONTRASTANDSATURATION_H
#define KV_EFFECTS_BRIGHTNESSANDCONTRASTANDSATURATION_H

#include "effects/Effect_Base.h"

// Brightness, then saturation, then contrast, in one effect. A negative
// brightness is stored back positive by the Proc that applies it, so the
// following frames are brightened by that amount until SetArgs sets it anew.
class BrightnessAndContrastAndSaturation : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void BrightnessAndContrastAndSaturation_Proc(unsigned char* frame, int32_t width, int32_t height);

    int32_t brightness = 0;
    int32_t contrast = 0;
    int32_t saturation = 0;
    // Rebuilt by each Proc with a saturation other than 0.
    int32_t factor;
    int32_t spread[768];
    int32_t scale[256];
};

#endif
