#include <dlfcn.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cmath>
#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

using GammaFunction = PrimStatus (*)(uint8_t*, int32_t, PrimSize);

double Forward(double v) { return v < 0.018 ? 4.5 * v : 1.099 * std::pow(v, 0.45) - 0.099; }
double Inverse(double v) { return v < 0.081 ? v / 4.5 : std::pow((v + 0.099) / 1.099, 1 / 0.45); }

std::vector<uint8_t> ReferenceTable(double (*curve)(double)) {
    std::vector<uint8_t> table(256);
    for (int x = 0; x < 256; ++x) table[x] = static_cast<uint8_t>(std::nearbyint(255 * curve(x / 255.0)));
    return table;
}

// What the primitive makes of every byte value, read from channel 0 of a
// row of 256 pixels; the fourth bytes must come through as they were.
std::vector<uint8_t> TableOf(GammaFunction gamma) {
    std::vector<uint8_t> image(256 * 4);
    for (int v = 0; v < 256; ++v) {
        image[4 * v] = image[4 * v + 1] = image[4 * v + 2] = v;
        image[4 * v + 3] = 255 - v;
    }
    EXPECT_EQ(gamma(image.data(), 256 * 4, {256, 1}), PrimOk);
    std::vector<uint8_t> table(256);
    for (int v = 0; v < 256; ++v) {
        table[v] = image[4 * v];
        EXPECT_EQ(image[4 * v + 1], table[v]);
        EXPECT_EQ(image[4 * v + 2], table[v]);
        EXPECT_EQ(image[4 * v + 3], 255 - v);
    }
    return table;
}

std::vector<uint8_t> Head(const std::vector<uint8_t>& table) { return {table.begin(), table.begin() + 8}; }

class Gamma : public EveryJumpIndex {};

TEST_P(Gamma, TablesFollowTheCurvesWithTiesToEven) {
    auto forward = TableOf(primiGammaFwd_8u_AC4IR);
    auto inverse = TableOf(primiGammaInv_8u_AC4IR);
    EXPECT_EQ(Head(forward), (std::vector<uint8_t>{0, 4, 9, 14, 18, 23, 27, 30}));
    EXPECT_EQ(Head(inverse), (std::vector<uint8_t>{0, 0, 0, 1, 1, 1, 1, 2}));
    EXPECT_EQ(forward[255], 255);
    EXPECT_EQ(inverse[255], 255);
    EXPECT_EQ(forward, ReferenceTable(Forward));
    EXPECT_EQ(inverse, ReferenceTable(Inverse));
}

TEST_P(Gamma, LooksUpTheRegionOnlyAcrossAwkwardSizesAndSteps) {
    const auto forward = ReferenceTable(Forward);
    const PrimSize sizes[] = {{1, 1}, {3, 4}, {7, 2}, {33, 3}};
    for (const PrimSize& size : sizes) {
        int32_t step = size.width * 4 + 8;
        auto image = kvtest::RandomBytes(size_t(step) * size.height, size.width);
        auto expected = image;
        for (int y = 0; y < size.height; ++y)
            for (int x = 0; x < size.width; ++x)
                for (int c = 0; c < 3; ++c) expected[y * step + 4 * x + c] = forward[expected[y * step + 4 * x + c]];
        ASSERT_EQ(primiGammaFwd_8u_AC4IR(image.data(), step, size), PrimOk);
        EXPECT_EQ(image, expected) << size.width << "x" << size.height;
    }
}

TEST_P(Gamma, RefusesBadArgumentsInOrderAndWritesNothing) {
    for (GammaFunction gamma : {primiGammaFwd_8u_AC4IR, primiGammaInv_8u_AC4IR}) {
        std::vector<uint8_t> image(64, 100);
        EXPECT_EQ(gamma(nullptr, 0, {0, 0}), PrimNullPtrErr);
        EXPECT_EQ(gamma(image.data(), -4, {2, 0}), PrimSizeErr);
        EXPECT_EQ(gamma(image.data(), 0, {2, 2}), PrimStepErr);
        EXPECT_EQ(image, std::vector<uint8_t>(64, 100));
    }
}

// The tables are built at first use; a caller that truncates or rounds up
// must not shift the ties of the linear segment (forward 1 and 3 are exactly
// 4.5 and 13.5). A freshly loaded library has not built them yet.
TEST_P(Gamma, TablesBuiltUnderDirectedRoundingAreTheSame) {
    int index = GetParam();
    for (uint32_t mode : {0x2000u, 0x4000u, 0x6000u}) {
        auto child = kvtest::RunInChild([index, mode] {
            void* library = dlopen(KV_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
            if (library == nullptr) _exit(2);
            *static_cast<int32_t*>(dlsym(library, "primJumpIndex")) = index;
            _mm_setcsr(0x1F80 | mode);
            auto forward = TableOf(reinterpret_cast<GammaFunction>(dlsym(library, "primiGammaFwd_8u_AC4IR")));
            auto inverse = TableOf(reinterpret_cast<GammaFunction>(dlsym(library, "primiGammaInv_8u_AC4IR")));
            _mm_setcsr(0x1F80);
            _exit(forward == ReferenceTable(Forward) && inverse == ReferenceTable(Inverse) ? 0 : 1);
        });
        EXPECT_EQ(child.exitCode, 0) << "rounding bits " << mode;
    }
}

KV_ALL_JUMP_INDICES(Gamma);

}  // namespace
