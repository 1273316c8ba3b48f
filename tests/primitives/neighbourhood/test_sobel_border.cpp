// The Sobel border filters under every border rule, the buffer sizes and
// the argument checks.
#include <algorithm>
#include <vector>

#include "edges_reference.h"
#include "jump_index.h"
#include "test_support.h"

namespace {

using kvtest::SobelFilter;

constexpr int32_t kMargin = 2;
constexpr int16_t kUntouched = 0x7A7A;  // beyond the reach of any window sum

kvtest::MarginImage RandomImage(PrimSize size, uint32_t seed) {
    const int32_t step = size.width + 2 * kMargin + 3;
    return {size, kMargin, step, kvtest::RandomBytes(size_t(step) * (size.height + 2 * kMargin), seed)};
}

// A 16-bit destination in a 32-byte-aligned block: rows on 16 bytes, or
// rows one element off and packed tighter, which rules streaming out.
struct Destination {
    Destination(PrimSize size, bool aligned)
        : size(size),
          offset(aligned ? 0 : 1),
          stride(aligned ? ((size.width + 7) & ~7) + 8 : size.width + 1),
          count(offset + stride * size.height),
          block(static_cast<int16_t*>(primMalloc(2 * count))) {
        std::fill(block, block + count, kUntouched);
    }
    ~Destination() { primFree(block); }
    int16_t* data() { return block + offset; }
    int32_t step() const { return 2 * stride; }
    // The region row after row; no element outside it may have changed.
    std::vector<int16_t> Region() const {
        std::vector<int16_t> values;
        for (int32_t y = 0; y < size.height; ++y)
            values.insert(values.end(), block + offset + y * stride, block + offset + y * stride + size.width);
        const auto fills = std::count(block, block + count, kUntouched) - std::count(values.begin(), values.end(), kUntouched);
        EXPECT_EQ(fills, count - int32_t(values.size())) << "written outside the region";
        return values;
    }

