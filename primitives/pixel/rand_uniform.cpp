// Uniform random vectors: a state record from InitAlloc, any number of fills
// that continue one sequence, and Free. The tag tells the two kinds apart.
#include <emmintrin.h>

#include "primitives/pixel/rand_generator.h"

struct PrimRandUniformState_16s {
    int32_t tag;
    uint32_t seed;
    int16_t low;
    int16_t high;
    double mean;
    double scale;
    PrimRandGenerator generator;
};

struct PrimRandUniformState_32f {
    int32_t tag;
    uint32_t seed;
    float low;
    float high;
    double mean;
    double scale;
    PrimRandGenerator generator;
};

namespace PRIM_BUILD {
namespace {

constexpr int32_t kTag16s = 36;
constexpr int32_t kTag32f = 37;

// The limits are not compared: high below low simply gives a negative scale.
// Mean and scale are formed in the limits' own type before widening.
template <typename State, typename Limit>
PrimStatus InitAlloc(State** state, Limit low, Limit high, uint32_t seed, int32_t tag) {
    if (state == nullptr) return PrimNullPtrErr;
    State* record = reinterpret_cast<State*>(PRIM(primsMalloc_8u)(static_cast<int32_t>(sizeof(State))));
    if (record == nullptr) return PrimMemAllocErr;
    record->tag = tag;
    record->seed = seed;
    record->low = low;
    record->high = high;
    record->mean = (low + high) * 0.5;
    record->scale = (high - low) * 2.3283064365387e-10;
    record->generator = SeededRandGenerator(seed);
    *state = record;
    return PrimOk;
}

// Each element is y * scale + mean of one generator step; the state is
// written back so that the next call continues the sequence.
template <typename State, typename Element, typename Convert>
PrimStatus Fill(Element* output, int32_t length, State* state, int32_t tag, Convert convert) {
    if (output == nullptr || state == nullptr) return PrimNullPtrErr;
    if (length < 1) return PrimSizeErr;
    if (state->tag != tag) return PrimContextErr;
    PrimRandGenerator generator = state->generator;
    const double scale = state->scale;
    const double mean = state->mean;
    for (int32_t i = 0; i < length; ++i) output[i] = convert(NextRandom(generator) * scale + mean);
    state->generator = generator;
    return PrimOk;
}

template <typename State>
PrimStatus Release(State* state, int32_t tag) {
    if (state == nullptr) return PrimNullPtrErr;
    if (state->tag != tag) return PrimContextErr;
    PRIM(primsFree)(state);
    return PrimOk;
}

// Rounded in the current rounding mode; the low 16 bits are kept without
// saturation, so the value high itself can come out.
inline int16_t ToInt16(double r) {
    return static_cast<int16_t>(static_cast<uint16_t>(_mm_cvtsd_si32(_mm_set_sd(r))));
}

inline float ToFloat(double r) { return static_cast<float>(r); }

}  // namespace
}  // namespace PRIM_BUILD

extern "C" {

PrimStatus PRIM(primsRandUniformInitAlloc_16s)(PrimRandUniformState_16s** state, int16_t low, int16_t high,
                                               uint32_t seed) {
    return PRIM_BUILD::InitAlloc(state, low, high, seed, PRIM_BUILD::kTag16s);
}

PrimStatus PRIM(primsRandUniformInitAlloc_32f)(PrimRandUniformState_32f** state, float low, float high,
                                               uint32_t seed) {
    return PRIM_BUILD::InitAlloc(state, low, high, seed, PRIM_BUILD::kTag32f);
}

PrimStatus PRIM(primsRandUniform_16s)(int16_t* output, int32_t length, PrimRandUniformState_16s* state) {
    return PRIM_BUILD::Fill(output, length, state, PRIM_BUILD::kTag16s, PRIM_BUILD::ToInt16);
}

PrimStatus PRIM(primsRandUniform_32f)(float* output, int32_t length, PrimRandUniformState_32f* state) {
    return PRIM_BUILD::Fill(output, length, state, PRIM_BUILD::kTag32f, PRIM_BUILD::ToFloat);
}

PrimStatus PRIM(primsRandUniformFree_16s)(PrimRandUniformState_16s* state) {
    return PRIM_BUILD::Release(state, PRIM_BUILD::kTag16s);
}

PrimStatus PRIM(primsRandUniformFree_32f)(PrimRandUniformState_32f* state) {
    return PRIM_BUILD::Release(state, PRIM_BUILD::kTag32f);
}

}  // extern "C"
