#include "effects/Linear.h"

#include "effects/PaddedCopy.h"

Effect_Base* Linear::CreateInstance() { return new Linear; }

Linear::~Linear() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
    oldHeight = 0;
    oldWidth = 0;
}

int32_t Linear::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Linear_proc(frame, width, height, weight);
    return 0;
}

int32_t Linear::SetArgs(EffectArgs* args) {
    weight = ClampWord(args->word[0], 1, 10);
    return 0;
}

int32_t Linear::GetArgs(EffectArgs* args) {
    args->word[0] = weight;
    return 0;
}

// The kernel sums to weight - 8, the divisor, so a flat area keeps its
// value at every weight but 8, where the divisor becomes 1 and only edges
// remain. Below 8 the divisor is negative: the neighbours count positive
// and the centre negative.
void Linear::Linear_proc(unsigned char* frame, int32_t width, int32_t height, int32_t weight) {
    const int32_t step = width * 4;
    const int32_t bufferStep = step + 8;
    if (buffer == nullptr || oldWidth != width || oldHeight != height) {
        if (buffer != nullptr) primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(bufferStep * (height + 2)));
    }
    const unsigned char* inner = CopyIntoPadded(frame, width, height, buffer, bufferStep, {width + 2, height + 2}, 1);
    const int32_t kernel[9] = {-1, -1, -1, -1, weight, -1, -1, -1, -1};
    const int32_t divisor = weight - 8 == 0 ? 1 : weight - 8;
    primiFilter_8u_AC4R(inner, bufferStep, frame, step, {width, height}, kernel, {3, 3}, {1, 1}, divisor);
}
