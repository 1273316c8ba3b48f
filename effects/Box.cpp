#include "effects/Box.h"

#include "effects/PaddedCopy.h"

Effect_Base* Box::CreateInstance() { return new Box; }

Box::~Box() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t Box::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Box_proc(frame, width, height, size);
    return 0;
}

int32_t Box::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 1, 10);
    return 0;
}

int32_t Box::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}

// The border is half the edge on each side; an even edge pads by the edge
// itself and puts its anchor right of the middle. The padded size is
// recorded, so the buffer lives as long as that size holds: edges 2 and 3
// share one.
void Box::Box_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size) {
    const int32_t half = size >> 1;
    const int32_t paddedWidth = width + (size & ~1);
    const int32_t paddedHeight = height + (size & ~1);
    if (bufWidth != paddedWidth || bufHeight != paddedHeight) {
        bufWidth = paddedWidth;
        bufHeight = paddedHeight;
        if (buffer != nullptr) primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(paddedWidth * paddedHeight * 4));
        FullBack(buffer, paddedWidth, paddedHeight);
    }
    const int32_t bufferStep = paddedWidth * 4;
    const unsigned char* inner =
        CopyIntoPadded(frame, width, height, buffer, bufferStep, {paddedWidth, paddedHeight}, half);
    primiFilterBox_8u_AC4R(inner, bufferStep, frame, width * 4, {width, height}, {size, size}, {half, half});
}