    PrimSize size;
    int32_t offset, stride, count;
    int16_t* block;
};

PrimStatus BufferSize(SobelFilter filter, PrimSize size, int32_t mask, int32_t* bytes) {
    return filter == SobelFilter::Horiz ? primiFilterSobelHorizGetBufferSize_8u16s_C1R(size, mask, bytes)
                                        : primiFilterSobelNegVertGetBufferSize_8u16s_C1R(size, mask, bytes);
}

PrimStatus Filter(SobelFilter filter, const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, PrimSize size,
                  int32_t mask, int32_t border, uint8_t value, uint8_t* buffer) {
    return filter == SobelFilter::Horiz
               ? primiFilterSobelHorizBorder_8u16s_C1R(src, srcStep, dst, dstStep, size, mask, border, value, buffer)
               : primiFilterSobelNegVertBorder_8u16s_C1R(src, srcStep, dst, dstStep, size, mask, border, value, buffer);
}

class SobelBorder : public EveryJumpIndex {};

// Work buffers of exactly the reported size, one byte off alignment.
TEST_P(SobelBorder, EqualsTheWindowSumOnRandomImagesUnderEveryBorder) {
    const PrimSize sizes[] = {{1, 1},  {1, 6},   {2, 2},   {3, 1},   {3, 4},   {4, 3},   {5, 5},
                              {6, 2},  {7, 17},  {8, 16},  {9, 18},  {15, 19}, {16, 20}, {17, 21},
                              {23, 22}, {31, 33}, {33, 36}, {12, 37}, {40, 50}, {9, 100}};
    const struct {
        int32_t word;
        uint8_t value;
    } borders[] = {{BorderConst, 0}, {BorderConst, 77}, {BorderRepl, 0}, {BorderWrap, 0}, {BorderMirror, 0},
                   {BorderMirrorEdge, 0}, {BorderInMem, 0}, {BorderRepl | BorderInMemTop, 0},
                   {BorderWrap | BorderInMemBottom | BorderInMemLeft, 0}, {BorderMirror | BorderInMemRight, 0},
                   {BorderConst | BorderInMemTop | BorderInMemLeft, 200},
                   {BorderMirrorEdge | BorderInMemTop | BorderInMemBottom, 0}};
    uint32_t seed = 1;
    for (const PrimSize& size : sizes) {
        const kvtest::MarginImage image = RandomImage(size, seed++);
        for (const auto& border : borders)
            for (SobelFilter filter : {SobelFilter::Horiz, SobelFilter::NegVert})
                for (int32_t mask : {MaskSize3x3, MaskSize5x5}) {
                    int32_t bytes = 0;
                    ASSERT_EQ(BufferSize(filter, size, mask, &bytes), PrimOk);
                    std::vector<uint8_t> work(size_t(bytes) + 1);
                    Destination dst(size, (seed + mask) % 2 == 0);
                    ASSERT_EQ(Filter(filter, image.origin(), image.step, dst.data(), dst.step(), size, mask,
                                     border.word, border.value, work.data() + 1),
                              PrimOk);
                    ASSERT_EQ(dst.Region(), kvtest::SobelReference(image, filter, mask, border.word, border.value))
                        << size.width << "x" << size.height << " border " << border.word << " value "
                        << int(border.value) << (filter == SobelFilter::Horiz ? " Horiz " : " NegVert ") << mask;
                }
    }
}

TEST_P(SobelBorder, ReportsBufferSizesForEachMask) {
    int32_t bytes = -1;
    for (SobelFilter filter : {SobelFilter::Horiz, SobelFilter::NegVert}) {
        // Width 1: 16 * 2 * 21 + 72 + 368 + (36 * 3 + 144) + (4 * 12 + 64).
        EXPECT_EQ(BufferSize(filter, {1, 1}, MaskSize3x3, &bytes), PrimOk);
        EXPECT_EQ(bytes, 1476);
        // Width 1920: 1920 * 2 * 25 + 120 + 368 + (36 * 5 + 144) + (1920 * 12 + 64).
        EXPECT_EQ(BufferSize(filter, {1920, 1080}, MaskSize5x5, &bytes), PrimOk);
        EXPECT_EQ(bytes, 96000 + 120 + 368 + 324 + 23104);
        bytes = -1;
        EXPECT_EQ(BufferSize(filter, {0, 5}, MaskSize1x3, nullptr), PrimNullPtrErr);
        EXPECT_EQ(BufferSize(filter, {4, 0}, 44, &bytes), PrimSizeErr);
        EXPECT_EQ(BufferSize(filter, {4, 4}, MaskSize1x3, &bytes), PrimMaskSizeErr);
        EXPECT_EQ(bytes, -1);
    }
    auto row = KV_BUILD(primiFilterRowBorderPipelineGetBufferSize_8u16s_C1R, GetParam());
    auto column = KV_BUILD(primiFilterColumnPipelineGetBufferSize_16s_C1R, GetParam());
    EXPECT_EQ(row({5, 5}, 0, nullptr), PrimNullPtrErr);
    EXPECT_EQ(column({5, 5}, 0, &bytes), PrimSizeErr);
    EXPECT_EQ(column({5, 5}, 3, &bytes), PrimOk);
    EXPECT_EQ(bytes, 8 * 12 + 64);
}

TEST_P(SobelBorder, ChecksArgumentsInOrderAndWritesNothingOnError) {
    const PrimSize size = {6, 4};
    const kvtest::MarginImage image = RandomImage(size, 5);
    for (SobelFilter filter : {SobelFilter::Horiz, SobelFilter::NegVert}) {
        std::vector<uint8_t> work(4096, 0xEE);
        Destination dst(size, false);
        const uint8_t* src = image.origin();
        int16_t* out = dst.data();
        auto call = [&](const uint8_t* s, int32_t srcStep, int16_t* d, int32_t dstStep, PrimSize roi, int32_t mask,
                        int32_t border, uint8_t* buffer) {
            return Filter(filter, s, srcStep, d, dstStep, roi, mask, border, 0, buffer);
        };
        EXPECT_EQ(call(src, 0, out, 0, {0, 4}, 44, 5, nullptr), PrimNullPtrErr);
        EXPECT_EQ(call(src, 0, nullptr, 12, size, MaskSize3x3, BorderRepl, work.data()), PrimNullPtrErr);
        EXPECT_EQ(call(src, 0, out, 0, {6, 0}, 44, 5, work.data()), PrimSizeErr);
        EXPECT_EQ(call(src, 5, out, 13, size, 44, 5, work.data()), PrimStepErr);
        EXPECT_EQ(call(src, 6, out, 11, size, 44, 5, work.data()), PrimStepErr) << "2 * width - 1";
        EXPECT_EQ(call(src, 6, out, 13, size, 44, 5, work.data()), PrimStepNotEvenErr) << "2 * width + 1";
        for (int32_t border : {5, 7, 15, BorderRepl + 256})
            EXPECT_EQ(call(src, 6, out, 14, size, 44, border, work.data()), PrimBadArgErr) << border;
        EXPECT_EQ(call(src, 6, out, 14, size, MaskSize1x5, BorderRepl + 256 + BorderInMemTop, work.data()),
                  PrimMaskSizeErr);
        EXPECT_EQ(dst.Region(), std::vector<int16_t>(24, kUntouched));
        EXPECT_EQ(work, std::vector<uint8_t>(4096, 0xEE));
        // A high bit with a side flag is accepted: the rows above are read.
        EXPECT_EQ(call(src, image.step, out, dst.step(), size, MaskSize3x3, BorderRepl + 256 + BorderInMemTop,
                       work.data()),
                  PrimOk);
        EXPECT_EQ(dst.Region(), kvtest::SobelReference(image, filter, MaskSize3x3, BorderRepl | BorderInMemTop, 0));
    }
}

KV_ALL_JUMP_INDICES(SobelBorder);

}  // namespace
