// The colour median: each pixel takes the colours of the window pixel with
// the smallest summed distance to the others, the first in row-major order
// among equals.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

#include "jump_index.h"
#include "window_images.h"

namespace {

using kvtest::Images;
using kvtest::ImageUnderTest;

int32_t Distance(const uint8_t* p, const uint8_t* q) {
    return std::abs(p[0] - q[0]) + std::abs(p[1] - q[1]) + std::abs(p[2] - q[2]);
}

std::vector<uint8_t> Expected(Images& images, int32_t edge) {
    ImageUnderTest expected = images.dst;
    const int32_t half = edge / 2;
    std::vector<const uint8_t*> window;
    for (int32_t y = 0; y < expected.size.height; ++y)
        for (int32_t x = 0; x < expected.size.width; ++x) {
            window.clear();
            for (int32_t r = 0; r < edge; ++r)
                for (int32_t c = 0; c < edge; ++c)
                    window.push_back(
                        &images.src.at(images.reach.left + x + c - half, images.reach.up + y + r - half, 0));
            size_t best = 0;
            int32_t bestScore = INT32_MAX;
            for (size_t k = 0; k < window.size(); ++k) {
                int32_t score = 0;
                for (const uint8_t* other : window) score += Distance(window[k], other);
                if (score < bestScore) best = k, bestScore = score;
            }
            for (int c = 0; c < 3; ++c) expected.at(x, y, c) = window[best][c];
        }
    return expected.bytes;
}

// Every pixel one of a few colours, with a fourth byte of its own, so that
// scores tie often and the fourth byte could sway them if it counted.
void ToPalette(ImageUnderTest& image, int colours, uint32_t seed) {
    const std::vector<uint8_t> palette = kvtest::RandomBytes(3 * colours, seed);
    std::mt19937 random(seed);
    for (size_t i = 0; i + 4 <= image.bytes.size(); i += 4) {
        const size_t pick = random() % colours;
        for (int c = 0; c < 3; ++c) image.bytes[i + c] = palette[3 * pick + c];
    }
}

int32_t MaskCode(int32_t edge) { return edge == 3 ? MaskSize3x3 : MaskSize5x5; }

class ColourMedian : public EveryJumpIndex {};

TEST_P(ColourMedian, TakesThePixelOfLeastSummedDistanceFirstAmongEquals) {
    uint32_t seed = 3000;
    for (int32_t edge : {3, 5})
        for (const auto& shape : kvtest::WindowShapes())
            for (int colours : {0, 2, 3}) {
                Images images({shape.width, shape.height}, kvtest::Rectangle({edge, edge}, {edge / 2, edge / 2}),
                              shape.padding, shape.offset, seed += 2);
                if (colours > 0) ToPalette(images.src, colours, seed);
                const std::vector<uint8_t> expected = Expected(images, edge);
                ASSERT_EQ(primiFilterMedianColor_8u_AC4R(images.region(), images.src.step, images.dst.data(),
                                                         images.dst.step, images.dst.size, MaskCode(edge)),
                          PrimOk);
                ASSERT_EQ(images.dst.bytes, expected)
                    << edge << "x" << edge << " image " << shape.width << "x" << shape.height << " colours " << colours;
            }
}

// Colours a and b score alike here (four of each, and z as far from both):
// the one met first in row-major order wins, even against the centre.
TEST_P(ColourMedian, AnEarlierPixelBeatsTheCentreOnEqualScores) {
    const uint8_t x[3] = {0, 0, 0}, y[3] = {60, 0, 0}, z[3] = {30, 100, 0};
    for (const uint8_t* a : {x, y}) {
        const uint8_t* b = a == x ? y : x;
        const uint8_t* layout[9] = {a, b, a, b, b, a, z, b, a};
        ImageUnderTest src(3, 3, 0, 0, 1), dst(1, 1, 0, 0, 2);
        for (int k = 0; k < 9; ++k) std::copy(layout[k], layout[k] + 3, &src.at(k % 3, k / 3, 0));
        const uint8_t alpha = dst.at(0, 0, 3);
        ASSERT_EQ(primiFilterMedianColor_8u_AC4R(&src.at(1, 1, 0), src.step, dst.data(), dst.step, {1, 1}, MaskSize3x3),
                  PrimOk);
        EXPECT_EQ(std::vector<uint8_t>(dst.data(), dst.data() + 4), (std::vector<uint8_t>{a[0], a[1], a[2], alpha}));
    }
}

TEST_P(ColourMedian, ArgumentsAreCheckedInOrderAndAnErrorWritesNothing) {
    ImageUnderTest src(8, 8, 0, 0, 1), dst(4, 4, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    const uint8_t* in = &src.at(2, 2, 0);
    uint8_t* out = dst.data();
    EXPECT_EQ(primiFilterMedianColor_8u_AC4R(nullptr, 32, out, 16, {0, 4}, 0), PrimNullPtrErr);
    EXPECT_EQ(primiFilterMedianColor_8u_AC4R(in, 0, out, 16, {4, -1}, 0), PrimSizeErr);
    EXPECT_EQ(primiFilterMedianColor_8u_AC4R(in, 32, out, 0, dst.size, 0), PrimStepErr);
    for (int32_t code : {int32_t{MaskSize3x1}, int32_t{MaskSize1x3}, int32_t{MaskSize5x1}, int32_t{MaskSize1x5}, 0, 77})
        EXPECT_EQ(primiFilterMedianColor_8u_AC4R(in, 32, out, 16, dst.size, code), PrimMaskSizeErr);
    EXPECT_EQ(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(ColourMedian);

}  // namespace
