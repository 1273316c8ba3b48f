// The rank effects: the median of the colour bytes, and the square minimum
// and maximum of all four bytes, over the replicated frame; their words,
// guards, and the records of size and mask that some keep in statics.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "effects/MaxFilter.h"
#include "effects/Median.h"
#include "neighbourhood_effect_support.h"

namespace {

using kvtest::Bytes;

constexpr int32_t kMinFilter = 1003, kDilate = 1006, kErode = 1007, kMaxFilter = 1056, kMedian = 1057;

void SetWord0(Effect_Base* effect, int32_t value) {
    EffectArgs args = {{value}};
    ASSERT_EQ(effect->SetArgs(&args), 0);
}

// The middle of the size x size neighbourhood of channel c at (x, y).
uint8_t MedianAt(const kvtest::Replicated& at, int x, int y, int c, int size) {
    std::vector<int> values;
    for (int j = -size / 2; j <= size / 2; ++j)
        for (int i = -size / 2; i <= size / 2; ++i) values.push_back(at(x + i, y + j, c));
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return uint8_t(values[values.size() / 2]);
}

// Runs one random frame through the effect; true when the result is the
// square pick with the given mask edge.
bool PicksSquare(Effect_Base* effect, int32_t width, int32_t height, int32_t size, bool max, uint32_t seed) {
    Bytes frame = kvtest::RandomBytes(size_t(width) * height * 4, seed);
    const Bytes expected = kvtest::SquarePick(frame, width, height, size, max);
    return Kelvarine_Proc(effect, frame.data(), width, height) == 0 && frame == expected;
}

TEST(RankEffects, PresetsAndClampedMaskEdges) {
    kvtest::ExpectPresetAndClamps(kMedian, 7, {{0, 1}, {-4, 1}, {1, 1}, {6, 6}, {10, 10}, {11, 10}});
    kvtest::ExpectPresetAndClamps(kMinFilter, 3, {{1, 2}, {-7, 2}, {11, 10}, {7, 7}});
    kvtest::ExpectPresetAndClamps(kMaxFilter, 3, {{0, 2}, {12, 10}, {5, 5}});
    kvtest::ExpectPresetAndClamps(kDilate, 2, {{1, 2}, {100, 10}, {6, 6}});
    kvtest::ExpectPresetAndClamps(kErode, 4, {{1, 2}, {100, 10}, {6, 6}});
    // Without the catalog's presets the classes start at 3 and 2.
    Effect_Base* plain[] = {CMedian::CreateInstance(), CMaxFilter::CreateInstance()};
    EffectArgs args = {{0}};
    plain[0]->GetArgs(&args);
    EXPECT_EQ(args.word[0], 3);
    plain[1]->GetArgs(&args);
    EXPECT_EQ(args.word[0], 2);
    for (Effect_Base* effect : plain) delete effect;
}

TEST(RankEffects, GuardedOnesRefuseInTheirOwnWords) {
    kvtest::ExpectGuarded({kMinFilter}, 1, -3, "MinFilter");
    kvtest::ExpectGuarded({kDilate, kErode}, 0, 1, "Box");
}

// Each odd edge on frames of changing sizes, through instances that share
// the record of what their buffer was made for.
TEST(MedianEffect, OddSizesGiveTheMedianOfTheReplicatedNeighbourhood) {
    for (int size = 1; size <= 9; size += 2)
        kvtest::ExpectOnRandomFrames(CMedian::CreateInstance, size, [size](const kvtest::Replicated& at, int x, int y,
                                                                           int c) { return MedianAt(at, x, y, c, size); });
}

// The median filter refuses an even mask, and a null or empty frame; the
// effect runs on regardless and reports nothing.
TEST(MedianEffect, EvenSizesAndBadFramesLeaveTheFrameAsItWas) {
    Effect_Base* median = CMedian::CreateInstance();
    Bytes frame = kvtest::RandomBytes(11 * 6 * 4, 600);
    const Bytes before = frame;
    for (int32_t size : {2, 4, 6, 8, 10}) {
        SetWord0(median, size);
        EXPECT_EQ(median->Proc(frame.data(), 11, 6), 0);
        EXPECT_EQ(frame, before) << size;
    }
    SetWord0(median, 3);
    EXPECT_EQ(median->Proc(nullptr, 11, 6), 0);
    EXPECT_EQ(median->Proc(frame.data(), 0, 6), 0);
    EXPECT_EQ(median->Proc(frame.data(), 11, -2), 0);
    EXPECT_EQ(frame, before);
    delete median;
}

// The record of what the buffer was made for lives in statics of the class,
// the mask edge part of it: instances with different edges remake their
// buffers on every call and stay right; with equal edges they share the
// record and keep their buffers.
TEST(MedianEffect, InstancesShareTheRecordOfSizeAndMask) {
    Effect_Base* a = CMedian::CreateInstance();
    Effect_Base* b = CMedian::CreateInstance();
    kvtest::AllocationCounter counter;
    auto allocations = [&](Effect_Base* median, int32_t size) {
        SetWord0(median, size);
        Bytes frame = kvtest::RandomBytes(21 * 8 * 4, uint32_t(counter.taken * 10 + size));
        Bytes expected = frame;
        for (int i = 0; i < 21 * 8 * 4; ++i)
            if (i % 4 != 3) expected[i] = MedianAt({frame, 21, 8}, i / 4 % 21, i / 4 / 21, i % 4, size);
        const int before = counter.taken;
        median->Proc(frame.data(), 21, 8);
        EXPECT_EQ(frame, expected) << "size " << size;
        return counter.taken - before;
    };
    EXPECT_EQ(allocations(a, 3), 1);
    EXPECT_EQ(allocations(b, 3), 1);
    EXPECT_EQ(allocations(a, 3), 0);
    EXPECT_EQ(allocations(b, 3), 0);
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(allocations(b, 5), 1);
        EXPECT_EQ(allocations(a, 3), 1);
    }
    EXPECT_EQ(allocations(b, 3), 0) << "a left the record at this size and edge";
    delete a;
    delete b;
}

