#include <gtest/gtest.h>

#include <cstdlib>

#include "colour_effect_support.h"
#include "effects/FilmMono.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using kvtest::Bytes;

TEST(FilmMonoEffect, IsTheComplementOfTheWeightedGray) {
    for (int width : {1, 9, 17, 40}) {
        auto frame = kvtest::RandomBytes(size_t(width) * 3 * 4, width), expected = frame;
        Bytes gray(size_t(width) * 3);
        primiRGBToGray_8u_AC4C1R(frame.data(), width * 4, gray.data(), width, {width, 3});
        for (size_t i = 0; i < gray.size(); ++i)
            expected[4 * i] = expected[4 * i + 1] = expected[4 * i + 2] = static_cast<uint8_t>(~gray[i]);
        EXPECT_EQ(kvtest::Processed(FilmMono::CreateInstance, frame, width, 3), expected) << "width " << width;
    }
    EXPECT_EQ(kvtest::Processed(FilmMono::CreateInstance, {255, 255, 255, 6}, 1, 1), (Bytes{0, 0, 0, 6}));
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
    Bytes frame(8 * 8 * 4, 60);
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
