#include <xmmintrin.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

using Twist = float[3][4];

// The defining arithmetic, one channel at a time, in single precision and in
// the order the sums are formed; the test runs in round-to-nearest mode.
std::vector<uint8_t> TwistReference(std::vector<uint8_t> image, int32_t step, PrimSize size, const Twist& t) {
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            uint8_t* p = &image[y * step + 4 * x];
            float s0 = p[0], s1 = p[1], s2 = p[2];
            for (int i = 0; i < 3; ++i) {
                float a = t[i][3] + s0 * t[i][0];
                float b = s2 * t[i][2] + s1 * t[i][1];
                float v = a + b;
                v = v < 255.0f ? v : 255.0f;
                v = v > 0.0f ? v : 0.0f;
                p[i] = static_cast<uint8_t>(std::nearbyint(v));
            }
        }
    }
    return image;
}

// One pixel (v, v, v, 77) twisted by t.
std::vector<uint8_t> TwistOne(uint8_t v, const Twist& t) {
    std::vector<uint8_t> pixel = {v, v, v, 77};
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(pixel.data(), 4, {1, 1}, t), PrimOk);
    return pixel;
}

class ColorTwist : public EveryJumpIndex {
protected:
    void TearDown() override {
        _mm_setcsr(0x1F80);
        EveryJumpIndex::TearDown();
    }
};

TEST_P(ColorTwist, EqualsTheReferenceOnRandomImagesAndMatrices) {
    const Twist emphase = {{1.4f, -0.2f, -0.2f, -0.4f}, {-0.2f, 1.4f, -0.2f, -0.55f}, {-0.2f, -0.2f, 1.4f, -0.4f}};
    const PrimSize sizes[] = {{1, 1}, {3, 2}, {4, 1}, {5, 3}, {17, 4}, {31, 5}, {64, 2}, {103, 3}};
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> weight(-2.0f, 2.0f), offset(-100.0f, 300.0f);
    for (const PrimSize& size : sizes) {
        for (int pad : {0, 12}) {
            Twist random;
            for (auto& row : random) {
                for (int k = 0; k < 3; ++k) row[k] = weight(generator);
                row[3] = offset(generator);
            }
            for (const Twist* t : {&emphase, const_cast<const Twist*>(&random)}) {
                int32_t step = size.width * 4 + pad;
                auto image = kvtest::RandomBytes(size_t(step) * size.height, size.width * 31 + pad);
                auto expected = TwistReference(image, step, size, *t);
                ASSERT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), step, size, *t), PrimOk);
                EXPECT_EQ(image, expected) << size.width << "x" << size.height << " step " << step;
            }
        }
    }
}

TEST_P(ColorTwist, RoundsTiesToEvenAndSaturates) {
    const Twist half = {{1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}};
    EXPECT_EQ(TwistOne(2, half), (std::vector<uint8_t>{2, 2, 2, 77}));
    EXPECT_EQ(TwistOne(3, half), (std::vector<uint8_t>{4, 4, 4, 77}));

    const Twist doubled = {{2, 0, 0, 0}, {0, 2, 0, 0}, {0, 0, 2, 0}};
    EXPECT_EQ(TwistOne(200, doubled), (std::vector<uint8_t>{255, 255, 255, 77}));
    const Twist darker = {{1, 0, 0, -30}, {0, 1, 0, -30}, {0, 0, 1, -30}};
    EXPECT_EQ(TwistOne(20, darker), (std::vector<uint8_t>{0, 0, 0, 77}));

    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Twist notANumber = {{nan, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, nan}};
    EXPECT_EQ(TwistOne(9, notANumber), (std::vector<uint8_t>{255, 0, 255, 77}));
}

// Sums near a tie show the pairing: (offset + s0*w0) + (s2*w2 + s1*w1). With
// pixel (1, 1, 1) and e = 2^-23, row 0 sums 2.5 + (e + e), just above the tie,
// where a running sum would lose each e to ties-to-even; row 1 sums
// (2.5 + e) + e, a tie, where adding the products first would not.
TEST_P(ColorTwist, TheOrderOfAdditionsDecidesTies) {
    const float e = std::ldexp(1.0f, -23);
    const Twist nearTies = {{0, e, e, 2.5f}, {e, e, 0, 2.5f}, {0, 0, 1, 0}};
    uint8_t pixel[4] = {1, 1, 1, 0};
    ASSERT_EQ(primiColorTwist32f_8u_AC4IR(pixel, 4, {1, 1}, nearTies), PrimOk);
    EXPECT_EQ(std::vector<uint8_t>(pixel, pixel + 4), (std::vector<uint8_t>{3, 2, 1, 0}));
}

TEST_P(ColorTwist, IdentityKeepsEveryByteValueAndChannelsDoNotFeedEachOther) {
    std::vector<uint8_t> image(256 * 4);
    for (int v = 0; v < 256; ++v) image[4 * v] = image[4 * v + 1] = image[4 * v + 2] = image[4 * v + 3] = v;
    auto before = image;
    const Twist identity = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    ASSERT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 256 * 4, {256, 1}, identity), PrimOk);
    EXPECT_EQ(image, before);

    // A rotation of the channels reads all three before writing any.
    uint8_t pixel[4] = {10, 20, 30, 40};
    const Twist rotate = {{0, 0, 1, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}};
    ASSERT_EQ(primiColorTwist32f_8u_AC4IR(pixel, 4, {1, 1}, rotate), PrimOk);
    EXPECT_EQ(std::vector<uint8_t>(pixel, pixel + 4), (std::vector<uint8_t>{30, 10, 20, 40}));
}

TEST_P(ColorTwist, RoundsToNearestUnderAnyCallerModeAndRestoresOnlyAnotherMode) {
    const Twist half = {{1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}};
    const uint32_t truncating = 0x1F80 | 0x6000;
    _mm_setcsr(truncating);
    EXPECT_EQ(TwistOne(3, half)[0], 4);
    EXPECT_EQ(_mm_getcsr(), truncating) << "the caller's word, flags included, is back";

    // Under round-to-nearest nothing is restored: the inexact flag raised by
    // the conversion of 3.5 stays set.
    _mm_setcsr(0x1F80);
    EXPECT_EQ(TwistOne(3, half)[0], 4);
    EXPECT_EQ(_mm_getcsr() & 0x6000, 0u);
    EXPECT_NE(_mm_getcsr() & 0x20, 0u);
}

TEST_P(ColorTwist, RefusesBadArgumentsInOrderAndWritesNothing) {
    const Twist identity = {{1, 0, 0, 9}, {0, 1, 0, 9}, {0, 0, 1, 9}};
    std::vector<uint8_t> image(64, 5);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(nullptr, 0, {0, 1}, identity), PrimNullPtrErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 16, {4, 4}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {4, 0}, identity), PrimSizeErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {-1, 4}, identity), PrimSizeErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {4, 4}, identity), PrimStepErr);
    EXPECT_EQ(image, std::vector<uint8_t>(64, 5));
    // A step of 1 is accepted: rows may overlap.
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 1, {1, 2}, identity), PrimOk);
}

KV_ALL_JUMP_INDICES(ColorTwist);

}  // namespace
