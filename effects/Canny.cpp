#include "effects/Canny.h"

#include "effects/PixelWords.h"
#include "kelvarine_prims.h"

Effect_Base* Canny::CreateInstance() { return new Canny; }

// edges is not released: every re-creation and the destruction leave one
// width-by-height block behind. Hosts have always seen this loss, and it is
// kept as it is.
Canny::~Canny() {
    primsFree(work);
    work = nullptr;
    primsFree(gradY);
    gradY = nullptr;
    primsFree(gradX);
    gradX = nullptr;
    primsFree(gray);
    gray = nullptr;
}

int32_t Canny::Proc(unsigned char* frame, int32_t width, int32_t height) {
    if (!FrameAccepted(frame, width, height, kCannyTexts)) return -1;
    Canny_proc(frame, width, height, low, high);
    return 0;
}

// Each word is stored clamped below at 0 and then, over it, capped at 100:
// the cap is what stays, so a negative threshold goes through.
int32_t Canny::SetArgs(EffectArgs* args) {
    low = args->word[0] < 0 ? 0 : args->word[0];
    low = args->word[0] > 100 ? 100 : args->word[0];
    high = args->word[1] < 0 ? 0 : args->word[1];
    high = args->word[1] > 100 ? 100 : args->word[1];
    return 0;
}

int32_t Canny::GetArgs(EffectArgs* args) {
    args->word[0] = low;
    args->word[1] = high;
    return 0;
}

uint8_t* Canny::NewEdgeMap(int32_t pixels) { return static_cast<uint8_t*>(primMalloc(pixels)); }

namespace {

// Edge byte i into the three colour bytes of pixel i; the fourth stays.
void CopyEdgesIntoFrame(const uint8_t* edges, unsigned char* frame, size_t pixels) {
    const __m128i zero = _mm_setzero_si128();
    size_t i = 0;
    for (; i + 16 <= pixels; i += 16) {
        __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(edges + i));
        __m128i first = _mm_unpacklo_epi8(bytes, zero), second = _mm_unpackhi_epi8(bytes, zero);
        const __m128i values[4] = {_mm_unpacklo_epi16(first, zero), _mm_unpackhi_epi16(first, zero),
                                   _mm_unpacklo_epi16(second, zero), _mm_unpackhi_epi16(second, zero)};
        for (int k = 0; k < 4; ++k) {
            __m128i* at = reinterpret_cast<__m128i*>(frame + 4 * (i + 4 * k));
            _mm_storeu_si128(at, _mm_or_si128(InColourBytes(values[k]), AlphaOf(_mm_loadu_si128(at))));
        }
    }
    for (; i < pixels; ++i) {
        uint32_t pixel;
        memcpy(&pixel, frame + 4 * i, 4);
        pixel = (pixel & kAlphaByte) | edges[i] * 0x010101u;
        memcpy(frame + 4 * i, &pixel, 4);
    }
}

}  // namespace

// The thresholds reach the detector as given: a low one above the high one,
// or below 0, is refused there, and the frame then takes whatever the edges
// block held.
void Canny::Canny_proc(unsigned char* frame, int32_t width, int32_t height, int32_t lowThreshold,
                       int32_t highThreshold) {
    const PrimSize size = {width, height};
    const int32_t pixels = PixelCount(width, height);
    if (gray == nullptr || oldWidth != width || oldHeight != height || oldLow != lowThreshold ||
        oldHigh != highThreshold) {
        primsFree(work);
        primsFree(gradY);
        primsFree(gradX);
        primsFree(gray);
        gray = static_cast<uint8_t*>(primMalloc(pixels));
        gradX = primiMalloc_16s_C1(width, height, &gradStep);
        gradY = primiMalloc_16s_C1(width, height, &gradStep);
        int32_t negVertBytes = 0, horizBytes = 0, cannyBytes = 0;
        primiFilterSobelNegVertGetBufferSize_8u16s_C1R(size, MaskSize5x5, &negVertBytes);
        primiFilterSobelHorizGetBufferSize_8u16s_C1R(size, MaskSize5x5, &horizBytes);
        primiCannyGetSize(size, &cannyBytes);
        int32_t workBytes = negVertBytes > horizBytes ? negVertBytes : horizBytes;
        work = primsMalloc_8u(cannyBytes > workBytes ? cannyBytes : workBytes);
        edges = NewEdgeMap(pixels);
        oldWidth = width;
        oldHeight = height;
        oldLow = lowThreshold;
        oldHigh = highThreshold;
    }
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    primiRGBToGray_8u_AC4C1R(frame, step, gray, width, size);
    primiFilterSobelNegVertBorder_8u16s_C1R(gray, width, gradX, gradStep, size, MaskSize5x5, BorderRepl, 0, work);
    primiFilterSobelHorizBorder_8u16s_C1R(gray, width, gradY, gradStep, size, MaskSize5x5, BorderRepl, 0, work);
    const float lowEdge = static_cast<float>(lowThreshold) * 10.0f;
    const float highEdge = static_cast<float>(highThreshold) * 10.0f;
    primiCanny_16s8u_C1R(gradX, gradStep, gradY, gradStep, edges, width, size, lowEdge, highEdge, work);
    CopyEdgesIntoFrame(edges, frame, static_cast<size_t>(static_cast<uint32_t>(pixels)));
}
