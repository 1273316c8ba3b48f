#include "effects/ColorTwist.h"

#include "kelvarine_prims.h"

const float Average[3][4] = {
    {0.75f, 0.125f, 0.125f, 0.75f},
    {0.125f, 0.75f, 0.125f, 1.0f},
    {0.125f, 0.125f, 0.75f, 0.75f},
};

const float Emphase[3][4] = {
    {1.4f, -0.2f, -0.2f, -0.4f},
    {-0.2f, 1.4f, -0.2f, -0.55f},
    {-0.2f, -0.2f, 1.4f, -0.4f},
};

int32_t TwistRepeatedly(unsigned char* frame, int32_t width, int32_t height, int32_t n) {
    if (n == 0) return -1;
    PrimSize size = {width, height};
    for (int32_t i = 0; i < n; ++i) primiColorTwist32f_8u_AC4IR(frame, width * 4, size, Emphase);
    for (int32_t i = 0; i < -n; ++i) primiColorTwist32f_8u_AC4IR(frame, width * 4, size, Average);
    return 0;
}
