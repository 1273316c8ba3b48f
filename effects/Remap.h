#ifndef KV_EFFECTS_REMAP_H
#define KV_EFFECTS_REMAP_H

#include "effects/Effect_Base.h"

// "Explode", "Faceted", "Eye" and "Whirl": the frame resampled through two
// coordinate maps, one of source x and one of source y, which the mode
// fills with a random scatter, rotated square tiles, a spherical bulge or a
// spiral. The maps are built for a frame size and kept; a frame only costs a
// background fill, one remap and one copy.
//
// The size the maps were last built for is shared by every instance of the
// class, and so are the remap's size, steps and rectangle: an instance is
// for one caller at a time, and so is the class.
class CRemap : public Effect_Base {
public:
    KV_API static Effect_Base* CreateInstance();

    CRemap() = default;
    ~CRemap() override;

    int32_t Proc(unsigned char* frame, int32_t width, int32_t height) override;
    int32_t SetArgs(EffectArgs* args) override;
    int32_t GetArgs(EffectArgs* args) override;

    // Rebuilds the maps with the present parameters, for a caller that holds
    // the object and has run Proc at least once. The library never calls it.
    virtual void OnParameterChanged();

    void Remap_Proc(unsigned char* frame, int32_t width, int32_t height);
    void CalculateMap();

    // The map generators: the source position of destination pixel (x, y).
    void GetExplodeMap(int32_t x, int32_t y, float* sourceX, float* sourceY);
    void GetEyeMap(int32_t x, int32_t y, float* sourceX, float* sourceY);
    void GetWhirlMap(int32_t x, int32_t y, float* sourceX, float* sourceY);
    // Faceted fills one whole map at a time.
    void SetFacetedData(float* map, bool wantY);

private:
    int32_t mode = 1;    // 0 Explode, 1 Faceted, 2 Eye, 3 Whirl
    int32_t param1 = 1;  // scatter radius, quarter turns, bulge percent, twist rate
    int32_t param2 = 2;  // Faceted: tile side; Whirl: shrink factor
    float* xMap = nullptr;
    float* yMap = nullptr;
    int32_t width = 1;
    int32_t height = 1;
    unsigned char* dstBuf = nullptr;
};

#endif
