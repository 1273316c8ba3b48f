#ifndef KV_EFFECTS_BOX_H
#define KV_EFFECTS_BOX_H

#include "effects/Effect_Base.h"

// The mean of a square window around each pixel.
class Box : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~Box() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Box_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size);

private:
    int32_t size = 10;  // the mask's edge
    int32_t bufWidth = 0;
    int32_t bufHeight = 0;
    unsigned char* buffer = nullptr;  // the padded copy, bufWidth by bufHeight
};

#endif
