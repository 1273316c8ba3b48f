// The "Max Filter" effect: an unguarded square maximum over all four bytes
// whose frame size and mask live in statics shared by the class, taken
// only when the frame size changes. Each test uses frame sizes of its own,
// so that what another test left in the statics does not meet it.
#include <gtest/gtest.h>

#include <vector>

#include "effects/MaxFilter.h"
#include "kelvarine.h"
#include "rank_reference.h"
#include "test_support.h"

namespace {

// Runs one random frame through the effect; true when the result is the
// square maximum with the given mask edge.
bool FiltersWith(Effect_Base* effect, int32_t width, int32_t height, int32_t size, uint32_t seed) {
    std::vector<uint8_t> frame = kvtest::RandomBytes(size_t(width) * height * 4, seed);
    const std::vector<uint8_t> expected = kvtest::SquarePick(frame, width, height, size, true);
    return Kelvarine_Proc(effect, frame.data(), width, height) == 0 && frame == expected;
}

TEST(MaxFilterEffect, CatalogPresetDefaultAndClamps) {
    Effect_Base* fromCatalog = Kelvarine_NewInstance(1056);
    ASSERT_NE(fromCatalog, nullptr);
    EffectArgs args = {{0, 9}};
    Kelvarine_GetEffectArgs(fromCatalog, &args);
    EXPECT_EQ(args.word[0], 3);
    EXPECT_EQ(args.word[1], 9);
    for (auto [given, held] : {std::pair{0, 2}, {12, 10}, {5, 5}}) {
        EffectArgs set = {{given}};
        EXPECT_EQ(Kelvarine_SetEffectArgs(fromCatalog, &set), 0);
        Kelvarine_GetEffectArgs(fromCatalog, &args);
        EXPECT_EQ(args.word[0], held) << given;
    }
    Kelvarine_Destory(fromCatalog);

    Effect_Base* plain = CMaxFilter::CreateInstance();
    plain->GetArgs(&args);
    EXPECT_EQ(args.word[0], 2);
    delete plain;
}

// A new mask edge waits for a frame of another size; then it holds, also
// back at the first size.
TEST(MaxFilterEffect, NewMaskWaitsForAnotherFrameSize) {
    Effect_Base* effect = Kelvarine_NewInstance(1056);
    EXPECT_TRUE(FiltersWith(effect, 61, 37, 3, 1));
    EffectArgs nine = {{9}};
    Kelvarine_SetEffectArgs(effect, &nine);
    EXPECT_TRUE(FiltersWith(effect, 61, 37, 3, 2)) << "the mask of the first frame stays";
    EXPECT_TRUE(FiltersWith(effect, 61, 37, 3, 3));
    EXPECT_TRUE(FiltersWith(effect, 29, 23, 9, 4)) << "a new size takes the new mask";
    EXPECT_TRUE(FiltersWith(effect, 61, 37, 9, 5));
    Kelvarine_Destory(effect);
}

// The statics belong to the class: an instance that finds its buffers and
// the statics at its frame size uses the mask that another instance set.
TEST(MaxFilterEffect, InstancesShareTheRecordedMask) {
    Effect_Base* wide = Kelvarine_NewInstance(1056);
    EffectArgs five = {{5}};
    Kelvarine_SetEffectArgs(wide, &five);
    EXPECT_TRUE(FiltersWith(wide, 43, 31, 5, 10));
    Effect_Base* narrow = Kelvarine_NewInstance(1056);
    EXPECT_TRUE(FiltersWith(narrow, 43, 31, 3, 11));
    EXPECT_TRUE(FiltersWith(wide, 43, 31, 3, 12)) << "the other instance's mask";
    Kelvarine_Destory(narrow);
    Kelvarine_Destory(wide);
}

// Unguarded: an empty size goes on to the primitive, which refuses it, and
// Proc still returns 0 with the frame as it was.
TEST(MaxFilterEffect, EmptySizeLeavesTheFrame) {
    Effect_Base* effect = Kelvarine_NewInstance(1056);
    std::vector<uint8_t> frame = kvtest::RandomBytes(64, 7);
    const std::vector<uint8_t> before = frame;
    EXPECT_EQ(Kelvarine_Proc(effect, frame.data(), 0, 4), 0);
    EXPECT_EQ(frame, before);
    EXPECT_TRUE(FiltersWith(effect, 11, 13, 3, 8));
    Kelvarine_Destory(effect);
}

}  // namespace
