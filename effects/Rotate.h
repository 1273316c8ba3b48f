#ifndef KV_EFFECTS_ROTATE_H
#define KV_EFFECTS_ROTATE_H

#include "effects/Effect_Base.h"

// Turns the picture about the frame's centre pixel by a whole number of
// degrees, counter-clockwise on the screen, into a private buffer that
// starts black, and copies the colour bytes back: the frame keeps its size
// and its fourth bytes. Quarter turns move whole pixels; other angles are
// resampled bilinearly with softened edges.
class Rotate : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    Rotate() = default;
    Rotate(const Rotate&) = delete;
    Rotate& operator=(const Rotate&) = delete;
    ~Rotate() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    // A negative angle becomes 0, one above 360 becomes 360.
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Rotate_proc(unsigned char* frame, int32_t width, int32_t height, double angle);

private:
    double angle = 60.0;
    unsigned char* dstBuf = nullptr;
    int32_t width = 0;  // the size dstBuf was made for
    int32_t height = 0;
};

#endif
