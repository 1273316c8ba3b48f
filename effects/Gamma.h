#ifndef KV_EFFECTS_GAMMA_H
#define KV_EFFECTS_GAMMA_H

#include "effects/Effect_Base.h"

// The gamma curve applied amount times, or its inverse for a negative amount.
class Gamma : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Gamma_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount);

private:
    int32_t amount = 2;
};

#endif
