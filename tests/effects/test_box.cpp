#include <unistd.h>

#include <gtest/gtest.h>

#include "effects/Box.h"
#include "kelvarine.h"
#include "padded_effect_support.h"
#include "primitives/neighbourhood/box_reference.h"

namespace {

// The mean of the size-by-size window whose anchor, half the edge, lies on
// the pixel.
TEST(BoxEffect, EqualsTheMeanOfTheReplicatedFrameForEveryEdge) {
    for (int edge = 1; edge <= 10; ++edge)
        kvtest::ExpectOnRandomFrames(Box::CreateInstance, edge, [edge](const kvtest::Replicated& at, int x, int y, int c) {
            uint32_t s = 0;
            for (int j = 0; j < edge; ++j)
                for (int i = 0; i < edge; ++i) s += at(x - edge / 2 + i, y - edge / 2 + j, c);
            return kvtest::BoxMean(s, edge, edge);
        });
}

TEST(BoxEffect, DefaultEdgeIsTenAndSetArgsClampsToOneToTen) {
    EXPECT_EQ(kvtest::StoredWord0(Box::CreateInstance, 0), 1);
    EXPECT_EQ(kvtest::StoredWord0(Box::CreateInstance, 11), 10);
    Effect_Base* box = Box::CreateInstance();
    EffectArgs args = {{-1, 7}};
    box->GetArgs(&args);
    EXPECT_EQ(args.word[0], 10);
    EXPECT_EQ(args.word[1], 7) << "only word 0 is written";
    delete box;
}

// The padded size is recorded: edges 3 and 2 both pad by 2 and share the
// buffer. (Edge 3 runs the 3x3 filter, which takes no scratch; edge 2 the
// running-sum filter, which takes one block a call.)
TEST(BoxEffect, KeepsItsBufferWhileThePaddedSizeHolds) {
    auto frame = kvtest::RandomBytes(9 * 6 * 4, 1);
    Effect_Base* box = Box::CreateInstance();
    kvtest::AllocationCounter counter;
    for (auto [edge, width, taken] : {std::tuple{3, 8, 1}, {3, 8, 1}, {2, 8, 2}, {2, 9, 4}}) {
        EffectArgs args = {{edge}};
        box->SetArgs(&args);
        box->Proc(frame.data(), width, 6);
        EXPECT_EQ(counter.taken, taken) << edge << " " << width;
    }
    delete box;
    EXPECT_EQ(counter.given, counter.taken);
}

// Box, Edge Detect, Guess and Linear refuse in the words of "Box".
TEST(BoxEffect, ItAndItsSiblingsRefuseInTheWordsOfBox) {
    auto child = kvtest::RunInChild([] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : {1001, 1008, 1011, 1012}) {
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
