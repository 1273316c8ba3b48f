#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "image_under_test.h"
#include "jump_index.h"

// The byte loops themselves, compiled here once more, so that the streaming
// stores are checked on any processor (the primitives choose them only on
// some).
#define PRIM_BUILD loops_under_test
#include "primitives/pixel/memory_loops.h"
#undef PRIM_BUILD

namespace {

using kvtest::ImageUnderTest;

class CopyAndSet : public EveryJumpIndex {};

TEST_P(CopyAndSet, ImageCopiesMoveThreeOrFourBytesAPixel) {
    auto copyAC4 = KV_BUILD(primiCopy_8u_AC4R, GetParam());
    auto copyC4 = KV_BUILD(primiCopy_8u_C4R, GetParam());
    uint32_t seed = 400;
    for (const auto& shape : kvtest::AwkwardShapes())
        for (int destinationPadding : {shape.padding, shape.padding + 3}) {
            ImageUnderTest src(shape.width, shape.height, shape.padding, shape.offset, ++seed);
            for (int channels : {3, 4}) {
                ImageUnderTest dst(shape.width, shape.height, destinationPadding, 3 - shape.offset, ++seed);
                ImageUnderTest expected = dst;
                for (int y = 0; y < shape.height; ++y)
                    for (int x = 0; x < shape.width; ++x)
                        for (int c = 0; c < channels; ++c) expected.at(x, y, c) = src.at(x, y, c);
                auto copy = channels == 3 ? copyAC4 : copyC4;
                ASSERT_EQ(copy(src.data(), src.step, dst.data(), dst.step, src.size), PrimOk);
                ASSERT_EQ(dst.bytes, expected.bytes) << shape.width << "x" << shape.height << " " << channels;
            }
        }
}

TEST_P(CopyAndSet, LargeImageCopiesStreamTheSameBytes) {
    auto copyC4 = KV_BUILD(primiCopy_8u_C4R, GetParam());
    for (int padding : {0, 12}) {
        ImageUnderTest src(613, 431, padding, 1, 1), dst(613, 431, padding, 2, 2);
        ImageUnderTest expected = dst;
        for (int y = 0; y < 431; ++y) memcpy(expected.data() + y * expected.step, src.data() + y * src.step, 613 * 4);
        ASSERT_EQ(copyC4(src.data(), src.step, dst.data(), dst.step, src.size), PrimOk);
        EXPECT_EQ(dst.bytes, expected.bytes) << "padding " << padding;
    }
}

TEST_P(CopyAndSet, ImageFillsWriteTheValueAndKeepTheRest) {
    auto setAC4 = KV_BUILD(primiSet_8u_AC4R, GetParam());
    auto setC1 = KV_BUILD(primiSet_8u_C1R, GetParam());
    const uint8_t value[3] = {9, 180, 77};
    uint32_t seed = 500;
    for (const auto& shape : kvtest::AwkwardShapes()) {
        ImageUnderTest image(shape.width, shape.height, shape.padding, shape.offset, ++seed);
        ImageUnderTest expected = image;
        for (int y = 0; y < shape.height; ++y)
            for (int x = 0; x < shape.width; ++x)
                for (int c = 0; c < 3; ++c) expected.at(x, y, c) = value[c];
        ASSERT_EQ(setAC4(value, image.data(), image.step, image.size), PrimOk);
        ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << shape.height;

        // The same buffer read as one byte a pixel, four times as wide.
        PrimSize bytesWide = {4 * shape.width + shape.padding % 2, shape.height};
        for (int y = 0; y < shape.height; ++y)
            memset(expected.data() + y * expected.step, 201, static_cast<size_t>(bytesWide.width));
        ASSERT_EQ(setC1(201, image.data(), image.step, bytesWide), PrimOk);
        ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << shape.height;
    }
}

TEST_P(CopyAndSet, VectorOperationsCoverExactlyTheirLength) {
    auto copy = KV_BUILD(primsCopy_8u, GetParam());
    auto zero = KV_BUILD(primsZero_8u, GetParam());
    auto zero16 = KV_BUILD(primsZero_16s, GetParam());
    auto set32 = KV_BUILD(primsSet_32f, GetParam());
    auto maxEvery = KV_BUILD(primsMaxEvery_8u_I, GetParam());
    auto minEvery = KV_BUILD(primsMinEvery_8u_I, GetParam());
    const float value = -1.5f;
    for (int length : {1, 3, 15, 16, 17, 100, 1000, 600001}) {
        for (int offset : {0, 1, 2, 3}) {
            const auto a = kvtest::RandomBytes(4 * length + 8, length);
            const auto b = kvtest::RandomBytes(4 * length + 8, length + 1);
            auto check = [&](auto operation, auto reference) {
                auto buffer = b;
                auto expected = b;
                reference(expected.data() + offset);
                ASSERT_EQ(operation(buffer.data() + offset), PrimOk);
                ASSERT_EQ(buffer, expected) << "length " << length << " offset " << offset;
            };
            const uint8_t* src = a.data() + 3 - offset;
            check([&](uint8_t* p) { return copy(src, p, length); },
                  [&](uint8_t* p) { memcpy(p, src, length); });
            check([&](uint8_t* p) { return zero(p, length); }, [&](uint8_t* p) { memset(p, 0, length); });
            check([&](uint8_t* p) { return zero16(reinterpret_cast<int16_t*>(p), length); },
                  [&](uint8_t* p) { memset(p, 0, 2 * length); });
            check([&](uint8_t* p) { return set32(value, reinterpret_cast<float*>(p), length); },
                  [&](uint8_t* p) {
                      for (int i = 0; i < length; ++i) memcpy(p + 4 * i, &value, 4);
                  });
            check([&](uint8_t* p) { return maxEvery(src, p, length); }, [&](uint8_t* p) {
                for (int i = 0; i < length; ++i) p[i] = std::max(p[i], src[i]);
            });
            check([&](uint8_t* p) { return minEvery(src, p, length); }, [&](uint8_t* p) {
                for (int i = 0; i < length; ++i) p[i] = std::min(p[i], src[i]);
            });
        }
    }
}

TEST_P(CopyAndSet, NullComesBeforeSizeAndNothingIsWritten) {
    uint8_t bytes[64] = {};
    uint8_t* p = bytes;
    const uint8_t value[3] = {1, 2, 3};
    const int i = GetParam();
    EXPECT_EQ(KV_BUILD(primiCopy_8u_AC4R, i)(nullptr, 16, p, 16, {0, 1}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiCopy_8u_C4R, i)(p, 16, nullptr, 16, {1, 0}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiCopy_8u_AC4R, i)(p + 32, 16, p, 16, {0, 1}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primiCopy_8u_C4R, i)(p + 32, -16, p, 0, {2, 0}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_AC4R, i)(nullptr, p, 16, {0, 1}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_AC4R, i)(value, p, 0, {1, -1}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_C1R, i)(7, nullptr, 16, {0, 1}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_C1R, i)(7, p, 0, {-3, 1}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsCopy_8u, i)(p, nullptr, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsCopy_8u, i)(p + 32, p, 0), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsZero_8u, i)(nullptr, -1), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsZero_8u, i)(p, 0), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsZero_16s, i)(reinterpret_cast<int16_t*>(p), -4), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsSet_32f, i)(1.0f, nullptr, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsMaxEvery_8u_I, i)(nullptr, p, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsMinEvery_8u_I, i)(p + 32, p, 0), PrimSizeErr);
    for (uint8_t b : bytes) ASSERT_EQ(b, 0);
}

