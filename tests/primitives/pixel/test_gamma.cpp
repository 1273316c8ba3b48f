#include <dlfcn.h>
#include <unistd.h>
#include <xmmintrin.h>

#include <cmath>
#include <vector>

#include "jump_index.h"
#include "test_support.h"

namespace {

using GammaFunction = PrimStatus (*)(uint8_t*, int32_t, PrimSize);
using Bytes = std::vector<uint8_t>;

double Forward(double v) { return v < 0.018 ? 4.5 * v : 1.099 * std::pow(v, 0.45) - 0.099; }
double Inverse(double v) { return v < 0.081 ? v / 4.5 : std::pow((v + 0.099) / 1.099, 1 / 0.45); }

Bytes ReferenceTable(double (*curve)(double)) {
    Bytes table(256);
    for (int x = 0; x < 256; ++x) table[x] = static_cast<uint8_t>(std::nearbyint(255 * curve(x / 255.0)));
    return table;
}

// The primitive's table, read from every byte value laid out in two rows of
// 128 pixels with a gap after each; the fourth bytes and the gaps must come
// through as they were.
Bytes TableOf(GammaFunction gamma) {
    const int32_t step = 128 * 4 + 8;
    Bytes image(2 * step, 0xEE);
    for (int v = 0; v < 256; ++v) {
        uint8_t* p = &image[v / 128 * step + v % 128 * 4];
        p[0] = p[1] = p[2] = v;
        p[3] = 255 - v;
    }
    Bytes untouched = image;
    EXPECT_EQ(gamma(image.data(), step, {128, 2}), PrimOk);
    Bytes table(256);
    for (int v = 0; v < 256; ++v) {
        uint8_t* p = &image[v / 128 * step + v % 128 * 4];
        table[v] = p[0];
        EXPECT_TRUE(p[1] == p[0] && p[2] == p[0]) << v;
        p[0] = p[1] = p[2] = v;
    }
    EXPECT_EQ(image, untouched) << "only colour bytes change";
    return table;
}

class Gamma : public EveryJumpIndex {};

TEST_P(Gamma, TablesFollowTheCurvesWithTiesToEven) {
    auto forward = TableOf(primiGammaFwd_8u_AC4IR);
    auto inverse = TableOf(primiGammaInv_8u_AC4IR);
    EXPECT_EQ(forward, ReferenceTable(Forward));
    EXPECT_EQ(inverse, ReferenceTable(Inverse));
}

// The tables are built at first use; a caller in a directed rounding mode
// must not move the exact ties of the linear segment (4.5 and 13.5). A
// freshly loaded library has not built them yet.
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

TEST_P(Gamma, RefusesBadArgumentsInOrderAndWritesNothing) {
    for (GammaFunction gamma : {primiGammaFwd_8u_AC4IR, primiGammaInv_8u_AC4IR}) {
        Bytes image(64, 100);
        EXPECT_EQ(gamma(nullptr, 0, {0, 0}), PrimNullPtrErr);
        EXPECT_EQ(gamma(image.data(), -4, {2, 0}), PrimSizeErr);
        EXPECT_EQ(gamma(image.data(), 0, {2, 2}), PrimStepErr);
        EXPECT_EQ(image, Bytes(64, 100));
    }
}

KV_ALL_JUMP_INDICES(Gamma);

}  // namespace
