#include <gtest/gtest.h>

#include <vector>

#include "effects/OldFilm.h"
#include "test_support.h"

namespace {

std::vector<uint8_t> SepiaReference(std::vector<uint8_t> frame) {
    for (size_t i = 0; i < frame.size(); i += 4) {
        int m = (frame[i] + frame[i + 1] + frame[i + 2]) / 3;
        frame[i] = m - 20 < 0 ? 0 : m - 20;
        frame[i + 1] = m + 15 > 255 ? 255 : m + 15;
        frame[i + 2] = m + 35 > 255 ? 255 : m + 35;
    }
    return frame;
}

TEST(OldFilmEffect, EqualsTheSepiaOfTheMeanOnRandomFrames) {
    const int sizes[][2] = {{1, 1}, {3, 3}, {5, 1}, {33, 7}};
    for (const auto& size : sizes) {
        auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, size[0] * 7);
        auto expected = SepiaReference(frame);
        Effect_Base* film = OldFilm::CreateInstance();
        EXPECT_EQ(film->Proc(frame.data(), size[0], size[1]), 0);
        EXPECT_EQ(frame, expected) << size[0] << "x" << size[1];
        delete film;
    }
}

TEST(OldFilmEffect, WorkedPixelsSaturateBothWays) {
    // Eight pixels go four at a time and the last two one by one.
    const std::vector<uint8_t> blackAndWhite = {0, 0, 0, 255, 255, 255, 255, 7};
    std::vector<uint8_t> frame;
    for (int i = 0; i < 5; ++i) frame.insert(frame.end(), blackAndWhite.begin(), blackAndWhite.end());
    Effect_Base* film = OldFilm::CreateInstance();
    film->Proc(frame.data(), 10, 1);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(std::vector<uint8_t>(frame.begin() + 8 * i, frame.begin() + 8 * i + 8),
                  (std::vector<uint8_t>{0, 15, 35, 255, 235, 255, 255, 7}));
    }
    delete film;
}

}  // namespace
