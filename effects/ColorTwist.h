// The colour matrices of "Color Average" and "Color Emphase", and the
// repeated twist that both effects run.
#ifndef KV_EFFECTS_COLOR_TWIST_H
#define KV_EFFECTS_COLOR_TWIST_H

#include <cstdint>

// Rows give blue, green, red out; columns weigh blue, green, red in, then an
// offset. Average pulls each colour an eighth of the way to each other one
// and brightens; Emphase pushes them apart and darkens.
extern const float Average[3][4];
extern const float Emphase[3][4];

// Emphase n times for n above 0, Average -n times for n below 0, each pass on
// the result of the one before; -1 for n of 0, else 0.
int32_t TwistRepeatedly(unsigned char* frame, int32_t width, int32_t height, int32_t n);

#endif