KV_ALL_JUMP_INDICES(CopyAndSet);

// Streaming and merging stores against plain byte loops, across the
// 16-byte seams and the 262144-byte blocks of a streaming copy.
TEST(ByteLoops, EveryStorePolicyGivesTheSameBytes) {
    using namespace loops_under_test;
    for (size_t length : {size_t{1}, size_t{15}, size_t{16}, size_t{31}, size_t{100}, size_t{2 * 262144 + 37}}) {
        for (size_t offset : {0, 1, 7}) {
            for (uint32_t mask : {kAllBytes, kColourMask}) {
                const auto src = kvtest::RandomBytes(length + 8, 1);
                const auto dst = kvtest::RandomBytes(length + 32, 2);
                const uint32_t word = 0x44332211u;
                auto copied = dst, filled = dst;
                for (size_t i = 0; i < length; ++i) {
                    if ((mask >> ((i & 3) * 8)) & 0xFF) {
                        copied[offset + i] = src[i];
                        filled[offset + i] = static_cast<uint8_t>(word >> ((i & 3) * 8));
                    }
                }
                auto run = [&](auto stores) {
                    using Stores = decltype(stores);
                    auto copy = dst, fill = dst;
                    CopyBytes<Stores>(src.data(), copy.data() + offset, length, mask);
                    FillPattern<Stores>(fill.data() + offset, length, word, mask);
                    StoreFence();
                    EXPECT_EQ(copy, copied) << length << " at " << offset;
                    EXPECT_EQ(fill, filled) << length << " at " << offset;
                };
                run(MergedStores{});
                if (mask == kAllBytes) {
                    run(PlainStores{});
                    run(StreamingStores{});
                }
            }
        }
    }
}

}  // namespace
