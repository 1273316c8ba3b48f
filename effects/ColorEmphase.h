#ifndef KV_EFFECTS_COLOR_EMPHASE_H
#define KV_EFFECTS_COLOR_EMPHASE_H

#include "effects/Effect_Base.h"

// The Emphase colour matrix, applied as often as the parameter says:
// colours pushed apart.
class ColorEmphase : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    // Emphase n times for n above 0, Average -n times below; -1 for n of 0.
    int32_t ColorEmphase_proc(unsigned char* frame, int32_t width, int32_t height, int32_t n);

private:
    int32_t times = 3;
};

#endif
