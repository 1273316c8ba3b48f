#include <gtest/gtest.h>

#include <unistd.h>

#include "effects/Box.h"
#include "kelvarine.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/box_reference.h"
#include "test_support.h"

namespace {

using kvtest::Replicated;

// Each pixel takes the mean of the size-by-size window whose anchor, half
// the edge, lies on it, over the frame with its edges replicated.
std::vector<uint8_t> BoxReference(const std::vector<uint8_t>& frame, int width, int height, int size) {
    const Replicated at{frame, width, height};
    const int half = size / 2;
    return kvtest::WithColours(frame, width, height, [&](int x, int y, int c) {
        uint32_t s = 0;
        for (int j = 0; j < size; ++j)
            for (int i = 0; i < size; ++i) s += at(x - half + i, y - half + j, c);
        return kvtest::BoxMean(s, size, size);
    });
}

TEST(BoxEffect, EqualsTheMeanOfTheReplicatedFrameForEveryEdge) {
    const int sizes[][2] = {{1, 1}, {3, 2}, {7, 5}, {19, 4}};
    Effect_Base* box = Box::CreateInstance();
    for (int edge = 1; edge <= 10; ++edge) {
        EffectArgs args = {{edge}};
        box->SetArgs(&args);
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, edge * 100 + size[0]);
            auto expected = BoxReference(frame, size[0], size[1], edge);
            ASSERT_EQ(box->Proc(frame.data(), size[0], size[1]), 0);
            EXPECT_EQ(frame, expected) << "edge " << edge << " " << size[0] << "x" << size[1];
        }
    }
    delete box;
}

TEST(BoxEffect, DefaultEdgeIsTenAndSetArgsClampsToOneToTen) {
    Effect_Base* box = Box::CreateInstance();
    EffectArgs args = {{-1, 7, 7, 7, 7, 7}};
    box->GetArgs(&args);
    EXPECT_EQ(args.word[0], 10);
    EXPECT_EQ(args.word[1], 7) << "only word 0 is written";
    for (auto [given, kept] : {std::pair{0, 1}, {-5, 1}, {11, 10}, {4, 4}}) {
        args.word[0] = given;
        EXPECT_EQ(box->SetArgs(&args), 0);
        box->GetArgs(&args);
        EXPECT_EQ(args.word[0], kept) << given;
    }
    delete box;
}

// The padded size is recorded: edges 3 and 2 both pad by 2 and share the
// buffer, and only a new padded size makes another. (Edge 3 runs the 3x3
// filter, which takes no scratch; edge 2 runs the running-sum filter, which
// takes one block of its own per call.)
TEST(BoxEffect, KeepsItsBufferWhileThePaddedSizeHolds) {
    auto frame = kvtest::RandomBytes(8 * 6 * 4, 1);
    Effect_Base* box = Box::CreateInstance();
    EffectArgs args = {{3}};
    box->SetArgs(&args);
    kvtest::AllocationCounter counter;
    box->Proc(frame.data(), 8, 6);
    EXPECT_EQ(counter.taken, 1);
    box->Proc(frame.data(), 8, 6);
    EXPECT_EQ(counter.taken, 1);
    args.word[0] = 2;
    box->SetArgs(&args);
    box->Proc(frame.data(), 8, 6);
    EXPECT_EQ(counter.taken, 2);
    box->Proc(frame.data(), 9, 5);
    EXPECT_EQ(counter.taken, 4);
    delete box;
    EXPECT_EQ(counter.given, counter.taken);
}

// Box, Edge Detect, Guess and Linear refuse in the words of "Box".
TEST(BoxEffect, ItAndItsSiblingsRefuseInTheWordsOfBox) {
    const int32_t ids[] = {1001, 1008, 1011, 1012};
    auto child = kvtest::RunInChild([&ids] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : ids) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 && Kelvarine_Proc(effect, pixel, 3, 0) == -1;
            Kelvarine_Destory(effect);
        }
        _exit(refused && pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    std::string expected;
    for (int i = 0; i < 4; ++i) expected += " *** Box Effect Src == NULL  *** Box Effect Width = 3 Height =0";
    std::string log = kvtest::ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

}  // namespace
