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
// the exact quotient to nearest with ties to even, anything else multiplies
// by the float reciprocal and rounds to nearest even.
uint8_t Divided(int32_t v, int32_t divisor) {
    auto clamp = [](int64_t r) { return uint8_t(std::min<int64_t>(std::max<int64_t>(r, 0), 255)); };
    if (divisor == 1) return clamp(v);
    if (divisor > 1 && (divisor & (divisor - 1)) == 0) {
        int64_t q = v / divisor, r = v % divisor;
        if (r < 0) r += divisor, --q;
        if (2 * r > divisor || (2 * r == divisor && (q & 1))) ++q;
        return clamp(q);
    }
    float t = float(v) * (1.0f / float(divisor));
    return clamp(int64_t(std::nearbyint(std::min(std::max(t, -1.0f), 256.0f))));
}

struct Case {
    PrimSize roi;
    PrimSize kernelSize;
    PrimPoint anchor;
    std::vector<int32_t> kernel;
    int32_t divisor;
};

class Convolution : public EveryJumpIndex {
protected:
    // The reference reads the window through the flipped kernel:
    // K[j][i] meets the source pixel at (x + anchor.x - i, y + anchor.y - j).
    static std::vector<uint8_t> Reference(const PaddedSource& src, const Destination& dst, const Case& c) {
        return dst.Expected([&](int x, int y, int ch) {
            uint32_t sum = 0;
            for (int j = 0; j < c.kernelSize.height; ++j)
                for (int i = 0; i < c.kernelSize.width; ++i)
                    sum += uint32_t(c.kernel[j * c.kernelSize.width + i]) *
                           uint32_t(src.at(x + c.anchor.x - i, y + c.anchor.y - j, ch));
            return Divided(int32_t(sum), c.divisor);
        });
    }

    static kvtest::Reach ReachOf(const Case& c) {
        return {c.kernelSize.width - 1 - c.anchor.x, c.kernelSize.height - 1 - c.anchor.y, c.anchor.x, c.anchor.y};
    }

    void ExpectReference(const Case& c, uint32_t seed) {
        PaddedSource src(c.roi, ReachOf(c), int32_t(seed % 3) * 4, seed);
        Destination dst(c.roi, int32_t(seed % 2) * 8, seed + 1);
        auto expected = Reference(src, dst, c);
        ASSERT_EQ(primiFilter_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, c.roi, c.kernel.data(),
                                      c.kernelSize, c.anchor, c.divisor),
                  PrimOk);
        ASSERT_EQ(dst.bytes, expected) << c.roi.width << "x" << c.roi.height << " kernel " << c.kernelSize.width
                                       << "x" << c.kernelSize.height << " anchor " << c.anchor.x << ","
                                       << c.anchor.y << " divisor " << c.divisor;
    }

    static std::vector<int32_t> RandomKernel(PrimSize size, int32_t spread, uint32_t seed) {
        auto bytes = kvtest::RandomBytes(size_t(size.width) * size.height, seed);
        std::vector<int32_t> kernel;
        for (uint8_t b : bytes) kernel.push_back(int32_t(b % (2 * spread + 1)) - spread);
        return kernel;
    }
};

TEST_P(Convolution, EqualsTheFlippedSumOnRandomImagesKernelsAndDivisors) {
    const PrimSize kernels[] = {{1, 1}, {1, 3}, {2, 2}, {3, 1}, {3, 3}, {4, 2}, {5, 5}, {7, 3}, {2, 5}, {6, 4}};
    const int32_t divisors[] = {1, 2, 4, 64, 3, 9, -6, -1, 7};
    uint32_t seed = 0;
    for (PrimSize k : kernels)
        for (PrimSize roi : kvtest::AwkwardRegions())
            for (PrimPoint anchor : {PrimPoint{0, 0}, PrimPoint{k.width - 1, k.height - 1}, PrimPoint{k.width / 2, k.height / 2}}) {
                ++seed;
                ExpectReference({roi, k, anchor, RandomKernel(k, 1 + seed % 12, seed), divisors[seed % 9]}, seed);
            }
}

// Coefficients beyond -32767..32766 send the call to the per-pixel path;
// either side of that edge, and with sums that wrap, the bytes agree.
TEST_P(Convolution, LargeCoefficientsAndWrappingSumsGiveTheSameBytesOnEitherPath) {
    const int32_t edges[] = {32766, -32767, 32767, -32768, 1 << 20, -2147483647 - 1, 2147483647};
    uint32_t seed = 100;
    for (int32_t edge : edges)
        for (PrimSize roi : {PrimSize{9, 3}, PrimSize{2, 2}})
            for (int32_t divisor : {1, 8, 1 << 30, 255, -3}) {
                auto kernel = RandomKernel({3, 3}, 30000, ++seed);
                kernel[seed % 9] = edge;
                ExpectReference({roi, {3, 3}, {1, 1}, kernel, divisor}, seed);
            }
}

