#ifndef KV_EFFECTS_SHEAR_H
#define KV_EFFECTS_SHEAR_H

#include "effects/Effect_Base.h"

// Shears the picture along both axes by a percentage, bilinearly and with
// softened edges, over opaque black; all four bytes of the frame come from
// the result, so its fourth bytes end at 255. The buffer's size lives in
// statics of Shear_Proc shared by every instance.
class CShear : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    // Only the buffer is set: the shears wait for SetArgs, which the catalog
    // always calls with the row's preset.
    CShear() : dstBuf(nullptr) {}
    CShear(const CShear&) = delete;
    CShear& operator=(const CShear&) = delete;
    ~CShear() override;

    // No guard: a null frame or a bad size goes on into Shear_Proc.
    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    // Each percentage is clamped to -50..50.
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;
    virtual void OnParameterChanged();

    void Shear_Proc(unsigned char* frame, int32_t width, int32_t height, double xShear, double yShear);

private:
    int32_t xPercent;
    int32_t yPercent;
    double xShear;
    double yShear;
    unsigned char* dstBuf;
};

#endif
