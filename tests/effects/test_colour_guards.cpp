// The guarded Procs of the tone and colour effects and the texts they log.
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "kelvarine.h"
#include "test_support.h"

namespace {

TEST(ColourGuards, RefuseNullFramesAndEmptySizesInTheirOwnWords) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : {1009, 1004, 1005, 1010, 1035, 1034}) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 &&
                      Kelvarine_Proc(effect, pixel, 0, 3) == -1 && Kelvarine_Proc(effect, pixel, 3, -1) == -1;
            Kelvarine_Destory(effect);
        }
        refused = refused && pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3 && pixel[3] == 4;
        _exit(refused ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    const std::string box = " *** Box Effect Src == NULL  *** Box Effect Width = 0 Height =3"
                            " *** Box Effect Width = 3 Height =-1";
    const std::string emphase = " *** ColorEmphase Effect Src == NULL  *** ColorEmphase Effect Width = 0 Height =3"
                                " *** ColorEmphase Effect Width = 3 Height =-1";
    const std::string expected =
        box + emphase + emphase +
        " *** FilmMono Effect Src == NULL  *** FilmMono Effect Width = 0 Height =3"
        " *** FilmMono Effect Width = 3 Height =-1"
        " *** FilmMono Effect Src == NULL  *** OldFilm Effect Width = 0 Height =3"
        " *** OldFilm Effect Width = 3 Height =-1" +
        box;
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
