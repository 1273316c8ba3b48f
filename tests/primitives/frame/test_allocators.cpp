#include <cstdint>
#include <cstdlib>

#include "jump_index.h"
#include "kelvarine_prims.h"
#include "primitives/frame/memory.h"

namespace {

// Counting stand-ins for the allocation hooks.
int gMallocCalls = 0;
void* gLastRaw = nullptr;
void* gLastFreed = nullptr;
void* CountingMalloc(size_t n) {
    ++gMallocCalls;
    return gLastRaw = std::malloc(n);
}
void RecordingFree(void* p) {
    gLastFreed = p;
    std::free(p);
}
void* FailingMalloc(size_t) { return nullptr; }

class Allocators : public EveryJumpIndex {
protected:
    void SetUp() override {
        EveryJumpIndex::SetUp();
        gMallocCalls = 0;
        gLastRaw = gLastFreed = nullptr;
        i_malloc = CountingMalloc;
        i_free = RecordingFree;
    }
    void TearDown() override {
        i_malloc = std::malloc;
        i_free = std::free;
        EveryJumpIndex::TearDown();
    }
};

bool Aligned32(const void* p) { return (reinterpret_cast<uintptr_t>(p) & 31) == 0; }

TEST_P(Allocators, BlocksAreAlignedAndFreeTheirRawBlock) {
    for (int32_t length : {1, 7, 32, 1000, 1 << 20}) {
        void* block = primMalloc(length);
        ASSERT_NE(block, nullptr);
        EXPECT_TRUE(Aligned32(block));
        EXPECT_GE(static_cast<char*>(block) - static_cast<char*>(gLastRaw), 8);
        EXPECT_LE(static_cast<char*>(block) + length, static_cast<char*>(gLastRaw) + length + 40);
        void* raw = gLastRaw;
        primFree(block);
        EXPECT_EQ(gLastFreed, raw);
    }
    gLastFreed = nullptr;
    primFree(nullptr);
    EXPECT_EQ(gLastFreed, nullptr);
}

TEST_P(Allocators, TypedAllocatorsScaleTheCountAndShareOneFree) {
    uint8_t* bytes = primsMalloc_8u(5);
    ASSERT_NE(bytes, nullptr);
    EXPECT_TRUE(Aligned32(bytes));
    primsFree(bytes);

    int16_t* shorts = primsMalloc_16s(5);
    float* floats = primsMalloc_32f(5);
    int32_t* ints = primsMalloc_32s(5);
    for (void* p : {static_cast<void*>(shorts), static_cast<void*>(floats), static_cast<void*>(ints)}) {
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(Aligned32(p));
        primsFree(p);
    }
}

TEST_P(Allocators, CountsBelowOneAllocateNothing) {
    EXPECT_EQ(primsMalloc_8u(0), nullptr);
    EXPECT_EQ(primsMalloc_8u(-1), nullptr);
    EXPECT_EQ(primMalloc(0), nullptr);
    EXPECT_EQ(gMallocCalls, 0);
}

TEST_P(Allocators, ImageRowsStartOn32ByteBoundaries) {
    struct Case {
        int32_t width, height, step;
    } cases[] = {{16, 3, 32}, {17, 3, 64}, {1, 1, 32}, {1000, 2, 2016}};
    for (const Case& c : cases) {
        int32_t step = -1;
        int16_t* image = primiMalloc_16s_C1(c.width, c.height, &step);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(step, c.step) << c.width;
        EXPECT_TRUE(Aligned32(image));
        primsFree(image);
    }
}

TEST_P(Allocators, BadImageSizesWriteStepZero) {
    int32_t step = 99;
    EXPECT_EQ(primiMalloc_16s_C1(10, 0, &step), nullptr);
    EXPECT_EQ(step, 0);
    step = 99;
    EXPECT_EQ(primiMalloc_16s_C1(0, 10, &step), nullptr);
    EXPECT_EQ(step, 0);
    EXPECT_EQ(primiMalloc_16s_C1(10, 10, nullptr), nullptr);
    EXPECT_EQ(gMallocCalls, 0);
}

TEST_P(Allocators, StepStaysWrittenWhenTheBlockIsRefused) {
    i_malloc = FailingMalloc;
    int32_t step = 0;
    EXPECT_EQ(primiMalloc_16s_C1(17, 4, &step), nullptr);
    EXPECT_EQ(step, 64);
    EXPECT_EQ(primMalloc(100), nullptr);
}

KV_ALL_JUMP_INDICES(Allocators);

}  // namespace
