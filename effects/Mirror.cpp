#include "effects/Mirror.h"

#include "kelvarine_prims.h"

Effect_Base* Mirror::CreateInstance() { return new Mirror; }

// A frame too narrow or too short for the flip is refused by the primitive
// and comes back as it was.
int32_t Mirror::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kMirrorTexts)) return -1;
    const PrimSize size = {width, height};
    primiMirror_8u_AC4IR(frame, static_cast<int32_t>(static_cast<uint32_t>(width) * 4u), size, flip);
    return 0;
}

int32_t Mirror::SetArgs(EffectArgs* args) {
    flip = ClampWord(args->word[0], 0, 2);
    return 0;
}

int32_t Mirror::GetArgs(EffectArgs* args) {
    args->word[0] = flip;
    return 0;
}
