#ifndef KV_EFFECTS_GRAY_H
#define KV_EFFECTS_GRAY_H

#include "effects/Effect_Base.h"

// The mean of blue, green and red, truncated, in all three colour bytes.
class Gray : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Gray_proc(unsigned char* frame, int32_t width, int32_t height);
};

#endif
