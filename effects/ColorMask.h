#ifndef KV_EFFECTS_COLOR_MASK_H
#define KV_EFFECTS_COLOR_MASK_H

#include "effects/Effect_Base.h"

// Keeps some colour bytes of every pixel and clears the others, by a mask
// chosen with a catalog id from 1060 ("Red") to 1066 ("Old Picture").
class CColorMask : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    // Unguarded: a null frame with a positive size faults.
    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    // Takes the mask of a known id and ignores any other; always 0.
    int32_t SetArgs(EffectArgs* args) override;
    // The mask cannot be read back: does nothing.
    int32_t GetArgs(EffectArgs* args) override;

private:
    // Not set at construction: every catalog row sets it through its preset.
    uint32_t mask;
};

#endif
