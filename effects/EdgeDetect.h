#ifndef KV_EFFECTS_EDGE_DETECT_H
#define KV_EFFECTS_EDGE_DETECT_H

#include "effects/Effect_Base.h"

// One of seven fixed-kernel filters: Prewitt, Sobel, Roberts, Laplace,
// Hipass, Gauss, Lowpass, each in two variants.
class EdgeDetect : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~EdgeDetect() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void EdgeDectect_FixedFilter_proc(unsigned char* frame, int32_t width, int32_t height, int32_t filter,
                                      int32_t variant);

private:
    int32_t filter = 0;
    int32_t variant = 0;  // follows filter: 0 for filter 0, 1 for the others
    // Compared with the frame, never written: the buffer is made anew on
    // every call.
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
    unsigned char* buffer = nullptr;
};

#endif
