#ifndef KV_EFFECTS_WIENER_H
#define KV_EFFECTS_WIENER_H

#include "effects/Effect_Base.h"

// Adaptive noise reduction over a square window. The padded copy of the
// frame, the mask and the noise levels are taken when the buffers are made,
// and the sizes they were made for are shared by every instance of the class.
class CWiener : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~CWiener() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Wiener_Proc(unsigned char* frame, int32_t width, int32_t height);

private:
    int32_t size = 3;  // mask edge
    int32_t noise0 = 0;
    int32_t noise1 = 0;
    int32_t noise2 = 0;
    unsigned char* buffer = nullptr;  // the frame with a replicated border
    unsigned char* work = nullptr;    // the filter's work rows
};

#endif
