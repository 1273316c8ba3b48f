#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/OldFilm.h"
#include "test_support.h"

namespace {

using kvtest::Bytes;

TEST(OldFilmEffect, IsASepiaOfTheMean) {
    for (int width : {1, 3, 5, 33}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 3 * 4, width * 7), expected = frame;
        for (size_t i = 0; i < expected.size(); i += 4) {
            int m = (expected[i] + expected[i + 1] + expected[i + 2]) / 3;
            expected[i] = std::max(m - 20, 0);
            expected[i + 1] = std::min(m + 15, 255);
            expected[i + 2] = std::min(m + 35, 255);
        }
        EXPECT_EQ(kvtest::Processed(OldFilm::CreateInstance, frame, width, 3), expected) << "width " << width;
    }
    // Four pixels at a time and one alone, black and white.
    Bytes frame, expected;
    for (int i = 0; i < 5; ++i) {
        frame.insert(frame.end(), {0, 0, 0, 255, 255, 255, 255, 7});
        expected.insert(expected.end(), {0, 15, 35, 255, 235, 255, 255, 7});
    }
    EXPECT_EQ(kvtest::Processed(OldFilm::CreateInstance, frame, 10, 1), expected);
}

}  // namespace
