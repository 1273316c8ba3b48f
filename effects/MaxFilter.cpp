#include "effects/MaxFilter.h"

#include "effects/C4Frame.h"

Effect_Base* CMaxFilter::CreateInstance() { return new CMaxFilter; }

CMaxFilter::~CMaxFilter() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
    if (work != nullptr) primsFree(work);
    work = nullptr;
}

// The cache holds when this instance has its buffers and the statics name
// the present size; it does not ask whether the buffers were made for it.
int32_t CMaxFilter::Proc(unsigned char* frame, int32_t width, int32_t height) {
    static int32_t oldWidth, oldHeight, Step, BufferSize;
    static PrimSize roiSize, maskSize;
    static PrimPoint anchor;
    if (buffer == nullptr || work == nullptr || oldWidth != width || oldHeight != height) {
        primsFree(buffer);
        primsFree(work);
        Step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
        roiSize = {width, height};
        maskSize = {size, size};
        anchor = {size >> 1, size >> 1};
        buffer = static_cast<unsigned char*>(primMalloc(FrameBytes(width, height)));
        primiFilterMaxGetBufferSize_8u_C4R(width, maskSize, &BufferSize);
        work = static_cast<unsigned char*>(primMalloc(BufferSize));
        oldWidth = width;
        oldHeight = height;
    }
    primiFilterMaxBorderReplicate_8u_C4R(frame, Step, buffer, Step, roiSize, maskSize, anchor, work);
    CopyBack(frame, buffer, width, height);
    return 0;
}

int32_t CMaxFilter::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 2, 10);
    return 0;
}

int32_t CMaxFilter::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}
