#ifndef KV_EFFECTS_MEDIAN_H
#define KV_EFFECTS_MEDIAN_H

#include "effects/Effect_Base.h"

// The per-channel median over a square of size by size pixels, the frame's
// edge replicated; the fourth byte stays. Sizes, steps and the mask are kept
// in statics of Median_Proc, shared by every instance.
class CMedian : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~CMedian() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Median_Proc(unsigned char* frame, int32_t width, int32_t height, int32_t size, int32_t kind);

private:
    int32_t size = 3;
    unsigned char* buffer = nullptr;  // the frame with its edge replicated
};

#endif
