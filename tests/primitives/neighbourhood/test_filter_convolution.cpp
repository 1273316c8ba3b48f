#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <algorithm>
#include <cmath>

#include "jump_index.h"
#include "padded_source.h"

namespace {

using kvtest::Destination;
using kvtest::PaddedSource;

// The sum v divided as the divisor asks: 1 clamps, a power of two rounds
// the exact quotient to nearest even, anything else multiplies by the float
// reciprocal and rounds to nearest even.
uint8_t Divided(int32_t v, int32_t divisor) {
    double r = v;
    if (divisor > 1 && (divisor & (divisor - 1)) == 0) {
        r = std::nearbyint(double(v) / divisor);
    } else if (divisor != 1) {
        r = std::nearbyint(std::min(std::max(float(v) * (1.0f / float(divisor)), -1.0f), 256.0f));
    }
    return uint8_t(std::min(std::max(r, 0.0), 255.0));
}

struct Case {
    PrimSize roi, kernelSize;
    PrimPoint anchor;
    std::vector<int32_t> kernel;
    int32_t divisor;

    kvtest::Reach Reach() const {
        return {kernelSize.width - 1 - anchor.x, kernelSize.height - 1 - anchor.y, anchor.x, anchor.y};
    }
    PrimStatus Run(const PaddedSource& src, Destination& dst) const {
        return primiFilter_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, roi, kernel.data(), kernelSize, anchor,
                                   divisor);
    }
    // K[j][i] meets the source pixel at (x + anchor.x - i, y + anchor.y - j);
    // the sum wraps in 32 bits.
    void ExpectReference(uint32_t seed) const {
        PaddedSource src(roi, Reach(), int32_t(seed % 3) * 4, seed);
        Destination dst(roi, int32_t(seed % 2) * 8, seed + 1);
        auto expected = dst.Expected([&](int x, int y, int c) {
            uint32_t sum = 0;
            for (int j = 0; j < kernelSize.height; ++j)
                for (int i = 0; i < kernelSize.width; ++i)
                    sum += uint32_t(kernel[j * kernelSize.width + i]) * uint32_t(src.at(x + anchor.x - i, y + anchor.y - j, c));
            return Divided(int32_t(sum), divisor);
        });
        ASSERT_EQ(Run(src, dst), PrimOk);
        ASSERT_EQ(dst.bytes, expected) << roi.width << "x" << roi.height << " kernel " << kernelSize.width << "x"
                                       << kernelSize.height << " anchor " << anchor.x << "," << anchor.y << " divisor "
                                       << divisor;
    }
};

std::vector<int32_t> RandomKernel(PrimSize size, int32_t spread, uint32_t seed) {
    std::vector<int32_t> kernel;
    for (uint8_t b : kvtest::RandomBytes(size_t(size.width) * size.height, seed))
        kernel.push_back(int32_t(b % (2 * spread + 1)) - spread);
    return kernel;
}

class Convolution : public EveryJumpIndex {};

// Kernels narrower than 3 and regions narrower than 4 take the per-pixel
// path, the others the row path.
TEST_P(Convolution, EqualsTheFlippedSumOnRandomImagesKernelsAndDivisors) {
    const PrimSize kernels[] = {{1, 1}, {1, 3}, {2, 2}, {3, 1}, {3, 3}, {4, 2}, {5, 5}, {7, 3}, {2, 5}, {6, 4}};
    const int32_t divisors[] = {1, 2, 4, 64, 3, 9, -6, -1, 7};
    uint32_t seed = 0;
    for (PrimSize k : kernels)
        for (PrimSize roi : kvtest::AwkwardRegions())
            for (PrimPoint anchor : {PrimPoint{0, 0}, PrimPoint{k.width - 1, k.height - 1}, PrimPoint{k.width / 2, k.height / 2}}) {
                ++seed;
                Case{roi, k, anchor, RandomKernel(k, 1 + seed % 12, seed), divisors[seed % 9]}.ExpectReference(seed);
            }
}

