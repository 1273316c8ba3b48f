// The one random generator of the library: a subtract-with-borrow sequence
// combined with a linear congruential one. Its output fixes the pixels of
// every noisy result, so every step is 32-bit wrapping arithmetic, unsigned.
#ifndef KV_PRIMITIVES_PIXEL_RAND_GENERATOR_H
#define KV_PRIMITIVES_PIXEL_RAND_GENERATOR_H

#include "primitives/frame/build.h"

// Five words of state; a plain record so that it can live inside the uniform
// state records.
struct PrimRandGenerator {
    uint32_t c;   // the congruential word
    uint32_t x1;  // the newest sequence word
    uint32_t x2;
    uint32_t x3;
    uint32_t b;   // the borrow: 0 or all bits set
};

namespace PRIM_BUILD {

constexpr uint32_t kRandMultiplier = 69069u;
constexpr uint32_t kRandIncrement = 1013904243u;

// The congruential word starts the same whatever the seed.
inline PrimRandGenerator SeededRandGenerator(uint32_t seed) {
    PrimRandGenerator g;
    g.c = 0x436CBAE9u;
    g.x1 = seed;
    g.x2 = seed * kRandMultiplier + kRandIncrement;
    g.x3 = g.x2 * kRandMultiplier + kRandIncrement;
    g.b = 0xFFFFFFFFu;
    return g;
}

// One step. The new sequence word is x1 afterwards; the result is that word
// plus the congruential word.
inline int32_t NextRandom(PrimRandGenerator& g) {
    uint32_t t = g.x2 - g.x3 + g.b;
    uint32_t w;
    if (static_cast<int32_t>(t) < 0) {
        g.b = 0xFFFFFFFFu;
        w = t - 18u;
    } else {
        g.b = 0u;
        w = t;
    }
    g.c = g.c * kRandMultiplier + kRandIncrement;
    g.x3 = g.x2;
    g.x2 = g.x1;
    g.x1 = w;
    return static_cast<int32_t>(w + g.c);
}

}  // namespace PRIM_BUILD

#endif
