// The Canny effect: its parameter words, its result against gray, the 5x5
// Sobel pair and the detector written out plainly, its guard, and buffers
// that live while size and thresholds stay.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "edges_reference.h"
#include "effects/Canny.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

EffectArgs Words(int32_t low, int32_t high) {
    EffectArgs args = {{low, high, 0, 0, 0, 0}};
    return args;
}

// Gray, the gradients with replicated borders, the detector at ten times
// the thresholds, and the edge byte in the three colour bytes.
Bytes CannyEffectReference(const Bytes& frame, int32_t width, int32_t height, int32_t low, int32_t high) {
    kvtest::MarginImage gray;
    gray.size = {width, height};
    gray.margin = 0;
    gray.step = width;
    gray.bytes.resize(size_t(width) * height);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(frame.data(), width * 4, gray.bytes.data(), width, gray.size), PrimOk);
    auto dx = kvtest::SobelReference(gray, kvtest::SobelFilter::NegVert, MaskSize5x5, BorderRepl, 0);
    auto dy = kvtest::SobelReference(gray, kvtest::SobelFilter::Horiz, MaskSize5x5, BorderRepl, 0);
    auto edges =
        kvtest::CannyReference(dx.data(), dy.data(), width, gray.size, float(low) * 10.0f, float(high) * 10.0f);
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
    EXPECT_EQ(read.word[0], 60);
    EXPECT_EQ(read.word[1], 80);
    EffectArgs set = Words(-5, 150);
    EXPECT_EQ(effect->SetArgs(&set), 0);
    EXPECT_EQ(effect->GetArgs(&read), 0);
    EXPECT_EQ(read.word[0], -5);
    EXPECT_EQ(read.word[1], 100);
    EXPECT_EQ(read.word[2], 11) << "words beyond the two stay as the caller left them";
    set = Words(101, -2147483647 - 1);
    effect->SetArgs(&set);
    effect->GetArgs(&read);
    EXPECT_EQ(read.word[0], 100);
    EXPECT_EQ(read.word[1], -2147483647 - 1);
    delete effect;
}

TEST(CannyEffect, EqualsGraySobelAndCannyOnRandomFrames) {
    struct Case {
        int32_t width, height, low, high;
    };
    const Case cases[] = {{1, 1, 60, 80},   {3, 2, 60, 80},     {9, 7, 0, 5},     {33, 20, 60, 80},
                          {33, 20, 20, 20}, {64, 48, 100, 100}, {37, 29, 10, 90}, {17, 40, 60, 80}};
    uint32_t seed = 3;
    for (const Case& c : cases)
        for (bool smooth : {false, true}) {
            Bytes frame = smooth ? SmoothFrame(c.width, c.height, seed)
                                 : kvtest::RandomBytes(size_t(c.width) * c.height * 4, seed);
            ++seed;
            Effect_Base* effect = Canny::CreateInstance();
            EffectArgs args = Words(c.low, c.high);
            effect->SetArgs(&args);
            Bytes expected = CannyEffectReference(frame, c.width, c.height, c.low, c.high);
            EXPECT_EQ(effect->Proc(frame.data(), c.width, c.height), 0);
            EXPECT_EQ(frame, expected) << c.width << "x" << c.height << " " << c.low << "/" << c.high
                                       << (smooth ? " smooth" : " noise");
            delete effect;
        }
}

TEST(CannyEffect, RefusesNullFramesAndEmptySizesInItsOwnWords) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        Effect_Base* effect = Kelvarine_NewInstance(1002);
        bool refused = Kelvarine_Proc(effect, nullptr, 2, 2) == -1 && Kelvarine_Proc(effect, pixel, 1, -3) == -1;
        Kelvarine_Destory(effect);
        _exit(refused && pixel[0] == 1 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    const std::string expected = " *** Canny Effect Src == NULL  *** Canny Effect Width = 1 Height =-3";
    std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

// Counts what goes through the allocation hooks, and fills fresh blocks
// with a marker that stands for unset memory.
constexpr uint8_t kUnset = 0xA7;
int gMallocs = 0, gFrees = 0;
void* (*gSystemMalloc)(size_t) = nullptr;
void (*gSystemFree)(void*) = nullptr;

void* CountingMalloc(size_t bytes) {
    ++gMallocs;
    void* block = gSystemMalloc(bytes);
    if (block != nullptr) memset(block, kUnset, bytes);
    return block;
}
void CountingFree(void* block) {
    ++gFrees;
    gSystemFree(block);
}

class CannyAllocations : public ::testing::Test {
protected:
    void SetUp() override {
        gSystemMalloc = i_malloc;
        gSystemFree = i_free;
        i_malloc = CountingMalloc;
        i_free = CountingFree;
    }
    void TearDown() override {
        i_malloc = gSystemMalloc;
        i_free = gSystemFree;
    }
    // Allocations and releases during one call of f.
    template <class F>
    std::pair<int, int> Count(const F& f) {
        gMallocs = gFrees = 0;
        f();
        return {gMallocs, gFrees};
    }
};

TEST_F(CannyAllocations, RecreatesBuffersOnlyForANewSizeOrThresholdAndLosesTheEdgesEachTime) {
    Bytes frame = SmoothFrame(40, 30, 1);
    Effect_Base* effect = Canny::CreateInstance();
    auto run = [&](int32_t width, int32_t height) {
        return [&, width, height] { effect->Proc(frame.data(), width, height); };
    };
    auto set = [&](int32_t low, int32_t high) {
        EffectArgs args = Words(low, high);
        effect->SetArgs(&args);
    };
    // gray, two gradients, work, edges
    EXPECT_EQ(Count(run(40, 30)), std::make_pair(5, 0));
    EXPECT_EQ(Count(run(40, 30)), std::make_pair(0, 0));
    set(60, 80);
    EXPECT_EQ(Count(run(40, 30)), std::make_pair(0, 0)) << "same thresholds again";
    // Each re-creation releases four buffers and leaves edges behind.
    set(61, 80);
    EXPECT_EQ(Count(run(40, 30)), std::make_pair(5, 4));
    set(61, 79);
    EXPECT_EQ(Count(run(40, 30)), std::make_pair(5, 4));
    EXPECT_EQ(Count(run(30, 40)), std::make_pair(5, 4)) << "same pixel count, other sides";
    EXPECT_EQ(Count(run(30, 40)), std::make_pair(0, 0));
    EXPECT_EQ(Count([&] { delete effect; }), std::make_pair(0, 4));
}

TEST_F(CannyAllocations, RefusedThresholdsLeaveTheEdgesBlockInTheFrame) {
    for (EffectArgs args : {Words(90, 80), Words(-5, 80)}) {
        Bytes frame = SmoothFrame(13, 9, 2);
        Bytes expected = frame;
        for (size_t i = 0; i < expected.size(); i += 4) memset(&expected[i], kUnset, 3);
        Effect_Base* effect = Canny::CreateInstance();
        effect->SetArgs(&args);
        EXPECT_EQ(effect->Proc(frame.data(), 13, 9), 0);
        EXPECT_EQ(frame, expected) << args.word[0] << "/" << args.word[1];
        delete effect;
    }
}

}  // namespace
