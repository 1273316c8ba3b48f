#include "effects/Gamma.h"

#include "kelvarine_prims.h"

Effect_Base* Gamma::CreateInstance() { return new Gamma; }

int32_t Gamma::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Gamma_proc(frame, width, height, amount);
    return 0;
}

int32_t Gamma::SetArgs(EffectArgs* args) {
    amount = ClampWord(args->word[0], -10, 10);
    return 0;
}

int32_t Gamma::GetArgs(EffectArgs* args) {
    args->word[0] = amount;
    return 0;
}

// Each pass works on the result of the one before.
void Gamma::Gamma_proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount) {
    PrimSize size = {width, height};
    for (int32_t i = 0; i < amount; ++i) primiGammaFwd_8u_AC4IR(frame, width * 4, size);
    for (int32_t i = 0; i < -amount; ++i) primiGammaInv_8u_AC4IR(frame, width * 4, size);
}
