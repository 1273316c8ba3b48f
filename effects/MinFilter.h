#ifndef KV_EFFECTS_MIN_FILTER_H
#define KV_EFFECTS_MIN_FILTER_H

#include "effects/Effect_Base.h"

// Each byte becomes the smallest of its channel in the size x size square
// around the pixel, the fourth byte too. The buffers are kept while the
// frame's size and the mask stay.
class MinFilter : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~MinFilter() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void MinFilter_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size);

private:
    int32_t size = 3;
    unsigned char* buffer = nullptr;  // the filtered frame
    unsigned char* work = nullptr;    // the primitive's work buffer
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
    int32_t oldSize = 0;
};

#endif
