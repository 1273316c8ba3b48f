#ifndef KV_EFFECTS_LINEAR_H
#define KV_EFFECTS_LINEAR_H

#include "effects/Effect_Base.h"

// A 3 by 3 convolution of -1s around a centre weight, divided by the
// weight less 8: a blur below a weight of 8, a sharpening above.
class Linear : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~Linear() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Linear_proc(unsigned char* frame, int32_t width, int32_t height, int32_t weight);

private:
    int32_t weight = 2;
    unsigned char* buffer = nullptr;
    // Compared with the frame, never written, and left unset at
    // construction: the buffer is made anew on every call unless the
    // unset values happen to match.
    int32_t oldWidth;
    int32_t oldHeight;
};

#endif
