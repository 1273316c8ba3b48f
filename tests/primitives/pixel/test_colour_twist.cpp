#include <xmmintrin.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

using Twist = float[3][4];
using Bytes = std::vector<uint8_t>;

// The defining arithmetic in single precision, in the order the sums are
// formed; the tests run in round-to-nearest mode.
Bytes TwistReference(Bytes image, int32_t step, PrimSize size, const Twist& t) {
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x) {
            uint8_t* p = &image[y * step + 4 * x];
            float s0 = p[0], s1 = p[1], s2 = p[2];
            for (int i = 0; i < 3; ++i) {
                float v = (t[i][3] + s0 * t[i][0]) + (s2 * t[i][2] + s1 * t[i][1]);
                v = v < 255.0f ? v : 255.0f;
                p[i] = static_cast<uint8_t>(std::nearbyint(v > 0.0f ? v : 0.0f));
            }
        }
    return image;
}

Bytes TwistPixel(Bytes pixel, const Twist& t) {
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
    const PrimSize sizes[] = {{1, 1}, {3, 2}, {5, 3}, {17, 4}, {103, 3}};
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> weight(-2.0f, 2.0f), offset(-100.0f, 300.0f);
    for (const PrimSize& size : sizes) {
        for (int pad : {0, 12}) {
            Twist t;
            for (auto& row : t)
                for (int k = 0; k < 4; ++k) row[k] = k < 3 ? weight(generator) : offset(generator);
            int32_t step = size.width * 4 + pad;
            auto image = kvtest::RandomBytes(size_t(step) * size.height, size.width * 31 + pad);
            auto expected = TwistReference(image, step, size, t);
            ASSERT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), step, size, t), PrimOk);
            EXPECT_EQ(image, expected) << size.width << "x" << size.height << " step " << step;
        }
    }
}

TEST_P(ColorTwist, RoundsTiesToEvenSendsNaNTo255AndPairsTheSums) {
    const Twist half = {{1, 0, 0, 0.5f}, {0, 1, 0, 0.5f}, {0, 0, 1, 0.5f}};
    EXPECT_EQ(TwistPixel({2, 3, 4, 77}, half), (Bytes{2, 4, 4, 77}));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const Twist notANumber = {{nan, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, nan}};
    EXPECT_EQ(TwistPixel({9, 9, 9, 77}, notANumber), (Bytes{255, 0, 255, 77}));

    // Sums next to a tie show the pairing (offset + s0*w0) + (s2*w2 + s1*w1).
    // With e = 2^-23, row 0 is 2.5 + (e + e), just above the tie, where a
    // running sum would lose each e; row 1 is (2.5 + e) + e, a tie, where
    // summing the products first would not be.
    const float e = std::ldexp(1.0f, -23);
    const Twist nearTies = {{0, e, e, 2.5f}, {e, e, 0, 2.5f}, {0, 0, 1, 0}};
    EXPECT_EQ(TwistPixel({1, 1, 1, 0}, nearTies), (Bytes{3, 2, 1, 0}));
}

TEST_P(ColorTwist, RoundsToNearestUnderAnyCallerModeAndRestoresOnlyAnotherMode) {
    const Twist half = {{1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}, {1, 0, 0, 0.5f}};
    const uint32_t truncating = 0x1F80 | 0x6000;
    _mm_setcsr(truncating);
    EXPECT_EQ(TwistPixel({3, 0, 0, 0}, half)[0], 4);
    EXPECT_EQ(_mm_getcsr(), truncating) << "the caller's word, flags included, is back";

    // Under round-to-nearest nothing is restored: the inexact flag of 3.5
    // stays raised.
    _mm_setcsr(0x1F80);
    EXPECT_EQ(TwistPixel({3, 0, 0, 0}, half)[0], 4);
    EXPECT_EQ(_mm_getcsr() & 0x6020, 0x20u);
}

TEST_P(ColorTwist, RefusesBadArgumentsInOrderAndWritesNothing) {
    const Twist shift = {{1, 0, 0, 9}, {0, 1, 0, 9}, {0, 0, 1, 9}};
    Bytes image(64, 5);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(nullptr, 0, {0, 1}, shift), PrimNullPtrErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 16, {4, 4}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {4, 0}, shift), PrimSizeErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {-1, 4}, shift), PrimSizeErr);
    EXPECT_EQ(primiColorTwist32f_8u_AC4IR(image.data(), 0, {4, 4}, shift), PrimStepErr);
    EXPECT_EQ(image, Bytes(64, 5));
}

KV_ALL_JUMP_INDICES(ColorTwist);

}  // namespace
