#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "kelvarine.h"
#include "test_support.h"

namespace {

// What a catalog row's instance keeps of a pixel word, after SetArgs with
// word 0 = also when that is given.
uint32_t Kept(int32_t id, uint32_t pixel, int32_t also = 0) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    EffectArgs args = {{also, 4, 4, 4, 4, 4}};
    if (also) {
        EXPECT_EQ(effect->SetArgs(&args), 0);
    }
    EXPECT_EQ(effect->GetArgs(&args), 0);
    EXPECT_EQ(args.word[0], also) << "the mask cannot be read back";
    Kelvarine_Proc(effect, reinterpret_cast<unsigned char*>(&pixel), 1, 1);
    Kelvarine_Destory(effect);
    return pixel;
}

TEST(ColorMaskEffect, EachCatalogRowKeepsItsChannels) {
    const uint32_t masks[] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFFFFFF00u,
                              0xFFFF00FFu, 0xFF00FFFFu, 0xFFFF00FFu};
    for (int32_t id = 1060; id <= 1066; ++id) EXPECT_EQ(Kept(id, 0xFFFFFFFFu), masks[id - 1060]) << id;
    // Ids outside 1060..1066 keep the mask of before.
    EXPECT_EQ(Kept(1062, 0x12345678u, 1059), 0x12000078u);
    EXPECT_EQ(Kept(1062, 0x12345678u, 1067), 0x12000078u);
}

TEST(ColorMaskEffect, AndsEveryPixelWord) {
    Effect_Base* yellow = Kelvarine_NewInstance(1063);
    for (int width : {1, 4, 6, 11}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 2 * 4, width), expected = frame;
        for (size_t i = 0; i < expected.size(); i += 4) expected[i] = 0;
        EXPECT_EQ(yellow->Proc(frame.data(), width, 2), 0);
        EXPECT_EQ(frame, expected) << "width " << width;
    }
    EXPECT_EQ(yellow->Proc(nullptr, 0, 0), 0);
    Kelvarine_Destory(yellow);
}

}  // namespace
