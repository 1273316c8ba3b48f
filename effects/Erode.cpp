#include "effects/Erode.h"

#include "effects/C4Frame.h"

Effect_Base* Erode::CreateInstance() { return new Erode; }

Erode::~Erode() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t Erode::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Erode_proc(frame, width, height, size);
    return 0;
}

int32_t Erode::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 2, 10);
    return 0;
}

int32_t Erode::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}

// Unlike Dilate_proc, the size is bounded here once more and the new buffer
// is not filled first.
void Erode::Erode_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size) {
    if (size > 10) size = 10;
    if (buffer == nullptr || oldWidth != width || oldHeight != height || oldSize != size) {
        primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(FrameBytes(width, height)));
    }
    MorphSquare(frame, width, height, size, buffer, primiErodeBorderReplicate_8u_C4R);
}
