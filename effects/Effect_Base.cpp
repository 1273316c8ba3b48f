#include "effects/Effect_Base.h"

#include <cstring>

const ProcTexts kBoxTexts = {"Box Effect Src == NULL ", "Box Effect Width = %d Height =%d"};
const ProcTexts kCannyTexts = {"Canny Effect Src == NULL ", "Canny Effect Width = %d Height =%d"};
const ProcTexts kMinFilterTexts = {"MinFilter Effect Src == NULL ", "MinFilter Effect Width = %d Height =%d"};
const ProcTexts kFilmMonoTexts = {"FilmMono Effect Src == NULL ", "FilmMono Effect Width = %d Height =%d"};
const ProcTexts kOldFilmTexts = {"FilmMono Effect Src == NULL ", "OldFilm Effect Width = %d Height =%d"};
const ProcTexts kColorEmphaseTexts = {"ColorEmphase Effect Src == NULL ",
                                      "ColorEmphase Effect Width = %d Height =%d"};
const ProcTexts kBrightnessTexts = {"Brightness Effect Src == NULL ", "Brightness Effect Width = %d Height =%d"};
const ProcTexts kRotateTexts = {"Rotate Effect Src == NULL ", "Rotate Effect Width = %d Height =%d"};
const ProcTexts kMirrorTexts = {"Mirror Effect Src == NULL ", "Mirror Effect Width = %d Height =%d"};
const ProcTexts kGrayTexts = {"Gray Effect Src == NULL ", "Gray Effect Width = %d Height =%d"};

bool FrameAccepted(const unsigned char* frame, int32_t width, int32_t height, const ProcTexts& texts) {
    if (frame == nullptr) {
        WriteLog1(3, texts.nullFrame);
        return false;
    }
    if (width <= 0 || height <= 0) {
        WriteLog1(3, texts.badSize, width, height);
        return false;
    }
    return true;
}

void FullBack(unsigned char* buffer, int32_t width, int32_t height) {
    // The pixel count is the 32-bit product, as the frame sizes are 32-bit.
    int32_t pixels = static_cast<int32_t>(static_cast<uint32_t>(width) * static_cast<uint32_t>(height));
    if (pixels <= 0) return;
    static const unsigned char kOpaqueBlack[4] = {0x00, 0x00, 0x00, 0xFF};
    for (int32_t i = 0; i < pixels; ++i) memcpy(buffer + 4 * static_cast<size_t>(i), kOpaqueBlack, 4);
}
