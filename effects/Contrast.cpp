#include "effects/Contrast.h"

#include "effects/ToneLoop.h"

Effect_Base* Contrast::CreateInstance() { return new Contrast; }

int32_t Contrast::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Contrast_proc(frame, width, height, amount);
    return 0;
}

int32_t Contrast::SetArgs(EffectArgs* args) {
    amount = ClampWord(args->word[0], -200, 200);
    return 0;
}

int32_t Contrast::GetArgs(EffectArgs* args) {
    args->word[0] = amount;
    return 0;
}

void Contrast::Contrast_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount) {
    if (amount == 0) return;
    const int32_t k = 2 * amount;
    const ContrastWide wide(k);
    ToneLoop(frame, width, height, [wide](__m128i v) { return wide.Bytes(v); },
             [k](int32_t& b, int32_t& g, int32_t& r) { ContrastValues(k, b, g, r); });
}