TEST_P(Convolution, ExactHalvesGoToTheEvenQuotient) {
    // One tap of weight 1 on a byte b, divisor 4: 6, 10, 14 give 2, 2, 4.
    for (auto [value, expected] : {std::pair{6, 2}, {10, 2}, {14, 4}, {2, 0}, {255, 64}}) {
        for (PrimSize kernelSize : {PrimSize{1, 1}, PrimSize{3, 1}}) {
            std::vector<int32_t> kernel(kernelSize.width, 0);
            kernel[0] = 1;
            PaddedSource src({4, 1}, {kernelSize.width - 1, 0, 0, 0}, 0, 9);
            for (int x = 0; x < 4; ++x) src.byte(x, 0, 0) = uint8_t(value);
            Destination dst({4, 1}, 0, 10);
            primiFilter_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {4, 1}, kernel.data(), kernelSize,
                                {0, 0}, 4);
            EXPECT_EQ(dst.bytes[0], expected) << value << " kernel width " << kernelSize.width;
            EXPECT_EQ(dst.bytes[12], expected) << value << " kernel width " << kernelSize.width;
        }
    }
}

// A 4-wide region of a 3x3 kernel takes the fast path, which converts in
// the current rounding mode; a 3-wide one takes the per-pixel path, which
// rounds to nearest whatever the mode. -3 / -2 = 1.5, exactly in any mode.
TEST_P(Convolution, OnlyTheFastPathFollowsTheRoundingMode) {
    const std::vector<int32_t> kernel = {-1, 0, 0, 0, 0, 0, 0, 0, 0};
    auto filtered = [&](int32_t width) {
        PaddedSource src({width, 1}, {1, 1, 1, 1}, 0, 11);
        std::fill(src.bytes.begin(), src.bytes.end(), 3);
        Destination dst({width, 1}, 0, 12);
        const unsigned saved = _mm_getcsr();
        _mm_setcsr((saved & ~0x6000u) | 0x2000u);  // round down
        primiFilter_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, {width, 1}, kernel.data(), {3, 3}, {1, 1},
                            -2);
        _mm_setcsr(saved);
        return int(dst.bytes[0]);
    };
    EXPECT_EQ(filtered(4), 1);
    EXPECT_EQ(filtered(3), 2);
}

TEST_P(Convolution, FailedScratchFallsBackToThePerPixelPath) {
    Case c{{11, 3}, {5, 3}, {2, 1}, RandomKernel({5, 3}, 40, 13), 12};
    PaddedSource src(c.roi, ReachOf(c), 0, 14);
    Destination dst(c.roi, 4, 15);
    auto expected = Reference(src, dst, c);
    kvtest::FailingAllocations failing;
    EXPECT_EQ(primiFilter_8u_AC4R(src.roi(), src.step, dst.data(), dst.step, c.roi, c.kernel.data(), c.kernelSize,
                                  c.anchor, c.divisor),
              PrimOk);
    EXPECT_EQ(dst.bytes, expected);
}

// The anchor is not checked: one outside the kernel moves the window.
TEST_P(Convolution, AnchorOutsideTheKernelMovesTheWindow) {
    ExpectReference({{6, 3}, {3, 2}, {-1, 2}, RandomKernel({3, 2}, 5, 16), 3}, 16);
    ExpectReference({{6, 3}, {3, 2}, {4, -1}, RandomKernel({3, 2}, 5, 17), 1}, 17);
}

TEST_P(Convolution, ChecksArgumentsInOrderAndWritesNothingOnError) {
    const std::vector<int32_t> kernel(9, 1);
    PaddedSource src({4, 2}, {1, 1, 1, 1}, 0, 18);
    Destination dst({4, 2}, 0, 19);
    const auto before = dst.bytes;
    const uint8_t* s = src.roi();
    uint8_t* d = dst.data();
    const int32_t* k = kernel.data();
    const int32_t tightStep = (4 + 3) * 4 - 4;
    auto call = [&](const uint8_t* s_, uint8_t* d_, const int32_t* k_, int32_t srcStep, int32_t dstStep, PrimSize roi,
                    PrimSize ks, int32_t divisor) {
        return primiFilter_8u_AC4R(s_, srcStep, d_, dstStep, roi, k_, ks, {1, 1}, divisor);
    };
    EXPECT_EQ(call(s, d, nullptr, 0, 16, {0, 2}, {3, 3}, 0), PrimNullPtrErr);
    EXPECT_EQ(call(nullptr, d, k, tightStep, 16, {4, 2}, {3, 3}, 9), PrimNullPtrErr);
    EXPECT_EQ(call(s, d, k, 0, 16, {4, 2}, {3, 0}, 0), PrimSizeErr);
    EXPECT_EQ(call(s, d, k, 0, 16, {4, -2}, {3, 3}, 9), PrimSizeErr);
    // The divisor is tested ahead of the steps.
    EXPECT_EQ(call(s, d, k, 0, 0, {4, 2}, {3, 3}, 0), PrimDivisorErr);
    EXPECT_EQ(call(s, d, k, tightStep - 1, 16, {4, 2}, {3, 3}, 9), PrimStepErr);
    EXPECT_EQ(call(s, d, k, tightStep, 15, {4, 2}, {3, 3}, 9), PrimStepErr);
    EXPECT_EQ(dst.bytes, before);
    EXPECT_EQ(call(s, d, k, tightStep, 16, {4, 2}, {3, 3}, 9), PrimOk);
}

KV_ALL_JUMP_INDICES(Convolution);

}  // namespace
