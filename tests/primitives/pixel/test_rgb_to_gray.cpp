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

// The exported form: four-byte pixels, the default weights, blocks of eight.
// The inner form also takes three-byte pixels, whose rows round a block of
// four after the blocks of eight, and given weights, made fixed point, that
// may saturate the block sums.
TEST_P(RGBToGray, RoundsByPositionInTheRowOnRandomImages) {
    auto myRGBToGray = KV_BUILD(myRGBToGray_8u_C3C1R, GetParam());
    const float quarter[3] = {0.5f, 0.25f, 0.25f}, heavy[3] = {1.9f, 1.9f, 1.9f};
    const struct {
        const float* given;
        Weights fixed;
        int elementCount;
    } forms[] = {{nullptr, kDefault, 4},           {quarter, {16384, 8192, 8192}, 3}, {quarter, {16384, 8192, 8192}, 4},
                 {heavy, {62259, 62259, 62259}, 3}, {heavy, {62259, 62259, 62259}, 4}};
    for (const auto& form : forms)
        for (int width : {1, 3, 5, 7, 8, 9, 12, 13, 16, 17, 24, 45}) {
            const PrimSize size = {width, 3};
            int32_t sourceStep = width * form.elementCount + 12, destinationStep = width + 5;
            auto source = kvtest::RandomBytes(size_t(sourceStep) * size.height, width * form.elementCount);
            Bytes destination(size_t(destinationStep) * size.height, 0xA5);
            int blockPixels = width / 8 * 8 + (form.elementCount == 3 ? (width & 4) : 0);
            auto expected = GrayReference(source, sourceStep, destination, destinationStep, size, form.elementCount,
                                          blockPixels, form.fixed);
            if (form.given == nullptr) {
                ASSERT_EQ(primiRGBToGray_8u_AC4C1R(source.data(), sourceStep, destination.data(), destinationStep,
                                                   size),
                          PrimOk);
            } else {
                myRGBToGray(source.data(), sourceStep, destination.data(), destinationStep, size, form.given,
                            form.elementCount);
            }
            EXPECT_EQ(destination, expected) << "width " << width << " elements " << form.elementCount;
        }
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

KV_ALL_JUMP_INDICES(RGBToGray);

}  // namespace
