// primiRemap_8u_AC4R: every kernel, with and without smoothing, against the
// plain reference on random images, maps and rectangles, small sources that
// step the kernel down included, under either rounding mode of the caller;
// the argument tests in their order.
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
                        // Half the calls come with the caller's rounding
                        // toward zero, which must neither matter nor change.
                        const uint32_t mode = seed % 2 == 0 ? 0x0000 : 0x6000, callerWord = prim_set_rc_ssx(mode);
                        const PrimStatus status = scene.Run(kernel | smooth);
                        const uint32_t wordAfter = ps_get_ssx();
                        prim_set_cw_ssx(callerWord);
                        ASSERT_EQ(status, PrimOk);
                        ASSERT_EQ(wordAfter & 0x6000, mode);
                        ASSERT_EQ(scene.dst.bytes, expected) << "seed " << seed << " kernel " << kernel;
                    }
        }
    }
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
    const auto remap = primiRemap_8u_AC4R;
    EXPECT_EQ(remap(src, size, 24, roi, xs, 20, nullptr, 20, dst, 20, {0, 4}, 99), PrimNullPtrErr);
    EXPECT_EQ(remap(src, size, 24, roi, xs, 20, ys, 20, nullptr, 20, dstSize, 2), PrimNullPtrErr);
    EXPECT_EQ(remap(src, {6, 0}, 24, roi, xs, 20, ys, 20, dst, 20, dstSize, 99), PrimSizeErr);
    EXPECT_EQ(remap(src, size, 24, {-1, 0, 6, 6}, xs, 20, ys, 20, dst, 0, dstSize, 2), PrimSizeErr);
    EXPECT_EQ(remap(src, size, 24, {0, 0, 6, 0}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimSizeErr);
    EXPECT_EQ(remap(src, size, 24, roi, xs, 20, ys, 20, dst, 20, {5, 0}, 2), PrimSizeErr);
    EXPECT_EQ(remap(src, size, 24, roi, xs, 20, ys, 20, dst, 0, dstSize, 3), PrimInterpolationErr);
    EXPECT_EQ(remap(src, size, 24, roi, xs, 20, ys, 20, dst, 20, dstSize, 8 | InterpSmoothEdge), PrimInterpolationErr);
    EXPECT_EQ(remap(src, size, 24, {6, 0, 1, 1}, xs, 20, ys, 0, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(remap(src, size, 0, roi, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(remap(src, size, 24, roi, xs, -4, ys, 20, dst, 20, dstSize, 2), PrimStepErr);
    EXPECT_EQ(remap(src, size, 24, {6, 0, 1, 1}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimNoOverlapWrn);
    EXPECT_EQ(remap(src, size, 24, {0, 6, 1, 1}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimNoOverlapWrn);
    EXPECT_EQ(scene.dst.bytes, before);
    EXPECT_EQ(remap(src, size, 24, {5, 5, 99, 99}, xs, 20, ys, 20, dst, 20, dstSize, 2), PrimOk);
}

KV_ALL_JUMP_INDICES(Remap);

}  // namespace
