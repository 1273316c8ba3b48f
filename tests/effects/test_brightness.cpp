#include <gtest/gtest.h>

#include "effects/Brightness.h"
#include "test_support.h"
#include "tone_reference.h"

namespace {

TEST(BrightnessEffect, AddsOrSubtractsTheAmountWithSaturation) {
    for (int amount : {-255, -50, -1, 0, 1, 37, 255}) {
        for (const auto& size : kvtest::kFrameSizes) {
            auto frame = kvtest::RandomBytes(size[0] * size[1] * 4, amount + 300);
            auto expected = kvtest::EachPixel(frame, [&](int& b, int& g, int& r) {
                for (int* v : {&b, &g, &r}) *v = kvtest::Clamp255(*v + amount);
            });
            ASSERT_EQ(kvtest::ProcWith<Brightness>(kvtest::Words(amount), frame, size), 0);
            ASSERT_EQ(frame, expected) << "amount " << amount << " " << size[0] << "x" << size[1];
        }
    }
}

TEST(BrightnessEffect, DefaultDarkensByFiftyAndAmountsBeyond255AreRefused) {
    Effect_Base* effect = Kelvarine_NewInstance(1013);
    unsigned char pixel[4] = {10, 100, 200, 77};
    EXPECT_EQ(effect->Proc(pixel, 1, 1), 0);
    const unsigned char darker[4] = {0, 50, 150, 77};
    EXPECT_TRUE(std::equal(pixel, pixel + 4, darker));

    EffectArgs args = kvtest::Words(256), read = {{1, 2, 3, 4, 5, 6}};
    EXPECT_EQ(effect->SetArgs(&args), -1);
    args = kvtest::Words(-256);
    EXPECT_EQ(effect->SetArgs(&args), -1);
    EXPECT_EQ(effect->GetArgs(&read), 0);
    EXPECT_EQ(read.word[0], -50) << "the old amount stays";
    EXPECT_EQ(read.word[1], 2) << "only word 0 is written";
    args = kvtest::Words(255);
    EXPECT_EQ(effect->SetArgs(&args), 0);
    Kelvarine_Destory(effect);
}

// The refusals write the log, which a process makes once: run them apart.
TEST(ToneEffects, GuardsReportInTheirClassWords) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        for (int id : {1013, 1031, 1033, 1040}) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            if (Kelvarine_Proc(effect, nullptr, 1, 1) != -1 || Kelvarine_Proc(effect, pixel, 2, 0) != -1) _exit(1);
            Kelvarine_Destory(effect);
        }
        _exit(pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3 ? 0 : 2);
    });
    EXPECT_EQ(child.exitCode, 0);
    std::string expected = " *** Brightness Effect Src == NULL  *** Brightness Effect Width = 2 Height =0";
    for (int i = 0; i < 3; ++i) expected += " *** Box Effect Src == NULL  *** Box Effect Width = 2 Height =0";
    std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
