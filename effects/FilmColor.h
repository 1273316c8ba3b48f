#ifndef KV_EFFECTS_FILM_COLOR_H
#define KV_EFFECTS_FILM_COLOR_H

#include "effects/Effect_Base.h"

// A colour negative: blue, green and red complemented.
class CFilmColor : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    // Unguarded: a null frame with a positive size faults.
    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;
};

#endif
