#include "effects/Brightness.h"

#include "kelvarine_prims.h"

Effect_Base* Brightness::CreateInstance() { return new Brightness; }

int32_t Brightness::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBrightnessTexts)) return -1;
    Brightness_Proc(frame, width, height, amount);
    return 0;
}

int32_t Brightness::SetArgs(EffectArgs* args) {
    if (args->word[0] < -255 || args->word[0] > 255) return -1;
    amount = args->word[0];
    return 0;
}

int32_t Brightness::GetArgs(EffectArgs* args) {
    args->word[0] = amount;
    return 0;
}

// The primitive saturates; its status is not looked at.
void Brightness::Brightness_Proc(unsigned char* frame, int32_t width, int32_t height, int32_t amount) {
    if (amount == 0) return;
    const uint8_t byte = static_cast<uint8_t>(amount > 0 ? amount : -amount);
    const uint8_t value[3] = {byte, byte, byte};
    const PrimSize size = {width, height};
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    if (amount > 0) {
        primiAddC_8u_AC4IRSfs(value, frame, step, size, 0);
    } else {
        primiSubC_8u_AC4IRSfs(value, frame, step, size, 0);
    }
}
