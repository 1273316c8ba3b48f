// The min and max filters with replicated borders: every byte is the minimum
// or maximum of its channel over the window, coordinates clamped (the same
// as the window cut at the image's edges).
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "jump_index.h"
#include "window_images.h"

namespace {

using kvtest::ImageUnderTest;

struct Case {
    int32_t width, height;
    PrimSize mask;
    PrimPoint anchor;
};

class FilterMinMax : public EveryJumpIndex {
protected:
    // Both filters on padded, misaligned images, with a work buffer of the
    // reported size at an odd address; the source and all bytes outside
    // the destination's region stay.
    void Check(const Case& c, uint32_t seed) {
        std::mt19937 random(seed);
        ImageUnderTest src(c.width, c.height, int32_t(random() % 9), int32_t(random() % 4), seed);
        const std::vector<uint8_t> source = src.bytes;
        for (bool max : {false, true}) {
            SCOPED_TRACE(testing::Message() << (max ? "max " : "min ") << c.width << "x" << c.height << " mask "
                                            << c.mask.width << "x" << c.mask.height << " anchor " << c.anchor.x << ","
                                            << c.anchor.y);
            ImageUnderTest dst(c.width, c.height, int32_t(random() % 9), int32_t(random() % 4), seed + 1);
            const ImageUnderTest expected = kvtest::Picked(dst, src, kvtest::Rectangle(c.mask, c.anchor), max);
            int32_t bytes = 0;
            auto size = max ? primiFilterMaxGetBufferSize_8u_C4R : primiFilterMinGetBufferSize_8u_C4R;
            ASSERT_EQ(size(c.width, c.mask, &bytes), PrimOk);
            const size_t misalign = random() % 8;
            std::vector<uint8_t> buffer(misalign + size_t(bytes));
            auto filter = max ? primiFilterMaxBorderReplicate_8u_C4R : primiFilterMinBorderReplicate_8u_C4R;
            ASSERT_EQ(filter(src.data(), src.step, dst.data(), dst.step, src.size, c.mask, c.anchor,
                             buffer.data() + misalign),
                      PrimOk);
            ASSERT_EQ(kvtest::FirstDifference(dst, expected), "");
            ASSERT_EQ(src.bytes, source);
        }
    }
};

// Random cases, then each row pass (fixed windows, the odd pass below an
// even width, the block method, widening past 63) and each column pass (one
// row, the short ring of 3 and 5 rows, the block method) on images of both
// sides of 16384 bytes, with masks larger than the image and anchors past
// its edge.
TEST_P(FilterMinMax, RandomAndEveryRowAndColumnPath) {
    std::mt19937 random(11);
    for (int n = 0; n < 150; ++n) {
        Case c;
        c.width = 1 + int32_t(random() % 40);
        c.height = 1 + int32_t(random() % 24);
        c.mask = {1 + int32_t(random() % (2 * c.width + 2)), 1 + int32_t(random() % (2 * c.height + 2))};
        c.anchor = {int32_t(random() % c.mask.width), int32_t(random() % c.mask.height)};
        Check(c, 1000 + n);
    }
    const Case cases[] = {
        {40, 20, {8, 3}, {7, 1}},     {40, 20, {8, 3}, {2, 0}},     {40, 20, {10, 5}, {9, 4}},   {40, 20, {15, 6}, {3, 5}},
        {40, 20, {16, 2}, {15, 0}},   {40, 20, {19, 1}, {4, 0}},    {40, 20, {21, 3}, {20, 2}},  {97, 53, {8, 3}, {7, 2}},
        {97, 53, {15, 5}, {14, 0}},   {97, 53, {14, 7}, {13, 6}},   {97, 53, {16, 16}, {0, 15}}, {97, 53, {40, 26}, {20, 13}},
        {130, 40, {100, 1}, {50, 0}}, {130, 40, {100, 3}, {99, 2}}, {130, 40, {100, 2}, {0, 1}}, {130, 40, {64, 6}, {63, 5}},
        {130, 40, {127, 4}, {1, 3}},  {4, 9, {12, 1}, {10, 0}},     {9, 5, {3, 3}, {1, 1}},      {9, 6, {3, 3}, {1, 1}},
        {9, 6, {3, 3}, {2, 2}},       {9, 10, {5, 5}, {4, 0}},      {9, 9, {5, 5}, {2, 2}},      {9, 2, {1, 1}, {0, 0}},
        {9, 1, {3, 1}, {1, 0}},       {200, 90, {3, 3}, {1, 1}},    {200, 90, {5, 5}, {0, 4}},   {200, 90, {1, 1}, {0, 0}},
        {200, 90, {7, 30}, {3, 29}},  {200, 90, {2, 200}, {1, 150}}, {37, 11, {80, 40}, {79, 39}}, {5, 4, {9, 9}, {0, 8}},
        {1, 30, {5, 7}, {4, 3}},
    };
    uint32_t seed = 7;
    for (const Case& c : cases) Check(c, ++seed);
}

// The buffer size, then the filters: pointers, size, mask, anchor, then the
// steps against the row's bytes; the first failing test decides and a
// refusal writes nothing.
TEST_P(FilterMinMax, ChecksInOrderAndWritesNothing) {
    const int32_t reported = 2 * 5 * (40 + 32) + 4 * 5 * 8 + 32;
    for (auto size : {primiFilterMinGetBufferSize_8u_C4R, primiFilterMaxGetBufferSize_8u_C4R}) {
        int32_t bytes = -1;
        ASSERT_EQ(size(10, {3, 5}, &bytes), PrimOk);
        EXPECT_EQ(bytes, reported);
        EXPECT_EQ(size(0, {0, 5}, nullptr), PrimNullPtrErr);
        EXPECT_EQ(size(0, {0, 5}, &bytes), PrimSizeErr);
        EXPECT_EQ(size(10, {3, 0}, &bytes), PrimMaskSizeErr);
        EXPECT_EQ(bytes, reported);
    }
    ImageUnderTest src(6, 5, 0, 0, 1), dst(6, 5, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    std::vector<uint8_t> buffer(4096);
    uint8_t* b = buffer.data();
    const uint8_t* s = src.data();
    uint8_t* d = dst.data();
    for (auto filter : {primiFilterMinBorderReplicate_8u_C4R, primiFilterMaxBorderReplicate_8u_C4R}) {
        EXPECT_EQ(filter(s, 24, d, 24, {0, 5}, {0, 3}, {1, 1}, nullptr), PrimNullPtrErr);
        EXPECT_EQ(filter(s, 24, nullptr, 24, {6, 5}, {0, 3}, {1, 1}, b), PrimNullPtrErr);
        EXPECT_EQ(filter(s, 24, d, 20, {-1, 0}, {0, 3}, {1, 1}, b), PrimSizeErr);
        EXPECT_EQ(filter(s, 24, d, 20, {6, 5}, {3, 0}, {5, 1}, b), PrimMaskSizeErr);
        EXPECT_EQ(filter(s, 20, d, 24, {6, 5}, {3, 3}, {3, -1}, b), PrimAnchorErr);
        EXPECT_EQ(filter(s, 24, d, 23, {6, 5}, {3, 3}, {1, 1}, b), PrimStepErr);
        EXPECT_EQ(filter(s, 23, d, 24, {6, 5}, {3, 3}, {1, 1}, b), PrimStepErr);
    }
    EXPECT_EQ(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(FilterMinMax);

}  // namespace
