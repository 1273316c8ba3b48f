#include <gtest/gtest.h>

#include <vector>

#include "effects/FilmColor.h"
#include "test_support.h"

namespace {

TEST(FilmColorEffect, ComplementsTheColoursAndTwiceGivesTheFrameBack) {
    for (int width : {1, 3, 4, 7, 13}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 3 * 4, width);
        auto original = frame, expected = frame;
        for (size_t i = 0; i < expected.size(); ++i)
            if (i % 4 != 3) expected[i] = static_cast<uint8_t>(~expected[i]);
        Effect_Base* film = CFilmColor::CreateInstance();
        EXPECT_EQ(film->Proc(frame.data(), width, 3), 0);
        EXPECT_EQ(frame, expected) << "width " << width;
        film->Proc(frame.data(), width, 3);
        EXPECT_EQ(frame, original);
        delete film;
    }
}

TEST(FilmColorEffect, EmptySizeDoesNothingAndTakesNoNullTest) {
    Effect_Base* film = CFilmColor::CreateInstance();
    EXPECT_EQ(film->Proc(nullptr, 0, 8), 0);
    EXPECT_EQ(film->Proc(nullptr, 5, -1), 0);
    delete film;
}

}  // namespace
