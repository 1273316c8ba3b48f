#ifndef KV_EFFECTS_MIRROR_H
#define KV_EFFECTS_MIRROR_H

#include "effects/Effect_Base.h"

// Flips the frame in place: top to bottom (0), left to right (1) or both (2).
// The fourth byte of each pixel stays where it is.
class Mirror : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

private:
    int32_t flip = 0;
};

#endif
