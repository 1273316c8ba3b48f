// primiRemap_8u_AC4R: every kernel, with and without smoothing, against the
// plain reference on random images, maps and rectangles; the argument tests
// in their order; the step-down of the kernel for small sources.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "jump_index.h"
#include "primitives/pixel/image_under_test.h"
#include "remap_reference.h"

namespace {

using kvtest::ImageUnderTest;

// A float map with a row step in bytes.
struct Map {
    Map(PrimSize size, int32_t paddingBytes) : step(size.width * 4 + paddingBytes), bytes(static_cast<size_t>(step) * size.height + 4) {}
    void Set(int32_t i, int32_t j, float v) { memcpy(bytes.data() + j * step + 4 * i, &v, 4); }
    const float* data() const { return reinterpret_cast<const float*>(bytes.data()); }
    int32_t step;
    std::vector<uint8_t> bytes;
};

// Positions on one axis: inside the rectangle at random, on whole numbers,
// on and just past its bounds, in the smoothing band, far outside, and on
// the ties of the linear (1/32768) and cubic (1/1024) fraction roundings.
float Position(std::mt19937& random, int32_t first, int32_t last, int32_t size) {
    std::uniform_real_distribution<float> inside(static_cast<float>(first), static_cast<float>(last));
    std::uniform_real_distribution<float> band(first - 1.5f, last + 1.5f);
    float whole = static_cast<float>(first + static_cast<int32_t>(random() % (last - first + 1)));
    switch (random() % 14) {
        case 12: return std::min(whole + static_cast<float>(2 * (random() % 16384) + 1) / 32768.0f, static_cast<float>(last));
        case 13: return std::min(whole + static_cast<float>(2 * (random() % 512) + 1) / 1024.0f, static_cast<float>(last));
        case 0: return static_cast<float>(first);
        case 1: return static_cast<float>(last);
        case 2: return whole;
        case 3: return last + 0.001f;
        case 4: return first - 0.25f;
        case 5: return -3.0f;
        case 6: return static_cast<float>(size) + 7.5f;
        case 7: return 0.99999994f;
        case 8: case 9: return band(random);
        default: return inside(random);
    }
}

struct Scene {
    Scene(PrimSize srcSize, PrimRect roi, PrimSize dstSize, uint32_t seed)
        : src(srcSize.width, srcSize.height, 3 * (seed % 3), seed % 4, seed),
          dst(dstSize.width, dstSize.height, 4 * (seed % 2) + 1, 2, seed + 1),
          xMap(dstSize, 4 * (seed % 3)),
          yMap(dstSize, seed % 2 == 0 ? 0 : 6),
          roi(roi) {
        std::mt19937 random(seed);
        int32_t xLast = std::min(roi.x + roi.width, srcSize.width) - 1;
        int32_t yLast = std::min(roi.y + roi.height, srcSize.height) - 1;
        for (int32_t j = 0; j < dstSize.height; ++j)
            for (int32_t i = 0; i < dstSize.width; ++i) {
                xMap.Set(i, j, Position(random, roi.x, xLast, srcSize.width));
                yMap.Set(i, j, Position(random, roi.y, yLast, srcSize.height));
            }
    }

    PrimStatus Run(int32_t interpolation) {
        return primiRemap_8u_AC4R(src.data(), src.size, src.step, roi, xMap.data(), xMap.step, yMap.data(), yMap.step,
                                  dst.data(), dst.step, dst.size, interpolation);
    }

    std::vector<uint8_t> Expected(int32_t interpolation) const {
        ImageUnderTest result = dst;
        kvtest::RemapReference reference{const_cast<ImageUnderTest&>(src).data(), src.size, src.step, roi};
        reference.Run(xMap.data(), xMap.step, yMap.data(), yMap.step, result.data(), result.step, result.size,
                      interpolation);
        return result.bytes;
    }

