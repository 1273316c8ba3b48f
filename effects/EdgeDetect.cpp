#include "effects/EdgeDetect.h"

#include "effects/PaddedCopy.h"

namespace {

// Every filter reads at most two pixels around the frame; the copy has four.
constexpr int32_t kBorder = 4;

}  // namespace

Effect_Base* EdgeDetect::CreateInstance() { return new EdgeDetect; }

EdgeDetect::~EdgeDetect() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t EdgeDetect::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    EdgeDectect_FixedFilter_proc(frame, width, height, filter, variant);
    return 0;
}

// The variant is not taken from the record: it is 0 for filter 0 and 1 for
// every other, so that only seven of the fourteen filters can be reached.
int32_t EdgeDetect::SetArgs(EffectArgs* args) {
    filter = ClampWord(args->word[0], 0, 6);
    variant = filter != 0 ? 1 : 0;
    return 0;
}

int32_t EdgeDetect::GetArgs(EffectArgs* args) {
    args->word[0] = filter;
    args->word[1] = variant;
    return 0;
}

void EdgeDetect::EdgeDectect_FixedFilter_proc(unsigned char* frame, int32_t width, int32_t height, int32_t filter,
                                              int32_t variant) {
    const int32_t paddedHeight = height + 2 * kBorder;
    const int32_t bufferStep = width * 4 + 8 * kBorder;
    if (buffer == nullptr || oldWidth != width || oldHeight != height) {
        if (buffer != nullptr) primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(bufferStep * paddedHeight));
    }
    const unsigned char* p =
        CopyIntoPadded(frame, width, height, buffer, bufferStep, {width + 2 * kBorder, paddedHeight}, kBorder);
    if (filter > 6 || (variant != 0 && variant != 1)) return;

    const bool second = variant == 1;
    const int32_t step = width * 4;
    const PrimSize size{width, height};
    const int32_t mask = second ? MaskSize5x5 : MaskSize3x3;
    switch (filter) {
        case 0:
            (second ? primiFilterPrewittVert_8u_AC4R : primiFilterPrewittHoriz_8u_AC4R)(p, bufferStep, frame, step, size);
            break;
        case 1:
            (second ? primiFilterSobelVert_8u_AC4R : primiFilterSobelHoriz_8u_AC4R)(p, bufferStep, frame, step, size);
            break;
        case 2:
            (second ? primiFilterRobertsUp_8u_AC4R : primiFilterRobertsDown_8u_AC4R)(p, bufferStep, frame, step, size);
            break;
        case 3:
            primiFilterLaplace_8u_AC4R(p, bufferStep, frame, step, size, mask);
            break;
        case 4:
            primiFilterHipass_8u_AC4R(p, bufferStep, frame, step, size, mask);
            break;
        case 5:
            primiFilterGauss_8u_AC4R(p, bufferStep, frame, step, size, mask);
            break;
        case 6:
            primiFilterLowpass_8u_AC4R(p, bufferStep, frame, step, size, mask);
            break;
    }
}
