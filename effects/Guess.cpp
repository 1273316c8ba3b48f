#include "effects/Guess.h"

#include "effects/PaddedCopy.h"

namespace {

const int32_t mask_size[2] = {3, 5};
const int32_t mask[2] = {MaskSize3x3, MaskSize5x5};

}  // namespace

Effect_Base* Guess::CreateInstance() { return new Guess; }

Guess::~Guess() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t Guess::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Guess_proc(frame, width, height, kernel);
    return 0;
}

int32_t Guess::SetArgs(EffectArgs* args) {
    kernel = ClampWord(args->word[0], 0, 1);
    return 0;
}

int32_t Guess::GetArgs(EffectArgs* args) {
    args->word[0] = kernel;
    return 0;
}

// The border on each side is the mask's edge less one: twice what the
// filter reads.
void Guess::Guess_proc(unsigned char* frame, int32_t width, int32_t height, int32_t kernel) {
    const int32_t border = mask_size[kernel] & ~1;
    const int32_t paddedWidth = width + 2 * border;
    const int32_t paddedHeight = height + 2 * border;
    if (buffer == nullptr || oldWidth != width || oldHeight != height || oldKernel != kernel) {
        if (buffer != nullptr) primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(paddedWidth * paddedHeight * 4));
    }
    const int32_t bufferStep = paddedWidth * 4;
    const unsigned char* inner =
        CopyIntoPadded(frame, width, height, buffer, bufferStep, {paddedWidth, paddedHeight}, border);
    primiFilterGauss_8u_AC4R(inner, bufferStep, frame, width * 4, {width, height}, mask[kernel]);
}
