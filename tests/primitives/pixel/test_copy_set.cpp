#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "image_under_test.h"
#include "jump_index.h"

// The byte loops themselves, compiled here once more, so that streaming
// stores are checked on any processor (the primitives choose them only on some).
#define PRIM_BUILD loops_under_test
#include "primitives/pixel/memory_loops.h"
#undef PRIM_BUILD

namespace {

using kvtest::ImageUnderTest;

class CopyAndSet : public EveryJumpIndex {};

TEST_P(CopyAndSet, ImageCopiesAndFillsWriteOnlyTheirBytes) {
    auto shapes = kvtest::AwkwardShapes();
    shapes.push_back({613, 431, 0, 1});  // above 1 MiB: the four-byte copy streams
    const uint8_t value[3] = {9, 180, 77};
    uint32_t seed = 400;
    for (const auto& shape : shapes)
        for (int padding : {shape.padding, shape.padding + 3}) {
            ImageUnderTest src(shape.width, shape.height, shape.padding, shape.offset, ++seed);
            ImageUnderTest dst(shape.width, shape.height, padding, 3 - shape.offset, ++seed);
            ImageUnderTest copied3 = dst, copied4 = dst, set3 = dst, set1 = dst;
            for (int y = 0; y < shape.height; ++y)
                for (int x = 0; x < shape.width; ++x)
                    for (int c = 0; c < 4; ++c) {
                        if (c < 3) copied3.at(x, y, c) = src.at(x, y, c), set3.at(x, y, c) = value[c];
                        copied4.at(x, y, c) = src.at(x, y, c);
                        set1.at(x, y, c) = 201;
                    }
            ImageUnderTest out = dst;
            ASSERT_EQ(KV_BUILD(primiCopy_8u_AC4R, GetParam())(src.data(), src.step, out.data(), out.step, src.size), 0);
            ASSERT_EQ(out.bytes, copied3.bytes) << shape.width << "x" << shape.height;
            out = dst;
            ASSERT_EQ(KV_BUILD(primiCopy_8u_C4R, GetParam())(src.data(), src.step, out.data(), out.step, src.size), 0);
            ASSERT_EQ(out.bytes, copied4.bytes) << shape.width << "x" << shape.height;
            out = dst;
            ASSERT_EQ(KV_BUILD(primiSet_8u_AC4R, GetParam())(value, out.data(), out.step, out.size), 0);
            ASSERT_EQ(out.bytes, set3.bytes) << shape.width << "x" << shape.height;
            out = dst;  // as one byte a pixel, four times as wide
            PrimSize bytesWide = {4 * shape.width, shape.height};
            ASSERT_EQ(KV_BUILD(primiSet_8u_C1R, GetParam())(201, out.data(), out.step, bytesWide), 0);
            ASSERT_EQ(out.bytes, set1.bytes) << shape.width << "x" << shape.height;
        }
}

TEST_P(CopyAndSet, VectorOperationsCoverExactlyTheirLength) {
    const int i = GetParam();
    const float value = -1.5f;
    for (int length : {1, 15, 17, 100, 600001}) {
        for (int offset : {0, 1, 3}) {
            const auto a = kvtest::RandomBytes(4 * length + 8, length), b = kvtest::RandomBytes(4 * length + 8, 7);
            const uint8_t* src = a.data() + 3 - offset;
            auto check = [&](auto operation, auto element) {
                auto buffer = b, expected = b;
                for (int n = 0; n < length; ++n) element(expected.data() + offset, n);
                ASSERT_EQ(operation(buffer.data() + offset), PrimOk);
                ASSERT_EQ(buffer, expected) << "length " << length << " offset " << offset;
            };
            check([&](uint8_t* p) { return KV_BUILD(primsCopy_8u, i)(src, p, length); },
                  [&](uint8_t* p, int n) { p[n] = src[n]; });
            check([&](uint8_t* p) { return KV_BUILD(primsZero_8u, i)(p, length); }, [](uint8_t* p, int n) { p[n] = 0; });
            check([&](uint8_t* p) { return KV_BUILD(primsZero_16s, i)(reinterpret_cast<int16_t*>(p), length); },
                  [](uint8_t* p, int n) { p[2 * n] = p[2 * n + 1] = 0; });
            check([&](uint8_t* p) { return KV_BUILD(primsSet_32f, i)(value, reinterpret_cast<float*>(p), length); },
                  [&](uint8_t* p, int n) { memcpy(p + 4 * n, &value, 4); });
            check([&](uint8_t* p) { return KV_BUILD(primsMaxEvery_8u_I, i)(src, p, length); },
                  [&](uint8_t* p, int n) { p[n] = std::max(p[n], src[n]); });
            check([&](uint8_t* p) { return KV_BUILD(primsMinEvery_8u_I, i)(src, p, length); },
                  [&](uint8_t* p, int n) { p[n] = std::min(p[n], src[n]); });
        }
    }
}

TEST_P(CopyAndSet, NullComesBeforeSizeAndNothingIsWritten) {
    uint8_t bytes[64] = {};
    uint8_t* p = bytes;
    const uint8_t value[3] = {1, 2, 3};
    const int i = GetParam();
    EXPECT_EQ(KV_BUILD(primiCopy_8u_AC4R, i)(nullptr, 16, p, 16, {0, 1}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiCopy_8u_C4R, i)(p + 32, -16, p, 0, {2, 0}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_AC4R, i)(value, nullptr, 16, {0, 1}), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primiSet_8u_C1R, i)(7, p, 0, {-3, 1}), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsCopy_8u, i)(p, nullptr, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsZero_8u, i)(p, 0), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsZero_16s, i)(reinterpret_cast<int16_t*>(p), -4), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsSet_32f, i)(1.0f, nullptr, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsMaxEvery_8u_I, i)(nullptr, p, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsMinEvery_8u_I, i)(p + 32, p, 0), PrimSizeErr);
    EXPECT_TRUE(std::all_of(bytes, bytes + 64, [](uint8_t b) { return b == 0; }));
}

KV_ALL_JUMP_INDICES(CopyAndSet);

// Every store policy against byte loops, across the 16-byte seams and the
// 262144-byte blocks of a streaming copy.
TEST(ByteLoops, EveryStorePolicyGivesTheSameBytes) {
    using namespace loops_under_test;
    const uint32_t word = 0x44332211u;
    for (size_t length : {1, 15, 16, 31, 100, 2 * 262144 + 37})
        for (size_t offset : {0, 1, 7})
            for (uint32_t mask : {kAllBytes, kColourMask}) {
                const auto src = kvtest::RandomBytes(length + 8, 1), dst = kvtest::RandomBytes(length + 32, 2);
                auto copied = dst, filled = dst;
                for (size_t n = 0; n < length; ++n)
                    if ((mask >> (n % 4 * 8)) & 0xFF) {
                        copied[offset + n] = src[n];
                        filled[offset + n] = static_cast<uint8_t>(word >> (n % 4 * 8));
                    }
                auto run = [&](auto stores) {
                    auto copy = dst, fill = dst;
                    CopyBytes<decltype(stores)>(src.data(), copy.data() + offset, length, mask);
                    FillPattern<decltype(stores)>(fill.data() + offset, length, word, mask);
                    StoreFence();
                    EXPECT_EQ(copy, copied) << length << " at " << offset;
                    EXPECT_EQ(fill, filled) << length << " at " << offset;
                };
                run(MergedStores{});
                if (mask == kAllBytes) run(PlainStores{}), run(StreamingStores{});
            }
}

}  // namespace
