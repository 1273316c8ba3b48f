#include "effects/Shear.h"

#include <cstring>

#include "kelvarine_prims.h"

Effect_Base* CShear::CreateInstance() { return new CShear; }

CShear::~CShear() {
    if (dstBuf != nullptr) primsFree(dstBuf);
    dstBuf = nullptr;
}

int32_t CShear::Proc(unsigned char* frame, int32_t width, int32_t height) {
    Shear_Proc(frame, width, height, xShear, yShear);
    return 0;
}

int32_t CShear::SetArgs(EffectArgs* args) {
    xPercent = ClampWord(args->word[0], -50, 50);
    yPercent = ClampWord(args->word[1], -50, 50);
    OnParameterChanged();
    return 0;
}

int32_t CShear::GetArgs(EffectArgs* args) {
    args->word[0] = xPercent;
    args->word[1] = yPercent;
    return 0;
}

void CShear::OnParameterChanged() {
    xShear = xPercent / 100.0;
    yShear = yPercent / 100.0;
}

// The size the buffer was last made for, by whichever instance, is kept in
// statics: an instance whose own buffer is there and whose frame has that
// size reuses it. The shifts pair each size with the other axis's shear, so
// the picture stays centred only when the two shears are equal.
void CShear::Shear_Proc(unsigned char* frame, int32_t width, int32_t height, double xShear, double yShear) {
    static int32_t oldWidth = 0;
    static int32_t oldHeight = 0;
    static int32_t Step = 0;
    static PrimSize roiSize = {0, 0};
    static PrimRect roiRect = {0, 0, 0, 0};
    static int32_t Size = 0;

    if (dstBuf == nullptr || oldWidth != width || oldHeight != height) {
        if (dstBuf != nullptr) primsFree(dstBuf);
        dstBuf = nullptr;
        Step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
        roiSize = {width, height};
        roiRect = {0, 0, width, height};
        Size = static_cast<int32_t>(static_cast<uint32_t>(Step) * static_cast<uint32_t>(height));
        dstBuf = static_cast<unsigned char*>(primMalloc(Size));
        oldWidth = width;
        oldHeight = height;
    }
    FullBack(dstBuf, width, height);

    const double xShift = -static_cast<double>(height) * yShear * 0.5;
    const double yShift = -static_cast<double>(width) * xShear * 0.5;
    primiShear_8u_AC4R(frame, roiSize, Step, roiRect, dstBuf, Step, roiRect, xShear, yShear, xShift, yShift,
                       InterpLinear | InterpSmoothEdge);
    memcpy(frame, dstBuf, static_cast<size_t>(static_cast<uint32_t>(Size)));
}
