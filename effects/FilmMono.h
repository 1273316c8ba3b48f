#ifndef KV_EFFECTS_FILM_MONO_H
#define KV_EFFECTS_FILM_MONO_H

#include "effects/Effect_Base.h"

// A gray negative: the weighted gray of each pixel, complemented.
class FilmMono : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~FilmMono() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void FilmMono_proc(unsigned char* frame, int32_t width, int32_t height);

private:
    unsigned char* buffer = nullptr;  // one gray byte a pixel
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
};

#endif
