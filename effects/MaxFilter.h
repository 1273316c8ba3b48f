#ifndef KV_EFFECTS_MAX_FILTER_H
#define KV_EFFECTS_MAX_FILTER_H

#include "effects/Effect_Base.h"

// Each byte becomes the largest of its channel in the size x size square
// around the pixel, the fourth byte too. Unguarded. The frame size, the
// mask and the work buffer's size live in statics of Proc, shared by all
// instances, and the mask is taken only when the frame size changes: a new
// size from SetArgs waits for a frame of another size.
class CMaxFilter : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~CMaxFilter() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

private:
    int32_t size = 2;
    unsigned char* buffer = nullptr;  // the filtered frame
    unsigned char* work = nullptr;    // the primitive's work buffer
};

#endif
