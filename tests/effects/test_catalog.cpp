#include <gtest/gtest.h>

#include <set>
#include <string>

#include "kelvarine.h"

namespace {

TEST(Catalog, CountAndIdsByIndex) {
    EXPECT_EQ(Kelvarine_AllEffectCount(), 44);
    EXPECT_EQ(Kelvarine_EffectID(0), 1001);
    EXPECT_EQ(Kelvarine_EffectID(11), 1036);
    EXPECT_EQ(Kelvarine_EffectID(43), 1067);
    EXPECT_EQ(Kelvarine_EffectID(44), -1);
    EXPECT_EQ(Kelvarine_EffectID(-1), -1);

    std::set<int> ids;
    for (int i = 0; i < 44; ++i) ids.insert(Kelvarine_EffectID(i));
    EXPECT_EQ(ids.size(), 44u) << "ids are unique";
}

TEST(Catalog, NamesAndTypesById) {
    EXPECT_STREQ(Kelvarine_EffectName(1040), "BrightnessAndContrastAndSaturation");
    EXPECT_STREQ(Kelvarine_EffectName(1003), "Min Filter");
    EXPECT_STREQ(Kelvarine_EffectName(1067), "De-noise");
    EXPECT_EQ(Kelvarine_EffectName(1021), nullptr);
    EXPECT_EQ(Kelvarine_EffectType(1021), -1);
    EXPECT_EQ(Kelvarine_EffectType(1005), 0);
    EXPECT_EQ(Kelvarine_EffectType(1001), 6);
    EXPECT_EQ(Kelvarine_NewInstance(1021), nullptr);

    // Rows 12 to 25 and row 43 are adjustments (type 0), the rest type 6.
    for (int i = 0; i < 44; ++i) {
        int expected = (i >= 12 && i <= 25) || i == 43 ? 0 : 6;
        EXPECT_EQ(Kelvarine_EffectType(Kelvarine_EffectID(i)), expected) << "row " << i;
    }
}

TEST(Catalog, NullInstanceIsRefusedWithoutTouchingArguments) {
    EffectArgs args = {{7, 7, 7, 7, 7, 7}};
    unsigned char frame[4] = {1, 2, 3, 4};
    EXPECT_EQ(Kelvarine_SetEffectArgs(nullptr, &args), -1);
    EXPECT_EQ(Kelvarine_GetEffectArgs(nullptr, &args), -1);
    EXPECT_EQ(Kelvarine_Proc(nullptr, frame, 1, 1), -1);
    Kelvarine_Destory(nullptr);
    for (int w : args.word) EXPECT_EQ(w, 7);
    EXPECT_EQ(frame[0], 1);
}

TEST(Catalog, GrayIsCreatedRunAndDestroyedThroughTheExports) {
    Effect_Base* gray = Kelvarine_NewInstance(1036);
    ASSERT_NE(gray, nullptr);
    EffectArgs args = {{5, 6, 7, 8, 9, 10}};
    EXPECT_EQ(Kelvarine_SetEffectArgs(gray, &args), 0);
    EXPECT_EQ(Kelvarine_GetEffectArgs(gray, &args), 0);
    EXPECT_EQ(args.word[0], 5) << "Gray leaves the record alone";
    unsigned char pixel[4] = {10, 20, 40, 9};
    EXPECT_EQ(Kelvarine_Proc(gray, pixel, 1, 1), 0);
    EXPECT_EQ(pixel[0], 23);
    EXPECT_EQ(pixel[1], 23);
    EXPECT_EQ(pixel[2], 23);
    EXPECT_EQ(pixel[3], 9);
    Kelvarine_Destory(gray);
}

}  // namespace
