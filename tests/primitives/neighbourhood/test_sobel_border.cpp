// The Sobel border filters: the window sums under every border rule, the
// signs of the two derivatives, the buffer sizes and the argument checks.
#include <cstring>
#include <string>
#include <vector>

#include "edges_reference.h"
#include "jump_index.h"
#include "test_support.h"

namespace {

using kvtest::SobelFilter;

constexpr int32_t kMargin = 2;
constexpr int16_t kUntouched = 0x7A7A;

kvtest::MarginImage RandomImage(PrimSize size, uint32_t seed) {
    kvtest::MarginImage image;
    image.size = size;
    image.margin = kMargin;
    image.step = size.width + 2 * kMargin + 3;
    image.bytes = kvtest::RandomBytes(size_t(image.step) * (size.height + 2 * kMargin), seed);
    return image;
}

// A 16-bit destination in a 32-byte-aligned block: rows on 16 bytes, or
// rows one element off and packed tighter, which rules streaming out.
struct Destination {
    Destination(PrimSize size, bool aligned)
        : width(size.width),
          height(size.height),
          offset(aligned ? 0 : 1),
          stepElements(aligned ? ((size.width + 7) & ~7) + 8 : size.width + 1),
          block(static_cast<int16_t*>(primMalloc(int32_t(2 * (offset + stepElements * size.height))))) {
        for (int32_t i = 0; i < offset + stepElements * height; ++i) block[i] = kUntouched;
    }
    ~Destination() { primFree(block); }
    int16_t* data() { return block + offset; }
    int32_t step() const { return 2 * stepElements; }
    std::vector<int16_t> Region() const {
        std::vector<int16_t> values;
        for (int32_t y = 0; y < height; ++y)
            values.insert(values.end(), block + offset + y * stepElements, block + offset + y * stepElements + width);
        return values;
    }
    // Elements outside the region that hold anything but the fill.
    int32_t Touched() const {
        int32_t count = offset > 0 && block[0] != kUntouched;
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = width; x < stepElements; ++x) count += block[offset + y * stepElements + x] != kUntouched;
        return count;
    }

