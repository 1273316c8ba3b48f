#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

struct Weights {
    uint32_t c0, c1, c2;
};
const Weights kDefault = {9798, 19235, 3736};

// Each weighted byte truncated to 16 bits, 16-bit saturating sums.
uint8_t BlockGray(const uint8_t* p, Weights w) {
    uint32_t sum = (p[0] * w.c0 >> 8) + (p[1] * w.c1 >> 8) + (p[2] * w.c2 >> 8);
    sum = sum > 65535 ? 65535 : sum;
    sum = sum + 64 > 65535 ? 65535 : sum + 64;
    sum >>= 7;
    return sum > 255 ? 255 : sum;
}

uint8_t SingleGray(const uint8_t* p, Weights w) {
    uint32_t sum = (p[0] * w.c0 + p[1] * w.c1 + p[2] * w.c2 + 16384) >> 15;
    return sum > 255 ? 255 : sum;
}

// blockPixels: how many leading pixels of a row take the block rounding.
std::vector<uint8_t> GrayReference(const std::vector<uint8_t>& source, int32_t sourceStep,
                                   std::vector<uint8_t> destination, int32_t destinationStep, PrimSize size,
                                   int elementCount, int blockPixels, Weights w) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const uint8_t* p = &source[y * sourceStep + x * elementCount];
            destination[y * destinationStep + x] = x < blockPixels ? BlockGray(p, w) : SingleGray(p, w);
        }
    return destination;
}

class RGBToGray : public EveryJumpIndex {};

TEST_P(RGBToGray, RoundsByPositionInTheRowOnRandomImages) {
    const PrimSize sizes[] = {{1, 1}, {7, 3}, {8, 2}, {9, 4}, {15, 1}, {16, 3}, {17, 2}, {45, 5}};
    for (const PrimSize& size : sizes) {
        int32_t sourceStep = size.width * 4 + 12, destinationStep = size.width + 5;
        auto source = kvtest::RandomBytes(size_t(sourceStep) * size.height, size.width);
        std::vector<uint8_t> destination(size_t(destinationStep) * size.height, 0xA5);
        auto expected = GrayReference(source, sourceStep, destination, destinationStep, size, 4,
                                      size.width / 8 * 8, kDefault);
        auto sourceBefore = source;
        ASSERT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), sourceStep, destination.data(), destinationStep, size),
                  PrimOk);
        EXPECT_EQ(destination, expected) << size.width << "x" << size.height;
        EXPECT_EQ(source, sourceBefore);
    }
}

TEST_P(RGBToGray, WorkedPixelsOnBothPaths) {
    // Nine copies of a pixel: eight in the block, the ninth alone.
    auto grayOfNine = [](uint8_t x0, uint8_t x1, uint8_t x2) {
        std::vector<uint8_t> row, gray(9);
        for (int i = 0; i < 9; ++i) row.insert(row.end(), {x0, x1, x2, 99});
        EXPECT_EQ(primiRGBToGray_8u_AC4C1R(row.data(), 36, gray.data(), 9, {9, 1}), PrimOk);
        return std::vector<uint8_t>{gray[0], gray[7], gray[8]};
    };
    EXPECT_EQ(grayOfNine(255, 255, 255), (std::vector<uint8_t>{255, 255, 255}));
    EXPECT_EQ(grayOfNine(0, 0, 0), (std::vector<uint8_t>{0, 0, 0}));
    EXPECT_EQ(grayOfNine(0, 0, 172), (std::vector<uint8_t>{20, 20, 20}));
    EXPECT_EQ(grayOfNine(10, 10, 10), (std::vector<uint8_t>{10, 10, 10}));
    EXPECT_EQ(grayOfNine(0, 5, 5), (std::vector<uint8_t>{3, 3, 4})) << "the two roundings differ";
}

TEST_P(RGBToGray, RefusesNullAndEmptyButNeverTestsSteps) {
    std::vector<uint8_t> source(32, 200), gray(8, 1);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), 16, nullptr, 4, {0, 2}), PrimNullPtrErr);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(nullptr, 16, gray.data(), 4, {4, 2}), PrimNullPtrErr);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), -1, gray.data(), 0, {4, 0}), PrimSizeErr);
    EXPECT_EQ(gray, std::vector<uint8_t>(8, 1));
    // A source step of 0 reads the first row again for the second.
    source[0] = 0;
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), 0, gray.data(), 4, {2, 2}), PrimOk);
    EXPECT_EQ(gray[0], gray[4]);
    EXPECT_EQ(gray[1], gray[5]);
    EXPECT_NE(gray[0], gray[1]);
}

// The three-byte layout rounds a block of four after the blocks of eight,
// and given weights are fixed point, saturating in the block sums.
TEST_P(RGBToGray, ThreeByteLayoutAndGivenWeights) {
    auto myRGBToGray = KV_BUILD(myRGBToGray_8u_C3C1R, GetParam());
    const float quarter[3] = {0.5f, 0.25f, 0.25f};
    const float heavy[3] = {1.9f, 1.9f, 1.9f};
    const Weights quarterFixed = {16384, 8192, 8192}, heavyFixed = {62259, 62259, 62259};
    for (int width : {3, 4, 5, 12, 13, 19, 24}) {
        for (int elementCount : {3, 4}) {
            for (auto weights : {std::make_pair(quarter, quarterFixed), std::make_pair(heavy, heavyFixed)}) {
                PrimSize size = {width, 3};
                int32_t sourceStep = width * elementCount + 2;
                auto source = kvtest::RandomBytes(size_t(sourceStep) * 3, width * elementCount);
                std::vector<uint8_t> destination(size_t(width) * 3, 0xA5);
                int blockPixels = width / 8 * 8 + (elementCount == 3 ? (width & 4) : 0);
                auto expected = GrayReference(source, sourceStep, destination, width, size, elementCount,
                                              blockPixels, weights.second);
                myRGBToGray(source.data(), sourceStep, destination.data(), width, size, weights.first, elementCount);
                EXPECT_EQ(destination, expected) << "width " << width << " elements " << elementCount;
            }
        }
    }
}

KV_ALL_JUMP_INDICES(RGBToGray);

}  // namespace
