#include "effects/Dilate.h"

#include "effects/C4Frame.h"

Effect_Base* Dilate::CreateInstance() { return new Dilate; }

Dilate::~Dilate() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t Dilate::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kBoxTexts)) return -1;
    Dilate_proc(frame, width, height, size);
    return 0;
}

int32_t Dilate::SetArgs(EffectArgs* args) {
    size = ClampWord(args->word[0], 2, 10);
    return 0;
}

int32_t Dilate::GetArgs(EffectArgs* args) {
    args->word[0] = size;
    return 0;
}

void Dilate::Dilate_proc(unsigned char* frame, int32_t width, int32_t height, int32_t size) {
    if (buffer == nullptr || oldWidth != width || oldHeight != height || oldSize != size) {
        primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(FrameBytes(width, height)));
        FullBack(buffer, width, height);
    }
    MorphSquare(frame, width, height, size, buffer, primiDilateBorderReplicate_8u_C4R);
}
