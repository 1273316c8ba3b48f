#ifndef KV_EFFECTS_RAND_H
#define KV_EFFECTS_RAND_H

#include "effects/Effect_Base.h"

// Gaussian noise of a given mean and deviation on the three colour bytes.
// All instances draw from one running seed, taken from the clock once.
class CRand : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

private:
    bool direct = false;  // stored and reported only
    int32_t mean = 0;
    int32_t deviation = 0;
};

#endif
