#include "effects/Saturation.h"

#include "effects/ToneLoop.h"

Effect_Base* Saturation::CreateInstance() { return new Saturation; }

int32_t Saturation::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Saturation_proc(frame, width, height, amount);
    return 0;
}

int32_t Saturation::SetArgs(EffectArgs* args) {
    amount = ClampWord(args->word[0], -200, 200);
    return 0;
}

int32_t Saturation::GetArgs(EffectArgs* args) {
    args->word[0] = amount;
    return 0;
}

void BuildSaturationTables(int32_t amount, int32_t* factor, int32_t scale[256], int32_t spread[768]) {
    *factor = 2 * amount + 255;
    for (int32_t i = 0; i < 256; ++i) {
        scale[i] = (*factor * i) >> 8;
        spread[3 * i] = spread[3 * i + 1] = spread[3 * i + 2] = i - scale[i];
    }
}

void Saturation::Saturation_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount) {
    if (amount == 0) return;
    lastAmount = amount;
    BuildSaturationTables(amount, &factor, scale, spread);
    ToneLoop(frame, width, height, SaturationWide(factor), [this](int32_t& b, int32_t& g, int32_t& r) {
        SaturateValues(scale, spread, b, g, r);
    });
}
