// CReduceBits: the refusing SetArgs, and a Proc that returns the primitive's
// result together with the unset fourth bytes of its temporary.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "effects/ReduceBits.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace {

using Words = std::array<int32_t, 3>;

Words Read(Effect_Base* effect) {
    EffectArgs args = {};
    EXPECT_EQ(effect->GetArgs(&args), 0);
    return {args.word[0], args.word[1], args.word[2]};
}

int32_t Set(Effect_Base* effect, int32_t dither, int32_t noise, int32_t levels) {
    EffectArgs args = {{dither, noise, levels}};
    return effect->SetArgs(&args);
}

TEST(ReduceBitsEffect, SetArgsClampsOrRefusesWithRawWords) {
    Effect_Base* effect = CReduceBits::CreateInstance();
    EXPECT_EQ(Read(effect), (Words{1, 0, 2}));
    EXPECT_EQ(Set(effect, 2, 101, 200), 0);
    EXPECT_EQ(Read(effect), (Words{2, 100, 64}));
    EXPECT_EQ(Set(effect, 4, -3, 1), 0);
    EXPECT_EQ(Read(effect), (Words{4, 0, 2}));
    // A method outside 0..4, tested as unsigned, is refused: no dither, and
    // the other words stay as they came.
    EXPECT_EQ(Set(effect, 5, 500, 1), -1);
    EXPECT_EQ(Read(effect), (Words{0, 500, 1}));
    EXPECT_EQ(Set(effect, -1, 3, 300), -1);
    EXPECT_EQ(Read(effect), (Words{0, 3, 300}));
    delete effect;
}

// Blocks from the allocator come filled with a marker, which stands for the
// unset memory of the temporary.
constexpr uint8_t kUnset = 0xA7;
void* (*gSystemMalloc)(size_t) = nullptr;

void* MarkedMalloc(size_t bytes) {
    void* block = gSystemMalloc(bytes);
    if (block != nullptr) memset(block, kUnset, bytes);
    return block;
}

class MarkedAllocations : public ::testing::Test {
protected:
    void SetUp() override {
        gSystemMalloc = i_malloc;
        i_malloc = MarkedMalloc;
    }
    void TearDown() override { i_malloc = gSystemMalloc; }
};

TEST_F(MarkedAllocations, ProcGivesTheDitheredColoursAndTheTemporarysFourthBytes) {
    const int32_t width = 11, height = 6;
    const std::vector<uint8_t> original = kvtest::RandomBytes(width * height * 4, 4);
    Effect_Base* effect = CReduceBits::CreateInstance();
    for (int32_t dither = DitherNone; dither <= DitherBayer; ++dither) {
        for (int32_t noise : {0, 25}) {
            ASSERT_EQ(Set(effect, dither, noise, 5), 0);
            std::vector<uint8_t> expected(original.size(), kUnset);
            ASSERT_EQ(primiReduceBits_8u_AC4R(original.data(), width * 4, expected.data(), width * 4,
                                              {width, height}, noise, dither, 5),
                      PrimOk);
            std::vector<uint8_t> frame = original;
            EXPECT_EQ(effect->Proc(frame.data(), width, height), 0);
            EXPECT_EQ(frame, expected) << "dither " << dither << " noise " << noise;
        }
    }
    delete effect;
}

TEST_F(MarkedAllocations, ARefusedSetArgsLeavesTheFrameTheWholeTemporary) {
    std::vector<uint8_t> frame = kvtest::RandomBytes(7 * 3 * 4, 5);
    Effect_Base* effect = CReduceBits::CreateInstance();
    EXPECT_EQ(Set(effect, 5, 500, 4), -1);
    EXPECT_EQ(effect->Proc(frame.data(), 7, 3), 0);
    EXPECT_EQ(frame, std::vector<uint8_t>(frame.size(), kUnset));
    delete effect;
}

}  // namespace
