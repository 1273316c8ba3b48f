#include "effects/Rotate.h"

#include <emmintrin.h>

#include <cstring>

#include "kelvarine_prims.h"

Effect_Base* Rotate::CreateInstance() { return new Rotate; }

Rotate::~Rotate() {
    if (dstBuf != nullptr) primsFree(dstBuf);
    dstBuf = nullptr;
}

int32_t Rotate::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kRotateTexts)) return -1;
    Rotate_proc(frame, width, height, angle);
    return 0;
}

int32_t Rotate::SetArgs(EffectArgs* args) {
    const double degrees = args->word[0] < 0 ? 0.0 : static_cast<double>(args->word[0]);
    angle = degrees < 360.0 ? degrees : 360.0;
    return 0;
}

int32_t Rotate::GetArgs(EffectArgs* args) {
    args->word[0] = static_cast<int32_t>(angle);
    return 0;
}

namespace {

// The three colour bytes of each pixel from the buffer into the frame; the
// frame's fourth bytes stay.
void CopyColourBytes(unsigned char* frame, const unsigned char* buffer, size_t pixels) {
    const __m128i colour = _mm_set1_epi32(0x00FFFFFF);
    size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        __m128i* to = reinterpret_cast<__m128i*>(frame + 4 * i);
        const __m128i fresh = _mm_loadu_si128(reinterpret_cast<const __m128i*>(buffer + 4 * i));
        _mm_storeu_si128(to, _mm_or_si128(_mm_and_si128(colour, fresh), _mm_andnot_si128(colour, _mm_loadu_si128(to))));
    }
    for (; i < pixels; ++i) memcpy(frame + 4 * i, buffer + 4 * i, 3);
}

}  // namespace

// The buffer lives across frames of one size and is cleared on every frame,
// so the corners the turned picture leaves are black. The centre is a whole
// pixel, so quarter turns take the exact path. The primitive's status is not
// looked at: a refused rotation leaves the frame's colours black.
void Rotate::Rotate_proc(unsigned char* frame, int32_t width, int32_t height, double angle) {
    const uint32_t pixels = static_cast<uint32_t>(width) * static_cast<uint32_t>(height);
    const int32_t bytes = static_cast<int32_t>(pixels * 4u);
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    if (dstBuf != nullptr && (this->width != width || this->height != height)) {
        primsFree(dstBuf);
        dstBuf = nullptr;
    }
    if (dstBuf == nullptr) {
        dstBuf = static_cast<unsigned char*>(primMalloc(bytes));
        this->width = width;
        this->height = height;
    }
    memset(dstBuf, 0, static_cast<size_t>(static_cast<uint32_t>(bytes)));

    const PrimSize size = {width, height};
    const PrimRect whole = {0, 0, width, height};
    primiRotateCenter_8u_AC4R(frame, size, step, whole, dstBuf, step, whole, angle, static_cast<double>(width >> 1),
                              static_cast<double>(height >> 1), InterpLinear | InterpSmoothEdge);
    CopyColourBytes(frame, dstBuf, pixels);
}
