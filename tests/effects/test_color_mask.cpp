#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "effects/ColorMask.h"
#include "kelvarine.h"
#include "test_support.h"

namespace {

// What a catalog row's instance keeps of each pixel word.
uint32_t MaskOf(int32_t id) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    uint32_t pixel = 0xFFFFFFFFu;
    Kelvarine_Proc(effect, reinterpret_cast<unsigned char*>(&pixel), 1, 1);
    Kelvarine_Destory(effect);
    return pixel;
}

TEST(ColorMaskEffect, EachCatalogRowKeepsItsChannels) {
    EXPECT_EQ(MaskOf(1060), 0xFFFF0000u);
    EXPECT_EQ(MaskOf(1061), 0xFF00FF00u);
    EXPECT_EQ(MaskOf(1062), 0xFF0000FFu);
    EXPECT_EQ(MaskOf(1063), 0xFFFFFF00u);
    EXPECT_EQ(MaskOf(1064), 0xFFFF00FFu);
    EXPECT_EQ(MaskOf(1065), 0xFF00FFFFu);
    EXPECT_EQ(MaskOf(1066), 0xFFFF00FFu) << "Old Picture shares Pink's mask";
}

TEST(ColorMaskEffect, AndsEveryPixelWord) {
    Effect_Base* effect = Kelvarine_NewInstance(1063);
    for (int width : {1, 4, 6, 11}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 2 * 4, width);
        auto expected = frame;
        for (size_t i = 0; i < expected.size(); i += 4) expected[i] = 0;
        EXPECT_EQ(effect->Proc(frame.data(), width, 2), 0);
        EXPECT_EQ(frame, expected) << "width " << width;
    }
    EXPECT_EQ(effect->Proc(nullptr, 0, 0), 0);
    Kelvarine_Destory(effect);
}

TEST(ColorMaskEffect, UnknownIdsKeepTheMaskAndNothingIsReadBack) {
    Effect_Base* effect = Kelvarine_NewInstance(1062);
    EffectArgs args = {{1059, 4, 4, 4, 4, 4}};
    EXPECT_EQ(effect->SetArgs(&args), 0);
    args.word[0] = 1067;
    EXPECT_EQ(effect->SetArgs(&args), 0);
    EXPECT_EQ(effect->GetArgs(&args), 0);
    EXPECT_EQ(args.word[0], 1067) << "GetArgs writes nothing";
    uint32_t pixel = 0x12345678u;
    effect->Proc(reinterpret_cast<unsigned char*>(&pixel), 1, 1);
    EXPECT_EQ(pixel, 0x12000078u);
    Kelvarine_Destory(effect);
}

}  // namespace
