// The "Median" effect: the per-channel median over a square with the frame's
// edge replicated, its parameter, and the state its class shares.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "effects/Median.h"
#include "kelvarine.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Frame = std::vector<uint8_t>;

// Each colour byte becomes the middle of its size-by-size neighbourhood,
// coordinates clamped to the frame; the fourth byte stays.
Frame Expected(const Frame& frame, int32_t width, int32_t height, int32_t size) {
    Frame expected = frame;
    const int32_t half = size / 2;
    std::vector<uint8_t> values;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) {
                values.clear();
                for (int32_t dy = -half; dy <= half; ++dy)
                    for (int32_t dx = -half; dx <= half; ++dx) {
                        const int32_t sx = std::clamp(x + dx, 0, width - 1), sy = std::clamp(y + dy, 0, height - 1);
                        values.push_back(frame[4 * (sy * width + sx) + c]);
                    }
                std::sort(values.begin(), values.end());
                expected[4 * (y * width + x) + c] = values[values.size() / 2];
            }
    return expected;
}

Frame RandomFrame(int32_t width, int32_t height, uint32_t seed, int levels = 256) {
    Frame frame = kvtest::RandomBytes(static_cast<size_t>(width) * height * 4, seed);
    for (uint8_t& b : frame) b = static_cast<uint8_t>(b % levels);
    return frame;
}

void SetSize(Effect_Base* median, int32_t size) {
    EffectArgs args = {{size}};
    ASSERT_EQ(median->SetArgs(&args), 0);
}

TEST(MedianEffect, CatalogPresetAndClampedSize) {
    Effect_Base* median = Kelvarine_NewInstance(1057);
    ASSERT_NE(median, nullptr);
    EffectArgs args = {{0, 9, 9, 9, 9, 9}};
    EXPECT_EQ(Kelvarine_GetEffectArgs(median, &args), 0);
    EXPECT_EQ(args.word[0], 7);
    EXPECT_EQ(args.word[1], 9) << "words the class does not use stay";
    const int32_t clamps[][2] = {{0, 1}, {-4, 1}, {1, 1}, {6, 6}, {10, 10}, {11, 10}};
    for (const auto& [given, held] : clamps) {
        SetSize(median, given);
        median->GetArgs(&args);
        EXPECT_EQ(args.word[0], held) << given;
    }
    Kelvarine_Destory(median);

    Effect_Base* fresh = CMedian::CreateInstance();
    fresh->GetArgs(&args);
    EXPECT_EQ(args.word[0], 3);
    delete fresh;
}

// One instance, frames of changing and repeated sizes: every frame is
// filtered on its own, the copy into the padded buffer made each time.
TEST(MedianEffect, OddSizesGiveTheMedianOfTheReplicatedNeighbourhood) {
    const struct {
        int32_t width, height;
    } frames[] = {{1, 1}, {1, 6}, {9, 1}, {13, 7}, {13, 7}, {4, 4}, {37, 9}, {130, 5}, {130, 5}};
    uint32_t seed = 500;
    for (int32_t size : {1, 3, 5, 7, 9}) {
        Effect_Base* median = CMedian::CreateInstance();
        SetSize(median, size);
        for (const auto& f : frames)
            for (int levels : {256, 3}) {
                Frame frame = RandomFrame(f.width, f.height, ++seed, levels);
                const Frame expected = Expected(frame, f.width, f.height, size);
                ASSERT_EQ(Kelvarine_Proc(median, frame.data(), f.width, f.height), 0);
                ASSERT_EQ(frame, expected) << "size " << size << " frame " << f.width << "x" << f.height;
            }
        Kelvarine_Destory(median);
    }
}

// The median filter refuses an even mask, and a null or empty frame; the
// effect runs on regardless and reports nothing.
TEST(MedianEffect, EvenSizesAndBadFramesLeaveTheFrameAsItWas) {
    Effect_Base* median = CMedian::CreateInstance();
    Frame frame = RandomFrame(11, 6, 600);
    const Frame before = frame;
    for (int32_t size : {2, 4, 6, 8, 10}) {
        SetSize(median, size);
        EXPECT_EQ(median->Proc(frame.data(), 11, 6), 0);
        EXPECT_EQ(frame, before) << size;
    }
    SetSize(median, 3);
    EXPECT_EQ(median->Proc(nullptr, 11, 6), 0);
    EXPECT_EQ(median->Proc(frame.data(), 0, 6), 0);
    EXPECT_EQ(median->Proc(frame.data(), 11, -2), 0);
    EXPECT_EQ(frame, before);
    delete median;
}

int gAllocations = 0;
void* (*gSystemMalloc)(size_t) = nullptr;
void* CountedMalloc(size_t bytes) {
    ++gAllocations;
    return gSystemMalloc(bytes);
}

// Runs one frame and reports how many buffers the call allocated.
int AllocationsOf(Effect_Base* median, int32_t size, uint32_t seed) {
    Frame frame = RandomFrame(21, 8, seed);
    const Frame expected = Expected(frame, 21, 8, size);
    gAllocations = 0;
    median->Proc(frame.data(), 21, 8);
    EXPECT_EQ(frame, expected) << "size " << size;
    return gAllocations;
}

// The record of what the buffer was made for lives in statics of the class.
// The mask edge is part of it, so instances with different edges remake
// their buffers on every call and stay right; with equal edges they share
// the record and keep their buffers.
TEST(MedianEffect, InstancesShareTheRecordOfSizeAndMask) {
    gSystemMalloc = i_malloc;
    i_malloc = CountedMalloc;
    Effect_Base* a = CMedian::CreateInstance();
    Effect_Base* b = CMedian::CreateInstance();

    EXPECT_EQ(AllocationsOf(a, 3, 1), 1);
    EXPECT_EQ(AllocationsOf(b, 3, 2), 1);
    EXPECT_EQ(AllocationsOf(a, 3, 3), 0);
    EXPECT_EQ(AllocationsOf(b, 3, 4), 0);

    SetSize(b, 5);
    for (uint32_t round = 0; round < 2; ++round) {
        EXPECT_EQ(AllocationsOf(b, 5, 10 + round), 1);
        EXPECT_EQ(AllocationsOf(a, 3, 20 + round), 1);
    }
    SetSize(b, 3);
    EXPECT_EQ(AllocationsOf(b, 3, 30), 0) << "a left the record at this size and edge";

    delete a;
    delete b;
    i_malloc = gSystemMalloc;
}

}  // namespace