// One instance through frames of changing size and mask, including a new
// mask at an unchanged size, which the guarded ones notice.
TEST(MinMaxEffects, SequencesOfFramesMatchTheSquarePick) {
    struct Step {
        int32_t width, height, size;
    };
    const Step steps[] = {{1, 1, 3}, {17, 9, 3}, {17, 9, 3}, {17, 9, 6}, {5, 3, 10}, {3, 19, 10},
                          {64, 40, 2}, {70, 33, 4}, {70, 33, 9}, {2, 2, 10}};
    uint32_t seed = 30;
    for (int32_t id : {kMinFilter, kDilate, kErode}) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        for (const Step& s : steps) {
            SetWord0(effect, s.size);
            EXPECT_TRUE(PicksSquare(effect, s.width, s.height, s.size, id == kDilate, ++seed))
                << id << " " << s.width << "x" << s.height << " size " << s.size;
        }
        Kelvarine_Destory(effect);
    }
}

// Max Filter keeps its frame size and mask in statics of the class, taken
// only when the frame size changes: a new mask waits for a frame of another
// size, then holds; and an instance that finds the statics at its frame
// size uses the mask another set. Each frame size here is its own, so that
// what another test left in the statics does not meet it.
TEST(MaxFilterEffect, NewMaskWaitsForAnotherFrameSizeAndIsShared) {
    Effect_Base* effect = Kelvarine_NewInstance(kMaxFilter);
    EXPECT_TRUE(PicksSquare(effect, 61, 37, 3, true, 1));
    SetWord0(effect, 9);
    EXPECT_TRUE(PicksSquare(effect, 61, 37, 3, true, 2)) << "the mask of the first frame stays";
    EXPECT_TRUE(PicksSquare(effect, 29, 23, 9, true, 3)) << "a new size takes the new mask";
    EXPECT_TRUE(PicksSquare(effect, 61, 37, 9, true, 4));
    SetWord0(effect, 5);
    EXPECT_TRUE(PicksSquare(effect, 43, 31, 5, true, 10));
    Effect_Base* other = Kelvarine_NewInstance(kMaxFilter);
    EXPECT_TRUE(PicksSquare(other, 43, 31, 3, true, 11));
    EXPECT_TRUE(PicksSquare(effect, 43, 31, 3, true, 12)) << "the other instance's mask";
    // Unguarded: an empty size goes on to the primitive, which refuses it,
    // and Proc still returns 0 with the frame as it was.
    Bytes frame = kvtest::RandomBytes(64, 7);
    const Bytes before = frame;
    EXPECT_EQ(Kelvarine_Proc(other, frame.data(), 0, 4), 0);
    EXPECT_EQ(frame, before);
    Kelvarine_Destory(other);
    Kelvarine_Destory(effect);
}

}  // namespace
