#ifndef KV_EFFECTS_ERODE_H
#define KV_EFFECTS_ERODE_H

#include "effects/Effect_Base.h"

// Each byte becomes the smallest of its channel under a full size x size
// square, the fourth byte too. A fresh buffer and structuring state on
// every call: the recorded size is compared but never written.
class Erode : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~Erode() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Erode_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size);

private:
    int32_t size = 4;
    unsigned char* buffer = nullptr;  // the eroded frame
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
    int32_t oldSize = 0;
};

#endif
