#include "effects/FilmMono.h"

#include "effects/PixelWords.h"
#include "kelvarine_prims.h"

Effect_Base* FilmMono::CreateInstance() { return new FilmMono; }

FilmMono::~FilmMono() {
    if (buffer != nullptr) primsFree(buffer);
    buffer = nullptr;
}

int32_t FilmMono::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kFilmMonoTexts)) return -1;
    FilmMono_proc(frame, width, height);
    return 0;
}

int32_t FilmMono::SetArgs(EffectArgs*) { return 0; }

int32_t FilmMono::GetArgs(EffectArgs*) { return 0; }

namespace {

// Four gray bytes, complemented, into the colour bytes of four pixels.
inline __m128i NegativeOfFour(const unsigned char* gray, __m128i pixels) {
    int32_t four;
    memcpy(&four, gray, 4);
    __m128i bytes = _mm_cvtsi32_si128(four);
    bytes = _mm_unpacklo_epi8(bytes, bytes);
    __m128i spread = _mm_unpacklo_epi16(bytes, bytes);
    __m128i negative = _mm_andnot_si128(spread, _mm_set1_epi32(static_cast<int32_t>(~kAlphaByte)));
    return _mm_or_si128(negative, AlphaOf(pixels));
}

}  // namespace

// The size of the buffer is compared but never recorded, so every call
// releases the buffer and makes a new one.
void FilmMono::FilmMono_proc(unsigned char* frame, int32_t width, int32_t height) {
    if (buffer == nullptr || oldWidth != width || oldHeight != height) {
        if (buffer != nullptr) primsFree(buffer);
        buffer = static_cast<unsigned char*>(primMalloc(PixelCount(width, height)));
    }
    primiRGBToGray_8u_AC4C1R(frame, width * 4, buffer, width, {width, height});

    size_t pixels = static_cast<size_t>(width) * static_cast<size_t>(height);
    size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(frame + 4 * i);
        _mm_storeu_si128(at, NegativeOfFour(buffer + i, _mm_loadu_si128(at)));
    }
    for (; i < pixels; ++i) {
        uint32_t pixel;
        memcpy(&pixel, frame + 4 * i, 4);
        pixel = (pixel & kAlphaByte) | (static_cast<uint8_t>(~buffer[i]) * 0x010101u);
        memcpy(frame + 4 * i, &pixel, 4);
    }
}
