#ifndef KV_EFFECTS_EMBOSS_H
#define KV_EFFECTS_EMBOSS_H

#include "effects/Effect_Base.h"

// Each pixel minus its lower-right neighbour, plus a bias.
class Emboss : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Emboss_proc(unsigned char* frame, int32_t width, int32_t height, int32_t bias);

private:
    int32_t bias = 10;
};

#endif
