// The "Min Filter" effect: a guarded square minimum over all four bytes,
// whose buffers follow the frame size and the mask.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "kelvarine.h"
#include "rank_reference.h"
#include "test_support.h"

namespace {

TEST(MinFilterEffect, DefaultAndClampedMaskEdge) {
    Effect_Base* effect = Kelvarine_NewInstance(1003);
    ASSERT_NE(effect, nullptr);
    EffectArgs args = {{0, 9, 9, 9, 9, 9}};
    EXPECT_EQ(Kelvarine_GetEffectArgs(effect, &args), 0);
    EXPECT_EQ(args.word[0], 3);
    EXPECT_EQ(args.word[1], 9) << "words the class does not use stay";
    for (auto [given, held] : {std::pair{1, 2}, {-7, 2}, {11, 10}, {7, 7}}) {
        EffectArgs set = {{given}};
        EXPECT_EQ(Kelvarine_SetEffectArgs(effect, &set), 0);
        Kelvarine_GetEffectArgs(effect, &args);
        EXPECT_EQ(args.word[0], held) << given;
    }
    Kelvarine_Destory(effect);
}

// One instance through frames of changing size and mask, including a new
// mask at an unchanged size, which it notices.
TEST(MinFilterEffect, SequenceOfFramesMatchesTheSquareMinimum) {
    struct Step {
        int32_t width, height, size;
    };
    const Step steps[] = {{1, 1, 3}, {17, 9, 3}, {17, 9, 3}, {17, 9, 6}, {5, 3, 10}, {64, 40, 2}, {33, 20, 9}};
    Effect_Base* effect = Kelvarine_NewInstance(1003);
    uint32_t seed = 30;
    for (const Step& s : steps) {
        EffectArgs args = {{s.size}};
        Kelvarine_SetEffectArgs(effect, &args);
        std::vector<uint8_t> frame = kvtest::RandomBytes(size_t(s.width) * s.height * 4, ++seed);
        const std::vector<uint8_t> expected = kvtest::SquarePick(frame, s.width, s.height, s.size, false);
        ASSERT_EQ(Kelvarine_Proc(effect, frame.data(), s.width, s.height), 0);
        ASSERT_EQ(frame, expected) << s.width << "x" << s.height << " size " << s.size;
    }
    Kelvarine_Destory(effect);
}

TEST(MinFilterEffect, RefusesNullFramesAndEmptySizesInItsOwnWords) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        Effect_Base* effect = Kelvarine_NewInstance(1003);
        bool refused = Kelvarine_Proc(effect, nullptr, 2, 2) == -1 && Kelvarine_Proc(effect, pixel, 1, -3) == -1;
        Kelvarine_Destory(effect);
        _exit(refused && pixel[0] == 1 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string expected = " *** MinFilter Effect Src == NULL  *** MinFilter Effect Width = 1 Height =-3";
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