// Coefficients outside -32767..32766 send the call to the per-pixel path;
// either side of that edge, and with sums that wrap, the bytes agree. The
// anchor is not checked: one outside the kernel moves the window.
TEST_P(Convolution, LargeCoefficientsWrappingSumsAndOutlyingAnchors) {
    const int32_t edges[] = {32766, -32767, 32767, -32768, 1 << 20, -2147483647 - 1, 2147483647};
    uint32_t seed = 100;
    for (int32_t edge : edges)
        for (PrimSize roi : {PrimSize{9, 3}, PrimSize{2, 2}})
            for (int32_t divisor : {1, 8, 1 << 30, 255, -3}) {
                auto kernel = RandomKernel({3, 3}, 30000, ++seed);
                kernel[seed % 9] = edge;
                Case{roi, {3, 3}, {1, 1}, kernel, divisor}.ExpectReference(seed);
            }
    Case{{6, 3}, {3, 2}, {-1, 2}, RandomKernel({3, 2}, 5, 16), 3}.ExpectReference(16);
    Case{{6, 3}, {3, 2}, {4, -1}, RandomKernel({3, 2}, 5, 17), 1}.ExpectReference(17);
    // Without scratch the row path falls back to the per-pixel one.
    kvtest::FailingAllocations failing;
    Case{{11, 3}, {5, 3}, {2, 1}, RandomKernel({5, 3}, 40, 13), 12}.ExpectReference(14);
}

// The row path converts in the current rounding mode; the per-pixel path
// rounds to nearest whatever the mode. -3 / -2 = 1.5 exactly in any mode.
TEST_P(Convolution, OnlyTheRowPathFollowsTheRoundingMode) {
    auto roundedDown = [](int32_t width) {
        Case c{{width, 1}, {3, 3}, {1, 1}, {-1, 0, 0, 0, 0, 0, 0, 0, 0}, -2};
        PaddedSource src(c.roi, c.Reach(), 0, 11);
        std::fill(src.bytes.begin(), src.bytes.end(), 3);
        Destination dst(c.roi, 0, 12);
        const unsigned saved = _mm_getcsr();
        _mm_setcsr((saved & ~0x6000u) | 0x2000u);
        c.Run(src, dst);
        _mm_setcsr(saved);
        return int(dst.bytes[0]);
    };
    EXPECT_EQ(roundedDown(4), 1);
    EXPECT_EQ(roundedDown(3), 2);
}

// The divisor is tested ahead of the steps, which must hold a row.
TEST_P(Convolution, ChecksArgumentsInOrderAndWritesNothingOnError) {
    const std::vector<int32_t> ones(9, 1);
    PaddedSource src({4, 2}, {1, 1, 1, 1}, 0, 18);
    Destination dst({4, 2}, 0, 19);
    const auto before = dst.bytes;
    const int32_t tightStep = (4 + 3) * 4 - 4;
    auto call = [&](const int32_t* k, int32_t srcStep, int32_t dstStep, PrimSize roi, PrimSize ks, int32_t divisor) {
        return primiFilter_8u_AC4R(src.roi(), srcStep, dst.data(), dstStep, roi, k, ks, {1, 1}, divisor);
    };
    EXPECT_EQ(call(nullptr, 0, 16, {0, 2}, {3, 3}, 0), PrimNullPtrErr);
    EXPECT_EQ(call(ones.data(), 0, 16, {4, 2}, {3, 0}, 0), PrimSizeErr);
    EXPECT_EQ(call(ones.data(), 0, 16, {4, -2}, {3, 3}, 9), PrimSizeErr);
    EXPECT_EQ(call(ones.data(), 0, 0, {4, 2}, {3, 3}, 0), PrimDivisorErr);
    EXPECT_EQ(call(ones.data(), tightStep - 1, 16, {4, 2}, {3, 3}, 9), PrimStepErr);
    EXPECT_EQ(call(ones.data(), tightStep, 15, {4, 2}, {3, 3}, 9), PrimStepErr);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_EQ(call(ones.data(), tightStep, 16, {4, 2}, {3, 3}, 9), PrimOk);
}

KV_ALL_JUMP_INDICES(Convolution);

}  // namespace
