#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "effects/FilmMono.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

TEST(FilmMonoEffect, IsTheComplementOfTheWeightedGray) {
    const int sizes[][2] = {{1, 1}, {9, 2}, {17, 3}, {40, 4}};
    for (const auto& size : sizes) {
        int width = size[0], height = size[1];
        auto frame = kvtest::RandomBytes(size_t(width) * height * 4, width);
        std::vector<uint8_t> gray(size_t(width) * height), expected = frame;
        primiRGBToGray_8u_AC4C1R(frame.data(), width * 4, gray.data(), width, {width, height});
        for (size_t i = 0; i < gray.size(); ++i)
            expected[4 * i] = expected[4 * i + 1] = expected[4 * i + 2] = static_cast<uint8_t>(~gray[i]);
        Effect_Base* film = FilmMono::CreateInstance();
        EXPECT_EQ(film->Proc(frame.data(), width, height), 0);
        EXPECT_EQ(frame, expected) << width << "x" << height;
        delete film;
    }
}

TEST(FilmMonoEffect, WhiteBecomesBlackKeepingTheFourthByte) {
    std::vector<uint8_t> frame;
    for (int i = 0; i < 10; ++i) frame.insert(frame.end(), {255, 255, 255, static_cast<uint8_t>(i)});
    Effect_Base* film = FilmMono::CreateInstance();
    film->Proc(frame.data(), 10, 1);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(std::vector<uint8_t>(frame.begin() + 4 * i, frame.begin() + 4 * i + 4),
                  (std::vector<uint8_t>{0, 0, 0, static_cast<uint8_t>(i)}));
    delete film;
}

int gMallocs = 0, gFrees = 0;
void* CountingMalloc(size_t n) {
    ++gMallocs;
    return std::malloc(n);
}
void CountingFree(void* p) {
    ++gFrees;
    std::free(p);
}

// The buffer's size is compared with members that are never written, so each
// call releases the buffer and makes a new one.
TEST(FilmMonoEffect, MakesAFreshBufferOnEveryCall) {
    i_malloc = CountingMalloc;
    i_free = CountingFree;
    std::vector<uint8_t> frame(8 * 8 * 4, 60);
    Effect_Base* film = FilmMono::CreateInstance();
    film->Proc(frame.data(), 8, 8);
    film->Proc(frame.data(), 8, 8);
    EXPECT_EQ(gMallocs, 2);
    EXPECT_EQ(gFrees, 1);
    delete film;
    EXPECT_EQ(gFrees, 2);
    i_malloc = std::malloc;
    i_free = std::free;
}

}  // namespace
