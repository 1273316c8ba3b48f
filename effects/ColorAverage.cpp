#include "effects/ColorAverage.h"

#include "effects/ColorTwist.h"

Effect_Base* ColorAverage::CreateInstance() { return new ColorAverage; }

int32_t ColorAverage::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kColorEmphaseTexts)) return -1;
    return ColorAverage_proc(frame, width, height, -times);
}

int32_t ColorAverage::SetArgs(EffectArgs* args) {
    times = ClampWord(args->word[0], 1, 16);
    return 0;
}

int32_t ColorAverage::GetArgs(EffectArgs* args) {
    args->word[0] = times;
    return 0;
}

int32_t ColorAverage::ColorAverage_proc(unsigned char* frame, int32_t width, int32_t height, int32_t n) {
    return TwistRepeatedly(frame, width, height, n);
}