    int32_t width, height, offset, stepElements;
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

// Runs a filter with a work buffer of exactly the reported size, starting
// one byte off alignment.
std::vector<int16_t> Filtered(SobelFilter filter, const kvtest::MarginImage& image, int32_t mask, int32_t border,
                              uint8_t value, bool aligned, int32_t* touched = nullptr) {
    int32_t bytes = 0;
    EXPECT_EQ(BufferSize(filter, image.size, mask, &bytes), PrimOk);
    std::vector<uint8_t> work(size_t(bytes) + 1);
    Destination dst(image.size, aligned);
    EXPECT_EQ(Filter(filter, image.origin(), image.step, dst.data(), dst.step(), image.size, mask, border, value,
                     work.data() + 1),
              PrimOk);
    if (touched != nullptr) *touched = dst.Touched();
    return dst.Region();
}

class SobelBorder : public EveryJumpIndex {};

TEST_P(SobelBorder, EqualsTheWindowSumOnRandomImagesUnderEveryBorder) {
    const PrimSize sizes[] = {{1, 1},   {1, 6},   {2, 2},   {3, 1},   {3, 4},   {4, 3},   {5, 5},
                              {6, 2},   {7, 17},  {8, 16},  {9, 18},  {15, 19}, {16, 20}, {17, 21},
                              {23, 22}, {31, 33}, {33, 36}, {12, 37}, {40, 50}, {9, 100}};
    struct Border {
        int32_t word;
        uint8_t value;
    };
    const Border borders[] = {
        {BorderConst, 0},
        {BorderConst, 77},
        {BorderRepl, 0},
        {BorderWrap, 0},
        {BorderMirror, 0},
        {BorderMirrorEdge, 0},
        {BorderInMem, 0},
        {BorderRepl | BorderInMemTop, 0},
        {BorderWrap | BorderInMemBottom | BorderInMemLeft, 0},
        {BorderMirror | BorderInMemRight, 0},
        {BorderConst | BorderInMemTop | BorderInMemLeft, 200},
        {BorderMirrorEdge | BorderInMemTop | BorderInMemBottom, 0},
    };
    uint32_t seed = 1;
    for (const PrimSize& size : sizes) {
        const kvtest::MarginImage image = RandomImage(size, seed++);
        for (const Border& border : borders)
            for (SobelFilter filter : {SobelFilter::Horiz, SobelFilter::NegVert})
                for (int32_t mask : {MaskSize3x3, MaskSize5x5}) {
                    int32_t touched = -1;
                    auto result =
                        Filtered(filter, image, mask, border.word, border.value, (seed + mask) % 2 == 0, &touched);
                    ASSERT_EQ(result, kvtest::SobelReference(image, filter, mask, border.word, border.value))
                        << size.width << "x" << size.height << " border " << border.word << " value "
                        << int(border.value) << (filter == SobelFilter::Horiz ? " Horiz " : " NegVert ") << mask;
                    ASSERT_EQ(touched, 0) << "beyond the region";
                }
    }
}

// A single 1 in zeros shows the kernel, turned half a circle since the
// filters sum without a flip: Horiz gives bottom minus top, NegVert right
// minus left, each the outer product of its row and column weights.
TEST_P(SobelBorder, AnImpulseShowsTheKernelsAndTheirSigns) {
    kvtest::MarginImage image = RandomImage({7, 7}, 9);
    for (int32_t y = 0; y < 7; ++y) memset(&image.bytes[(kMargin + y) * image.step + kMargin], 0, 7);
    image.bytes[(kMargin + 3) * image.step + kMargin + 3] = 1;
    auto window = [](const std::vector<int16_t>& out, int32_t k) {
        std::vector<int16_t> middle;
        for (int32_t y = 3 - k / 2; y <= 3 + k / 2; ++y)
            for (int32_t x = 3 - k / 2; x <= 3 + k / 2; ++x) middle.push_back(out[y * 7 + x]);
        return middle;
    };
    // clang-format off
    const std::vector<int16_t> horiz5 = { 1,  4,   6,  4,  1,
                                          2,  8,  12,  8,  2,
                                          0,  0,   0,  0,  0,
                                         -2, -8, -12, -8, -2,
                                         -1, -4,  -6, -4, -1};
    const std::vector<int16_t> negVert5 = {1,  2, 0,  -2, -1,
                                           4,  8, 0,  -8, -4,
                                           6, 12, 0, -12, -6,
                                           4,  8, 0,  -8, -4,
                                           1,  2, 0,  -2, -1};
    // clang-format on
    EXPECT_EQ(window(Filtered(SobelFilter::Horiz, image, MaskSize5x5, BorderConst, 0, true), 5), horiz5);
    EXPECT_EQ(window(Filtered(SobelFilter::NegVert, image, MaskSize5x5, BorderConst, 0, true), 5), negVert5);
    const std::vector<int16_t> horiz3 = {1, 2, 1, 0, 0, 0, -1, -2, -1};
    const std::vector<int16_t> negVert3 = {1, 0, -1, 2, 0, -2, 1, 0, -1};
    EXPECT_EQ(window(Filtered(SobelFilter::Horiz, image, MaskSize3x3, BorderConst, 0, false), 3), horiz3);
    EXPECT_EQ(window(Filtered(SobelFilter::NegVert, image, MaskSize3x3, BorderConst, 0, false), 3), negVert3);
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
        auto call = [&](const uint8_t* src, int32_t srcStep, int16_t* out, int32_t dstStep, PrimSize roi, int32_t mask,
                        int32_t border, uint8_t* buffer) {
            return Filter(filter, src, srcStep, out, dstStep, roi, mask, border, 0, buffer);
        };
        const uint8_t* src = image.origin();
        int16_t* out = dst.data();
        uint8_t* buffer = work.data();
        EXPECT_EQ(call(src, 0, out, 0, {0, 4}, 44, 5, nullptr), PrimNullPtrErr);
        EXPECT_EQ(call(nullptr, 6, out, 12, size, MaskSize3x3, BorderRepl, buffer), PrimNullPtrErr);
        EXPECT_EQ(call(src, 0, nullptr, 12, size, MaskSize3x3, BorderRepl, buffer), PrimNullPtrErr);
        EXPECT_EQ(call(src, 0, out, 0, {6, 0}, 44, 5, buffer), PrimSizeErr);
        EXPECT_EQ(call(src, 5, out, 13, size, 44, 5, buffer), PrimStepErr);
        EXPECT_EQ(call(src, 6, out, 11, size, 44, 5, buffer), PrimStepErr) << "2 * width - 1";
        EXPECT_EQ(call(src, 6, out, 13, size, 44, 5, buffer), PrimStepNotEvenErr) << "2 * width + 1";
        EXPECT_EQ(call(src, 6, out, 14, size, 44, 5, buffer), PrimBadArgErr) << "kind 5";
        EXPECT_EQ(call(src, 6, out, 14, size, 44, 7, buffer), PrimBadArgErr);
        EXPECT_EQ(call(src, 6, out, 14, size, 44, 15, buffer), PrimBadArgErr);
        EXPECT_EQ(call(src, 6, out, 14, size, 44, BorderRepl + 256, buffer), PrimBadArgErr) << "no side flag";
        EXPECT_EQ(call(src, 6, out, 14, size, 44, BorderRepl + 256 + BorderInMemTop, buffer), PrimMaskSizeErr);
        EXPECT_EQ(call(src, 6, out, 14, size, MaskSize1x5, BorderRepl, buffer), PrimMaskSizeErr);
        EXPECT_EQ(dst.Region(), std::vector<int16_t>(24, kUntouched));
        EXPECT_EQ(dst.Touched(), 0);
        EXPECT_EQ(work, std::vector<uint8_t>(4096, 0xEE));
        // A high bit with a side flag is accepted: the rows above are read.
        EXPECT_EQ(call(src, image.step, out, dst.step(), size, MaskSize3x3, BorderRepl + 256 + BorderInMemTop, buffer),
                  PrimOk);
        EXPECT_EQ(dst.Region(), kvtest::SobelReference(image, filter, MaskSize3x3, BorderRepl | BorderInMemTop, 0));
    }
}

KV_ALL_JUMP_INDICES(SobelBorder);

}  // namespace
