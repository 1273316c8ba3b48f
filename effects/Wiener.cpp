#include "effects/Wiener.h"

#include "kelvarine_prims.h"

Effect_Base* CWiener::CreateInstance() { return new CWiener; }

CWiener::~CWiener() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
    if (work != nullptr) primsFree(work);
    work = nullptr;
}

// Unguarded: a null frame or an empty size goes on to the primitives, which
// refuse it.
int32_t CWiener::Proc(unsigned char* frame, int32_t width, int32_t height) {
    Wiener_Proc(frame, width, height);
    return 0;
}

// Noise words are whole numbers that reach the filter unscaled, so any of
// 1..9 makes it refuse and leaves the frame as it was.
int32_t CWiener::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 3, 10);
    noise0 = ClampWord(args->word[1], 0, 9);
    noise1 = ClampWord(args->word[2], 0, 9);
    noise2 = ClampWord(args->word[3], 0, 9);
    return 0;
}

int32_t CWiener::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    args->word[1] = noise0;
    args->word[2] = noise1;
    args->word[3] = noise2;
    return 0;
}

// The sizes, mask, anchor and noise live in statics shared by the class and
// change only when the buffers are made anew. A call that finds buffers and
// the recorded size filters the padded copy made then: every later frame of
// that size comes out as the first frame's filtered image. The noise array
// is also where the filter reports the levels it estimated, and those are
// the levels of the later calls.
void CWiener::Wiener_Proc(unsigned char* frame, int32_t width, int32_t height) {
    static int32_t oldWidth, oldHeight, Step;
    static PrimSize roiSize, maskSize;
    static PrimPoint anchor;
    static float noise[4];
    static int32_t BufferSize, Border, dstStep;
    static PrimSize dstRoiSize;
    static int32_t Step1;

    if (buffer == nullptr || work == nullptr || oldWidth != width || oldHeight != height) {
        if (buffer != nullptr) primsFree(buffer);
        if (work != nullptr) primsFree(work);

        const int32_t half = size >> 1;
        Step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
        roiSize = {width, height};
        maskSize = {size, size};
        anchor = {half, half};
        noise[0] = static_cast<float>(noise0);
        noise[1] = static_cast<float>(noise1);
        noise[2] = static_cast<float>(noise2);
        noise[3] = 0.5f;
        primiFilterWienerGetBufferSize(roiSize, maskSize, 4, &BufferSize);
        work = primsMalloc_8u(BufferSize);

        Border = half;
        const uint32_t even = static_cast<uint32_t>(size & ~1);
        buffer = static_cast<unsigned char*>(primMalloc(
            static_cast<int32_t>((even + static_cast<uint32_t>(width)) * (even + static_cast<uint32_t>(height)) * 4u)));
        dstStep = Step1 = static_cast<int32_t>((static_cast<uint32_t>(width) + 2u * Border) * 4u);
        dstRoiSize = {width + 2 * Border, height + 2 * Border};
        primiCopyReplicateBorder_8u_AC4R(frame, Step, roiSize, buffer, dstStep, dstRoiSize, Border, Border);
        oldWidth = width;
        oldHeight = height;
    }

    // Without a buffer (a size the allocator refused) the filter is handed
    // null and refuses in turn.
    const unsigned char* inner =
        buffer == nullptr ? nullptr
                          : buffer + static_cast<ptrdiff_t>(Border) * Step1 + 4 * static_cast<ptrdiff_t>(Border);
    primiFilterWiener_8u_AC4R(inner, Step1, frame, Step, roiSize, maskSize, anchor, noise, work);
}
