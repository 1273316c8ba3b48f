#ifndef KV_EFFECTS_LOWPASS_H
#define KV_EFFECTS_LOWPASS_H

#include "effects/Effect_Base.h"

// "De-noise": the 3 by 3 lowpass filter.
class CLowpass : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

private:
    // Unset at construction. Allocated and released within each Proc; the
    // released address stays behind.
    unsigned char* buffer;
};

#endif
