// Running one effect instance in the tests of the colour effects.
#ifndef KV_TESTS_EFFECTS_COLOUR_EFFECT_SUPPORT_H
#define KV_TESTS_EFFECTS_COLOUR_EFFECT_SUPPORT_H

#include <vector>

#include "kelvarine.h"

namespace kvtest {

using Bytes = std::vector<uint8_t>;

// A new instance, SetArgs with word 0 = word0 when it is given, one Proc
// whose result must be 0, and the instance's end.
inline Bytes Processed(Effect_Base* (*create)(), Bytes frame, int width, int height, const int* word0 = nullptr) {
    Effect_Base* effect = create();
    EffectArgs args = {{word0 ? *word0 : 0}};
    if (word0) effect->SetArgs(&args);
    int32_t result = effect->Proc(frame.data(), width, height);
    delete effect;
    return result == 0 ? frame : Bytes();
}

// Word 0 as GetArgs reports it after SetArgs with the given value.
inline int32_t StoredWord0(Effect_Base* (*create)(), int32_t value) {
    Effect_Base* effect = create();
    EffectArgs args = {{value}};
    effect->SetArgs(&args);
    effect->GetArgs(&args);
    delete effect;
    return args.word[0];
}

}  // namespace kvtest

#endif
