#include "effects/Lowpass.h"

#include "effects/PaddedCopy.h"

Effect_Base* CLowpass::CreateInstance() { return new CLowpass; }

int32_t CLowpass::SetArgs(EffectArgs*) { return 0; }

int32_t CLowpass::GetArgs(EffectArgs*) { return 0; }

// Unguarded: a null frame or an empty size goes on to the primitives, which
// refuse it. The sizes live in statics of the class, rewritten on every call
// but one: a call of width 0 and height 0 on an instance that has a buffer
// reuses them, with the buffer the previous call released. No real frame
// takes that branch.
int32_t CLowpass::Proc(unsigned char* frame, int32_t width, int32_t height) {
    static int32_t Step;
    static PrimSize roiSize;
    static int32_t dstStep;
    static PrimSize dstRoiSize;
    static int32_t Step1;

    if (!(width == 0 && height == 0 && buffer != nullptr)) {
        Step = width * 4;
        roiSize = {width, height};
        dstStep = Step1 = width * 4 + 8;
        dstRoiSize = {width + 2, height + 2};
        buffer = static_cast<unsigned char*>(primMalloc(dstStep * (height + 2)));
        CopyIntoPadded(frame, width, height, buffer, dstStep, dstRoiSize, 1);
    }
    const unsigned char* inner = buffer == nullptr ? nullptr : buffer + Step1 + 4;
    primiFilterLowpass_8u_AC4R(inner, Step1, frame, Step, roiSize, MaskSize3x3);
    primsFree(buffer);
    return 0;
}
