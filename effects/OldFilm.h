#ifndef KV_EFFECTS_OLD_FILM_H
#define KV_EFFECTS_OLD_FILM_H

#include "effects/Effect_Base.h"

// A sepia tone from the plain mean of the colours.
class OldFilm : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void OldFilm_proc(unsigned char* frame, int32_t width, int32_t height);
};

#endif