    ImageUnderTest src, dst;
    Map xMap, yMap;
    PrimRect roi;
};

const int32_t kKernels[] = {InterpNearest, InterpLinear, InterpCubic, InterpCatmullRom, InterpLanczos3};

class Remap : public EveryJumpIndex {};

TEST_P(Remap, EveryKernelFollowsItsRuleAndLeavesOtherBytesAlone) {
    const PrimSize sources[] = {{1, 1}, {1, 4}, {2, 2}, {3, 5}, {4, 4}, {5, 7}, {6, 6}, {9, 8}, {17, 11}};
    const PrimSize destinations[] = {{1, 1}, {3, 2}, {5, 3}, {8, 2}, {13, 3}};
    uint32_t seed = 100;
    for (PrimSize source : sources) {
        const PrimRect rois[] = {{0, 0, source.width, source.height},
                                 {1, 1, source.width - 2, source.height - 2},
                                 {0, 0, 1, 1},
                                 {source.width - 1, source.height / 2, 5, 5},
                                 {0, 1, source.width + 3, 1}};
        for (PrimRect roi : rois) {
            if (roi.width < 1 || roi.height < 1 || roi.y >= source.height) continue;
            for (PrimSize destination : destinations)
                for (int32_t kernel : kKernels)
                    for (int32_t smooth : {0, InterpSmoothEdge}) {
                        Scene scene(source, roi, destination, ++seed);
                        auto expected = scene.Expected(kernel | smooth);
                        ASSERT_EQ(scene.Run(kernel | smooth), PrimOk);
                        ASSERT_EQ(scene.dst.bytes, expected)
                            << "source " << source.width << "x" << source.height << " roi " << roi.x << "," << roi.y
                            << " " << roi.width << "x" << roi.height << " destination " << destination.width << "x"
                            << destination.height << " kernel " << kernel << (smooth ? " smoothed" : "");
                    }
        }
    }
}

// Values that show the rounding and the bounds of the rows.
TEST_P(Remap, WorkedPositions) {
    ImageUnderTest src(2, 2, 0, 0, 1);
    for (int c = 0; c < 3; ++c)
        for (int y = 0; y < 2; ++y) src.at(0, y, c) = 0, src.at(1, y, c) = 255;
    ImageUnderTest dst(5, 1, 0, 0, 2);
    ImageUnderTest before = dst;
    Map xMap({5, 1}, 0), yMap({5, 1}, 0);
    const float xs[] = {0.5f, 1.0f, 1.001f, -0.25f, 129 / 32768.0f};
    for (int i = 0; i < 5; ++i) xMap.Set(i, 0, xs[i]), yMap.Set(i, 0, 0.0f);
    auto run = [&](int32_t interpolation) {
        dst = before;
        return primiRemap_8u_AC4R(src.data(), src.size, src.step, {0, 0, 2, 2}, xMap.data(), xMap.step, yMap.data(),
                                  yMap.step, dst.data(), dst.step, dst.size, interpolation);
    };
    ASSERT_EQ(run(InterpLinear), PrimOk);
    EXPECT_EQ(dst.at(0, 0, 0), 127) << "top 8160, (8160 * 16384 + 33) >> 20";
    EXPECT_EQ(dst.at(1, 0, 0), 255) << "the last column itself is inside";
    EXPECT_EQ(dst.at(2, 0, 0), before.at(2, 0, 0)) << "past the last column";
    EXPECT_EQ(dst.at(4, 0, 0), 0) << "fx = 64.5 rounds to the even 64, top 63";
    ASSERT_EQ(run(InterpNearest), PrimOk);
    EXPECT_EQ(dst.at(3, 0, 1), before.at(3, 0, 1)) << "the bound is tested before rounding";

    // In the smoothing band a quarter pixel left of the first column keeps a
    // quarter of the destination and takes the rest from column 0.
    for (int c = 0; c < 3; ++c) src.at(0, 0, c) = 200;
    ASSERT_EQ(run(InterpLinear | InterpSmoothEdge), PrimOk);
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(dst.at(3, 0, c), static_cast<int>(before.at(3, 0, c) * 0.25f + 200 * 0.75f));
    EXPECT_EQ(dst.at(3, 0, 3), before.at(3, 0, 3));
}

// The fractions round to nearest, ties to even, whatever rounding mode the
// caller has set; and the caller's mode is left as it was.
TEST_P(Remap, TheCallersRoundingModeNeitherMattersNorChanges) {
    const uint32_t towardZero = 0x6000;
    for (int32_t kernel : kKernels) {
        Scene scene({17, 11}, {0, 0, 17, 11}, {61, 17}, 77);
        auto expected = scene.Expected(kernel);
        uint32_t callerWord = prim_set_rc_ssx(towardZero);
        PrimStatus status = scene.Run(kernel);
        uint32_t wordAfter = ps_get_ssx();
        prim_set_cw_ssx(callerWord);
        EXPECT_EQ(status, PrimOk);
        EXPECT_EQ(wordAfter & 0x6000, towardZero);
        EXPECT_EQ(scene.dst.bytes, expected) << "kernel " << kernel;
    }
}

// The kernel narrows for small sources, by the whole source's size.
TEST_P(Remap, SmallSourcesStepTheKernelDown) {
    auto same = [](PrimSize source, PrimRect roi, int32_t asked, int32_t used) {
        Scene a(source, roi, {7, 3}, 55), b(source, roi, {7, 3}, 55);
        EXPECT_EQ(a.Run(asked), PrimOk);
        EXPECT_EQ(b.Run(used), PrimOk);
        return a.dst.bytes == b.dst.bytes;
    };
    EXPECT_TRUE(same({1, 9}, {0, 0, 1, 9}, InterpLanczos3, InterpNearest));
    EXPECT_TRUE(same({9, 3}, {0, 0, 9, 3}, InterpLanczos3, InterpLinear));
    EXPECT_TRUE(same({5, 9}, {0, 0, 5, 9}, InterpLanczos3, InterpCubic));
    EXPECT_TRUE(same({3, 9}, {0, 0, 3, 9}, InterpCatmullRom, InterpLinear));
    EXPECT_FALSE(same({9, 9}, {0, 0, 9, 9}, InterpLanczos3, InterpCubic));
}

// Each test decides in its turn; an error or a warning writes nothing.
TEST_P(Remap, ArgumentsAreTestedInOrder) {
    Scene scene({6, 6}, {0, 0, 6, 6}, {5, 4}, 9);
    const auto before = scene.dst.bytes;
    const uint8_t* src = scene.src.data();
    const float* xs = scene.xMap.data();
    const float* ys = scene.yMap.data();
    uint8_t* dst = scene.dst.data();
    const PrimSize size = {6, 6}, dstSize = {5, 4};
    const PrimRect roi = {0, 0, 6, 6};
    auto call = [&](const uint8_t* s, PrimSize ss, int32_t sStep, PrimRect r, const float* x, int32_t xStep,
                    const float* y, int32_t yStep, uint8_t* d, int32_t dStep, PrimSize ds, int32_t interpolation) {
        return primiRemap_8u_AC4R(s, ss, sStep, r, x, xStep, y, yStep, d, dStep, ds, interpolation);
    };
    EXPECT_EQ(call(src, size, 24, roi, xs, 20, nullptr, 20, dst, 20, {0, 4}, 99), PrimNullPtrErr);
    EXPECT_EQ(call(src, size, 24, roi, xs, 20, ys, 20, nullptr, 20, dstSize, 2), PrimNullPtrErr);
    EXPECT_EQ(call(src, {6, 0}, 24, roi, xs, 20, ys, 20, dst, 20, dstSize, 99), PrimSizeErr);
    EXPECT_EQ(call(src, size, 24, {-1, 0, 6, 6}, xs, 20, ys, 20, dst, 0, dstSize, 2), PrimSizeErr);
    EXPECT_EQ(call(src, size, 24, {0, 0, 6, 0}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimSizeErr);
    EXPECT_EQ(call(src, size, 24, roi, xs, 20, ys, 20, dst, 20, {5, 0}, 2), PrimSizeErr);
    EXPECT_EQ(call(src, size, 24, roi, xs, 20, ys, 20, dst, 0, dstSize, 3), PrimInterpolationErr);
    EXPECT_EQ(call(src, size, 24, roi, xs, 20, ys, 20, dst, 20, dstSize, 8 | InterpSmoothEdge), PrimInterpolationErr);
    EXPECT_EQ(call(src, size, 24, {6, 0, 1, 1}, xs, 20, ys, 0, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(call(src, size, 0, roi, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(call(src, size, 24, roi, xs, -4, ys, 20, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(call(src, size, 24, {6, 0, 1, 1}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimNoOverlapWrn);
    EXPECT_EQ(call(src, size, 24, {0, 6, 1, 1}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimNoOverlapWrn);
    EXPECT_EQ(scene.dst.bytes, before);
    EXPECT_EQ(call(src, size, 24, {5, 5, 99, 99}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimOk);
}

KV_ALL_JUMP_INDICES(Remap);

}  // namespace
