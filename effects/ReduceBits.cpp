#include "effects/ReduceBits.h"

#include <cstring>

#include "kelvarine_prims.h"

Effect_Base* CReduceBits::CreateInstance() { return new CReduceBits; }

// The primitive writes a fresh buffer, and the whole buffer, fourth bytes
// included, goes back over the frame. The buffer lives for one call.
int32_t CReduceBits::Proc(unsigned char* frame, int32_t width, int32_t height) {
    const int32_t step = static_cast<int32_t>(static_cast<uint32_t>(width) * 4u);
    const int32_t bytes = static_cast<int32_t>(static_cast<uint32_t>(step) * static_cast<uint32_t>(height));
    unsigned char* temporary = static_cast<unsigned char*>(primMalloc(bytes));
    PrimSize size = {width, height};
    primiReduceBits_8u_AC4R(frame, step, temporary, step, size, noise, dither, levels);
    if (bytes > 0) memcpy(frame, temporary, static_cast<size_t>(bytes));
    primsFree(temporary);
    return 0;
}

// The words are stored as they come; only an accepted method brings the
// clamps. A refused one leaves no dither and the other two words raw.
int32_t CReduceBits::SetArgs(EffectArgs* args) {
    dither = args->word[0];
    noise = args->word[1];
    levels = args->word[2];
    if (static_cast<uint32_t>(dither) >= 5u) {
        dither = DitherNone;
        return -1;
    }
    noise = ClampWord(noise, 0, 100);
    levels = ClampWord(levels, 2, 64);
    return 0;
}

int32_t CReduceBits::GetArgs(EffectArgs* args) {
    args->word[0] = dither;
    args->word[1] = noise;
    args->word[2] = levels;
    return 0;
}
