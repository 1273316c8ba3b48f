#include "effects/Gray.h"

#include <cstring>

Effect_Base* Gray::CreateInstance() { return new Gray; }

int32_t Gray::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kGrayTexts)) return -1;
    Gray_proc(frame, width, height);
    return 0;
}

int32_t Gray::SetArgs(EffectArgs*) { return 0; }

int32_t Gray::GetArgs(EffectArgs*) { return 0; }

// One 32-bit load and store a pixel; the sum of three bytes never exceeds 765,
// so the mean is the plain truncated third and the fourth byte rides along.
void Gray::Gray_proc(unsigned char* frame, int32_t width, int32_t height) {
    size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    for (size_t i = 0; i < pixels; ++i) {
        uint32_t pixel;
        memcpy(&pixel, frame + 4 * i, 4);
        uint32_t sum = (pixel & 0xFF) + ((pixel >> 8) & 0xFF) + ((pixel >> 16) & 0xFF);
        uint32_t mean = sum / 3;
        pixel = (pixel & 0xFF000000u) | (mean * 0x010101u);
        memcpy(frame + 4 * i, &pixel, 4);
    }
}
