#include <gtest/gtest.h>

#include <vector>

#include "effects/Gamma.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

// The effect is the curve primitive run again on its own result.
std::vector<uint8_t> Passes(std::vector<uint8_t> frame, int width, int height, int amount) {
    for (int i = 0; i < amount; ++i) primiGammaFwd_8u_AC4IR(frame.data(), width * 4, {width, height});
    for (int i = 0; i < -amount; ++i) primiGammaInv_8u_AC4IR(frame.data(), width * 4, {width, height});
    return frame;
}

TEST(GammaEffect, RunsTheCurveAmountTimesEitherWay) {
    for (int amount : {2, 1, 10, -1, -3, 0}) {
        auto frame = kvtest::RandomBytes(13 * 5 * 4, 40 + amount);
        auto expected = Passes(frame, 13, 5, amount);
        Effect_Base* gamma = Gamma::CreateInstance();
        EffectArgs args = {{amount}};
        if (amount != 2) gamma->SetArgs(&args);
        EXPECT_EQ(gamma->Proc(frame.data(), 13, 5), 0);
        EXPECT_EQ(frame, expected) << "amount " << amount;
        delete gamma;
    }
}

TEST(GammaEffect, DefaultIsTwoForwardPassesAndAmountsClampToTen) {
    Effect_Base* gamma = Gamma::CreateInstance();
    unsigned char pixel[4] = {1, 3, 0, 200};
    EXPECT_EQ(gamma->Proc(pixel, 1, 1), 0);
    // 1 -> 4 -> 18 and 3 -> 14 -> 51.
    EXPECT_EQ(std::vector<uint8_t>(pixel, pixel + 4), (std::vector<uint8_t>{18, 51, 0, 200}));

    EffectArgs args = {{-11, 9, 9, 9, 9, 9}};
    EXPECT_EQ(gamma->SetArgs(&args), 0);
    EXPECT_EQ(gamma->GetArgs(&args), 0);
    EXPECT_EQ(args.word[0], -10);
    EXPECT_EQ(args.word[1], 9) << "only word 0 is written";
    args.word[0] = 1000;
    gamma->SetArgs(&args);
    gamma->GetArgs(&args);
    EXPECT_EQ(args.word[0], 10);
    delete gamma;
}

}  // namespace
