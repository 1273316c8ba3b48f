#include "effects/Median.h"

#include "kelvarine_prims.h"

Effect_Base* CMedian::CreateInstance() { return new CMedian; }

CMedian::~CMedian() {
    if (buffer != nullptr) {
        primsFree(buffer);
        buffer = nullptr;
    }
}

// Unguarded: a null or empty frame goes on, and the primitives refuse it.
int32_t CMedian::Proc(unsigned char* frame, int32_t width, int32_t height) {
    Median_Proc(frame, width, height, size, 0);
    return 0;
}

int32_t CMedian::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 1, 10);
    return 0;
}

int32_t CMedian::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}

// The buffer is remade when this instance has none, or when the statics -
// whichever instance set them last - differ from the present frame and mask.
// The frame is copied in on every call. An even size makes the median filter
// refuse the mask, and the frame stays as it was.
void CMedian::Median_Proc(unsigned char* frame, int32_t width, int32_t height, int32_t size, int32_t kind) {
    static int32_t oldWidth, oldHeight, oldSize;
    static int32_t Step;
    static PrimSize roiSize;
    static PrimSize maskSize;
    static int32_t Border;
    static PrimPoint anchor;
    static int32_t dstStep;
    static PrimSize dstRoiSize;

    if (buffer == nullptr || oldWidth != width || oldHeight != height || oldSize != size) {
        primsFree(buffer);
        const int32_t half = size >> 1;
        Step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
        roiSize = {width, height};
        maskSize = {size, size};
        Border = half;
        anchor = {half, half};
        const uint32_t both = static_cast<uint32_t>(size & ~1);
        buffer = static_cast<unsigned char*>(primMalloc(
            static_cast<int32_t>((both + static_cast<uint32_t>(width)) * (both + static_cast<uint32_t>(height)) * 4u)));
        dstRoiSize = {width + 2 * Border, height + 2 * Border};
        dstStep = static_cast<int32_t>(static_cast<uint32_t>(dstRoiSize.width) * 4u);
        oldSize = size;
        oldWidth = width;
        oldHeight = height;
    }
    primiCopyReplicateBorder_8u_AC4R(frame, Step, roiSize, buffer, dstStep, dstRoiSize, Border, Border);

    // Proc only ever asks for kind 0. Kinds 3 and 4 pass code 33, which the
    // row and column filters refuse.
    if (kind > 4) return;
    const unsigned char* inner = buffer + static_cast<ptrdiff_t>(Border) * dstStep + static_cast<ptrdiff_t>(Border) * 4;
    switch (kind) {
        case 0:
            primiFilterMedian_8u_AC4R(inner, dstStep, frame, Step, roiSize, maskSize, anchor);
            break;
        case 1:
            primiFilterMedianColor_8u_AC4R(inner, dstStep, frame, Step, roiSize, MaskSize3x3);
            break;
        case 2:
            primiFilterMedianCross_8u_AC4R(inner, dstStep, frame, Step, roiSize, MaskSize3x3);
            break;
        case 3:
            primiFilterMedianHoriz_8u_AC4R(inner, dstStep, frame, Step, roiSize, 33);
            break;
        case 4:
            primiFilterMedianVert_8u_AC4R(inner, dstStep, frame, Step, roiSize, 33);
            break;
        default:
            break;
    }
}
