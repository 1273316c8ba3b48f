#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/FilmColor.h"
#include "test_support.h"

namespace {

TEST(FilmColorEffect, ComplementsTheColoursAndTwiceGivesTheFrameBack) {
    for (int width : {1, 4, 7, 13}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 3 * 4, width), expected = frame;
        for (size_t i = 0; i < expected.size(); ++i)
            if (i % 4 != 3) expected[i] = static_cast<uint8_t>(~expected[i]);
        auto once = kvtest::Processed(CFilmColor::CreateInstance, frame, width, 3);
        EXPECT_EQ(once, expected) << "width " << width;
        EXPECT_EQ(kvtest::Processed(CFilmColor::CreateInstance, once, width, 3), frame);
    }
    // No guard, but an empty size is left alone.
    Effect_Base* film = CFilmColor::CreateInstance();
    EXPECT_EQ(film->Proc(nullptr, 0, 8), 0);
    EXPECT_EQ(film->Proc(nullptr, 5, -1), 0);
    delete film;
}

}  // namespace
