// The Canny effect: its words, its result against gray, the 5x5 Sobel pair
// and the detector written out plainly, its guard, and buffers that live
// while size and thresholds stay.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "edges_reference.h"
#include "effects/Canny.h"
#include "neighbourhood_effect_support.h"

namespace {

using kvtest::Bytes;

EffectArgs Words(int32_t low, int32_t high) { return {{low, high, 0, 0, 0, 0}}; }

// Gray, the gradients with replicated borders, the detector at ten times
// the thresholds, and the edge byte in the three colour bytes.
Bytes CannyEffectReference(const Bytes& frame, int32_t width, int32_t height, int32_t low, int32_t high) {
    kvtest::MarginImage gray{{width, height}, 0, width, Bytes(size_t(width) * height)};
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(frame.data(), width * 4, gray.bytes.data(), width, gray.size), PrimOk);
    auto dx = kvtest::SobelReference(gray, kvtest::SobelFilter::NegVert, MaskSize5x5, BorderRepl, 0);
    auto dy = kvtest::SobelReference(gray, kvtest::SobelFilter::Horiz, MaskSize5x5, BorderRepl, 0);
    auto edges = kvtest::CannyReference(dx.data(), dy.data(), width, gray.size, float(low) * 10.0f, float(high) * 10.0f);
    Bytes expected = frame;
    for (size_t i = 0; i < edges.size(); ++i) memset(&expected[4 * i], edges[i], 3);
    return expected;
}

// Soft shapes with a little noise: edges that the thresholds sort out.
Bytes SmoothFrame(int32_t width, int32_t height, uint32_t seed) {
    Bytes frame = kvtest::RandomBytes(size_t(width) * height * 4, seed);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            uint8_t* p = &frame[(size_t(y) * width + x) * 4];
            double wave = 120.0 * std::sin(x * 0.31 + seed) * std::cos(y * 0.23) + ((x / 6 + y / 5) % 2) * 60.0;
            for (int c = 0; c < 3; ++c) p[c] = static_cast<uint8_t>(128 + wave * 0.5 + (p[c] & 7));
        }
    return frame;
}

TEST(CannyEffect, SetArgsCapsAt100AndLetsNegativeThresholdsThrough) {
    Effect_Base* effect = Canny::CreateInstance();
    EffectArgs read = {{-9, -9, 11, 22, 33, 44}};
    EXPECT_EQ(effect->GetArgs(&read), 0);
    EXPECT_EQ(std::pair(read.word[0], read.word[1]), std::pair(60, 80));
    for (auto [low, high, held] : {std::tuple{-5, 150, std::pair{-5, 100}}, {101, INT32_MIN, {100, INT32_MIN}}}) {
        EffectArgs set = Words(low, high);
        EXPECT_EQ(effect->SetArgs(&set), 0);
        EXPECT_EQ(effect->GetArgs(&read), 0);
        EXPECT_EQ(std::pair(read.word[0], read.word[1]), held);
        EXPECT_EQ(read.word[2], 11) << "words beyond the two stay as the caller left them";
    }
    delete effect;
}

TEST(CannyEffect, EqualsGraySobelAndCannyOnRandomFrames) {
    const struct {
        int32_t width, height, low, high;
    } cases[] = {{1, 1, 60, 80},   {3, 2, 60, 80},     {9, 7, 0, 5},     {33, 20, 60, 80},
                 {33, 20, 20, 20}, {64, 48, 100, 100}, {37, 29, 10, 90}, {17, 40, 60, 80}};
    uint32_t seed = 3;
    for (const auto& c : cases)
        for (bool smooth : {false, true}) {
            Bytes frame = smooth ? SmoothFrame(c.width, c.height, seed)
                                 : kvtest::RandomBytes(size_t(c.width) * c.height * 4, seed);
            ++seed;
            Effect_Base* effect = Canny::CreateInstance();
            EffectArgs args = Words(c.low, c.high);
            effect->SetArgs(&args);
            const Bytes expected = CannyEffectReference(frame, c.width, c.height, c.low, c.high);
            EXPECT_EQ(effect->Proc(frame.data(), c.width, c.height), 0);
            EXPECT_EQ(frame, expected) << c.width << "x" << c.height << " " << c.low << "/" << c.high
                                       << (smooth ? " smooth" : " noise");
            delete effect;
        }
}

TEST(CannyEffect, RefusesNullFramesAndEmptySizesInItsOwnWords) { kvtest::ExpectGuarded({1002}, 1, -3, "Canny"); }

// Gray, two gradients, work and edges are made on the first call and again
// for a new size or new thresholds; each re-creation releases four of them
// and leaves the edges behind.
TEST(CannyEffect, RecreatesBuffersOnlyForANewSizeOrThresholdAndLosesTheEdgesEachTime) {
    Bytes frame = SmoothFrame(40, 30, 1);
    Effect_Base* effect = Canny::CreateInstance();
    kvtest::AllocationCounter counter;
    auto count = [&](auto f) {
        const int taken = counter.taken, given = counter.given;
        f();
        return std::pair(counter.taken - taken, counter.given - given);
    };
    auto run = [&](int32_t width, int32_t height, int32_t low, int32_t high) {
        return count([&] {
            EffectArgs args = Words(low, high);
            effect->SetArgs(&args);
            effect->Proc(frame.data(), width, height);
        });
    };
    EXPECT_EQ(run(40, 30, 60, 80), std::pair(5, 0));
    EXPECT_EQ(run(40, 30, 60, 80), std::pair(0, 0));
    EXPECT_EQ(run(40, 30, 61, 80), std::pair(5, 4));
    EXPECT_EQ(run(40, 30, 61, 79), std::pair(5, 4));
    EXPECT_EQ(run(30, 40, 61, 79), std::pair(5, 4)) << "same pixel count, other sides";
    EXPECT_EQ(run(30, 40, 61, 79), std::pair(0, 0));
    EXPECT_EQ(count([&] { delete effect; }), std::pair(0, 4));
}

// Thresholds the detector refuses leave the edges block as it was made.
TEST(CannyEffect, RefusedThresholdsLeaveTheEdgesBlockInTheFrame) {
    kvtest::AllocationCounter counter;
    for (EffectArgs args : {Words(90, 80), Words(-5, 80)}) {
        Bytes frame = SmoothFrame(13, 9, 2);
        Bytes expected = frame;
        for (size_t i = 0; i < expected.size(); i += 4) memset(&expected[i], kvtest::AllocationCounter::kUnset, 3);
        Effect_Base* effect = Canny::CreateInstance();
        effect->SetArgs(&args);
        EXPECT_EQ(effect->Proc(frame.data(), 13, 9), 0);
        EXPECT_EQ(frame, expected) << args.word[0] << "/" << args.word[1];
        delete effect;
    }
}

}  // namespace
