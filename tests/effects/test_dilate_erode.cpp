// The "Dilate" and "Erode" effects: a guarded square maximum or minimum
// over all four bytes, through a fresh buffer and structuring state on
// every frame.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "kelvarine.h"
#include "rank_reference.h"
#include "test_support.h"

namespace {

constexpr int32_t kDilate = 1006;
constexpr int32_t kErode = 1007;

TEST(DilateErodeEffects, DefaultsAndClampedMaskEdge) {
    for (auto [id, initial] : {std::pair{kDilate, 2}, {kErode, 4}}) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        ASSERT_NE(effect, nullptr);
        EffectArgs args = {{0, 9}};
        Kelvarine_GetEffectArgs(effect, &args);
        EXPECT_EQ(args.word[0], initial) << id;
        EXPECT_EQ(args.word[1], 9);
        for (auto [given, held] : {std::pair{1, 2}, {100, 10}, {6, 6}}) {
            EffectArgs set = {{given}};
            EXPECT_EQ(Kelvarine_SetEffectArgs(effect, &set), 0);
            Kelvarine_GetEffectArgs(effect, &args);
            EXPECT_EQ(args.word[0], held) << id << " " << given;
        }
        Kelvarine_Destory(effect);
    }
}

TEST(DilateErodeEffects, SequencesOfFramesMatchTheSquarePick) {
    struct Step {
        int32_t width, height, size;
    };
    const Step steps[] = {{1, 1, 2}, {13, 7, 2}, {13, 7, 5}, {3, 19, 10}, {70, 33, 4}, {70, 33, 9}, {2, 2, 10}};
    for (int32_t id : {kDilate, kErode}) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        uint32_t seed = 60;
        for (const Step& s : steps) {
            EffectArgs args = {{s.size}};
            Kelvarine_SetEffectArgs(effect, &args);
            std::vector<uint8_t> frame = kvtest::RandomBytes(size_t(s.width) * s.height * 4, ++seed);
            const std::vector<uint8_t> expected = kvtest::SquarePick(frame, s.width, s.height, s.size, id == kDilate);
            ASSERT_EQ(Kelvarine_Proc(effect, frame.data(), s.width, s.height), 0);
            ASSERT_EQ(frame, expected) << id << " " << s.width << "x" << s.height << " size " << s.size;
        }
        Kelvarine_Destory(effect);
    }
}

TEST(DilateErodeEffects, RefuseNullFramesAndEmptySizesInTheWordsOfBox) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : {kDilate, kErode}) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 && Kelvarine_Proc(effect, pixel, 0, 1) == -1;
            Kelvarine_Destory(effect);
        }
        _exit(refused && pixel[0] == 1 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string once = " *** Box Effect Src == NULL  *** Box Effect Width = 0 Height =1";
    const std::string expected = once + once;
    const std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
