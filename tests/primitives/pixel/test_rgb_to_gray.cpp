#include <algorithm>
#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

using Bytes = std::vector<uint8_t>;

struct Weights {
    uint32_t c0, c1, c2;
};
const Weights kDefault = {9798, 19235, 3736};

// Each weighted byte truncated to 16 bits, then 16-bit saturating sums.
uint8_t BlockGray(const uint8_t* p, Weights w) {
    uint32_t sum = (p[0] * w.c0 >> 8) + (p[1] * w.c1 >> 8) + (p[2] * w.c2 >> 8);
    sum = std::min(std::min(sum, 65535u) + 64, 65535u) >> 7;
    return std::min(sum, 255u);
}

uint8_t SingleGray(const uint8_t* p, Weights w) {
    return std::min((p[0] * w.c0 + p[1] * w.c1 + p[2] * w.c2 + 16384) >> 15, 255u);
}

// The first blockPixels pixels of each row take the block rounding.
Bytes GrayReference(const Bytes& source, int32_t sourceStep, Bytes destination, int32_t destinationStep,
                    PrimSize size, int elementCount, int blockPixels, Weights w) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            const uint8_t* p = &source[y * sourceStep + x * elementCount];
            destination[y * destinationStep + x] = x < blockPixels ? BlockGray(p, w) : SingleGray(p, w);
        }
    return destination;
}

class RGBToGray : public EveryJumpIndex {};

TEST_P(RGBToGray, RoundsByPositionInTheRowOnRandomImages) {
    const PrimSize sizes[] = {{1, 1}, {7, 3}, {8, 2}, {9, 4}, {16, 3}, {17, 2}, {45, 5}};
    for (const PrimSize& size : sizes) {
        int32_t sourceStep = size.width * 4 + 12, destinationStep = size.width + 5;
        auto source = kvtest::RandomBytes(size_t(sourceStep) * size.height, size.width);
        Bytes destination(size_t(destinationStep) * size.height, 0xA5);
        auto expected = GrayReference(source, sourceStep, destination, destinationStep, size, 4,
                                      size.width / 8 * 8, kDefault);
        ASSERT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), sourceStep, destination.data(), destinationStep, size),
                  PrimOk);
        EXPECT_EQ(destination, expected) << size.width << "x" << size.height;
    }
}

TEST_P(RGBToGray, WorkedPixelsOnBothPaths) {
    // Nine copies of a pixel: the eighth ends the block, the ninth is alone.
    auto grayOfNine = [](uint8_t x0, uint8_t x1, uint8_t x2) {
        Bytes row, gray(9);
        for (int i = 0; i < 9; ++i) row.insert(row.end(), {x0, x1, x2, 99});
        EXPECT_EQ(primiRGBToGray_8u_AC4C1R(row.data(), 36, gray.data(), 9, {9, 1}), PrimOk);
        return Bytes{gray[7], gray[8]};
    };
    EXPECT_EQ(grayOfNine(255, 255, 255), (Bytes{255, 255}));
    EXPECT_EQ(grayOfNine(0, 0, 172), (Bytes{20, 20}));
    EXPECT_EQ(grayOfNine(10, 10, 10), (Bytes{10, 10}));
    EXPECT_EQ(grayOfNine(0, 5, 5), (Bytes{3, 4})) << "the two roundings differ";
}

TEST_P(RGBToGray, RefusesNullAndEmptyButNeverTestsSteps) {
    Bytes source(32, 200), gray(8, 1);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), 16, nullptr, 4, {0, 2}), PrimNullPtrErr);
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), -1, gray.data(), 0, {4, 0}), PrimSizeErr);
    EXPECT_EQ(gray, Bytes(8, 1));
    // A source step of 0 reads the first row again for the second.
    source[0] = 0;
    EXPECT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), 0, gray.data(), 4, {2, 2}), PrimOk);
    EXPECT_EQ(Bytes(gray.begin(), gray.begin() + 2), Bytes(gray.begin() + 4, gray.begin() + 6));
}

// The three-byte layout rounds a block of four after the blocks of eight;
// given weights become fixed point and may saturate the block sums.
TEST_P(RGBToGray, ThreeByteLayoutAndGivenWeights) {
    auto myRGBToGray = KV_BUILD(myRGBToGray_8u_C3C1R, GetParam());
    const float quarter[3] = {0.5f, 0.25f, 0.25f}, heavy[3] = {1.9f, 1.9f, 1.9f};
    const Weights quarterFixed = {16384, 8192, 8192}, heavyFixed = {62259, 62259, 62259};
    for (int width : {3, 5, 12, 13, 24}) {
        for (int elementCount : {3, 4}) {
            for (auto weights : {std::make_pair(quarter, quarterFixed), std::make_pair(heavy, heavyFixed)}) {
                int32_t sourceStep = width * elementCount + 2;
                auto source = kvtest::RandomBytes(size_t(sourceStep) * 3, width * elementCount);
                Bytes destination(size_t(width) * 3, 0xA5);
                int blockPixels = width / 8 * 8 + (elementCount == 3 ? (width & 4) : 0);
                auto expected = GrayReference(source, sourceStep, destination, width, {width, 3}, elementCount,
                                              blockPixels, weights.second);
                myRGBToGray(source.data(), sourceStep, destination.data(), width, {width, 3}, weights.first,
                            elementCount);
                EXPECT_EQ(destination, expected) << "width " << width << " elements " << elementCount;
            }
        }
    }
}

KV_ALL_JUMP_INDICES(RGBToGray);

}  // namespace
