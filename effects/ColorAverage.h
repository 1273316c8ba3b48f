#ifndef KV_EFFECTS_COLOR_AVERAGE_H
#define KV_EFFECTS_COLOR_AVERAGE_H

#include "effects/Effect_Base.h"

// The Average colour matrix, applied as often as the parameter says:
// colours drawn together.
class ColorAverage : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    // Emphase n times for n above 0, Average -n times below; -1 for n of 0.
    int32_t ColorAverage_proc(unsigned char* frame, int32_t width, int32_t height, int32_t n);

private:
    int32_t times = 3;
};

#endif
