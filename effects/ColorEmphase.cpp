#include "effects/ColorEmphase.h"

#include "effects/ColorTwist.h"

Effect_Base* ColorEmphase::CreateInstance() { return new ColorEmphase; }

int32_t ColorEmphase::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kColorEmphaseTexts)) return -1;
    return ColorEmphase_proc(frame, width, height, times);
}

int32_t ColorEmphase::SetArgs(EffectArgs* args) {
    times = ClampWord(args->word[0], 1, 16);
    return 0;
}

int32_t ColorEmphase::GetArgs(EffectArgs* args) {
    args->word[0] = times;
    return 0;
}

int32_t ColorEmphase::ColorEmphase_proc(unsigned char* frame, int32_t width, int32_t height, int32_t n) {
    return TwistRepeatedly(frame, width, height, n);
}
