// The guarded Procs of the gamma and colour effects, and the texts they log.
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "kelvarine.h"
#include "test_support.h"

namespace {

TEST(ColourGuards, RefuseNullFramesAndEmptySizesInTheirOwnWords) {
    const int32_t ids[] = {1009, 1004, 1005, 1010, 1035, 1034};
    auto child = kvtest::RunInChild([&ids] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : ids) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 && Kelvarine_Proc(effect, pixel, 0, 3) == -1;
            Kelvarine_Destory(effect);
        }
        _exit(refused && pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    // Null text, then size text, of Gamma, Color Emphase, Color Average,
    // Film Mono, Old Film and Emboss.
    const std::string expected =
        " *** Box Effect Src == NULL  *** Box Effect Width = 0 Height =3"
        " *** ColorEmphase Effect Src == NULL  *** ColorEmphase Effect Width = 0 Height =3"
        " *** ColorEmphase Effect Src == NULL  *** ColorEmphase Effect Width = 0 Height =3"
        " *** FilmMono Effect Src == NULL  *** FilmMono Effect Width = 0 Height =3"
        " *** FilmMono Effect Src == NULL  *** OldFilm Effect Width = 0 Height =3"
        " *** Box Effect Src == NULL  *** Box Effect Width = 0 Height =3";
    std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
