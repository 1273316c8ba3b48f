#ifndef KV_EFFECTS_CANNY_H
#define KV_EFFECTS_CANNY_H

#include "effects/Effect_Base.h"

// A black and white edge map of the frame: gray, the 5x5 Sobel pair with
// replicated borders, and the Canny detector with thresholds ten times the
// parameters. The buffers stay while size and thresholds do.
class Canny : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();
    ~Canny() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    void Canny_proc(unsigned char* frame, int32_t width, int32_t height, int32_t lowThreshold, int32_t highThreshold);

private:
    static uint8_t* NewEdgeMap(int32_t pixels);

    int32_t low = 60;
    int32_t high = 80;
    int32_t gradStep = 0;
    uint8_t* gray = nullptr;
    int16_t* gradX = nullptr;
    int16_t* gradY = nullptr;
    uint8_t* work = nullptr;
    uint8_t* edges = nullptr;
    int32_t oldWidth = 0;
    int32_t oldHeight = 0;
    int32_t oldLow = 0;
    int32_t oldHigh = 0;
};

#endif
