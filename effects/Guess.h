#ifndef KV_EFFECTS_GUESS_H
#define KV_EFFECTS_GUESS_H

#include "effects/Effect_Base.h"

// A Gaussian blur, 3 by 3 or 5 by 5.
class Guess : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~Guess() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Guess_proc(unsigned char* frame, int32_t width, int32_t height, int32_t kernel);

private:
    int32_t kernel = 0;  // 0: 3 by 3, 1: 5 by 5
    unsigned char* buffer = nullptr;
    // Compared with the frame, never written: the buffer is made anew on
    // every call.
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
    int32_t oldKernel = 0;
};

#endif
