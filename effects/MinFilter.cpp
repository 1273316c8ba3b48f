#include "effects/MinFilter.h"

#include "effects/C4Frame.h"

Effect_Base* MinFilter::CreateInstance() { return new MinFilter; }

MinFilter::~MinFilter() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
    if (work != nullptr) primsFree(work);
    work = nullptr;
}

int32_t MinFilter::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kMinFilterTexts)) return -1;
    MinFilter_proc(frame, width, height, size);
    return 0;
}

int32_t MinFilter::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 2, 10);
    return 0;
}

int32_t MinFilter::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}

// The work buffer's size is asked on every call; both buffers are made
// anew only when the frame's size or the mask has changed.
void MinFilter::MinFilter_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size) {
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    const PrimSize mask = {size, size};
    int32_t workBytes = 0;
    primiFilterMinGetBufferSize_8u_C4R(width, mask, &workBytes);
    if (buffer == nullptr || oldWidth != width || oldHeight != height || oldSize != size) {
        primsFree(buffer);
        primsFree(work);
        buffer = static_cast<unsigned char*>(primMalloc(FrameBytes(width, height)));
        work = static_cast<unsigned char*>(primMalloc(workBytes));
        oldWidth = width;
        oldHeight = height;
        oldSize = size;
    }
    primiFilterMinBorderReplicate_8u_C4R(frame, step, buffer, step, {width, height}, mask, {size >> 1, size >> 1},
                                         work);
    CopyBack(frame, buffer, width, height);
}
