#include <gtest/gtest.h>
#include <xmmintrin.h>

#include "fixed_reference.h"
#include "jump_index.h"
#include "padded_source.h"

namespace {

using kvtest::Destination;
using kvtest::FixedFilter;
using kvtest::PaddedSource;

// The Roberts filters read only the row above and one side: the source is
// cut to that.
PaddedSource Source(const FixedFilter& f, PrimSize roi, int32_t extraStep, uint32_t seed) {
    const int r = f.radius;
    if (f.name == "RobertsDown") return PaddedSource(roi, {1, 1, 0, 0}, extraStep, seed);
    if (f.name == "RobertsUp") return PaddedSource(roi, {0, 1, 1, 0}, extraStep, seed);
    return PaddedSource(roi, {r, r, r, r}, extraStep, seed);
}

std::vector<uint8_t> Expected(const FixedFilter& f, const PaddedSource& src, const Destination& dst) {
    return dst.Expected([&](int x, int y, int c) {
        return f.At([&](int sx, int sy, int sc) { return src.at(sx, sy, sc); }, x, y, c);
    });
}

class FixedFilters : public EveryJumpIndex {};

TEST_P(FixedFilters, EqualTheirKernelsOnRandomImages) {
    auto regions = kvtest::AwkwardRegions();
    regions.push_back({37, 7});
    uint32_t seed = 0;
    for (const auto& f : kvtest::FixedFilters())
        for (PrimSize roi : regions) {
            ++seed;
            PaddedSource src = Source(f, roi, int32_t(seed % 3) * 4, seed);
            Destination dst(roi, int32_t(seed % 2) * 8, seed + 1);
            auto expected = Expected(f, src, dst);
            ASSERT_EQ(f.call(src.roi(), src.step, dst.data(), dst.step, roi), PrimOk) << f.name;
            ASSERT_EQ(dst.bytes, expected) << f.name << " " << roi.width << "x" << roi.height;
        }
}

// Gauss 5x5 rounds to nearest whatever mode the caller left, and gives the
// caller's mode back.
TEST_P(FixedFilters, Gauss5x5IgnoresTheCallersRoundingMode) {
    const FixedFilter& f = kvtest::FixedFilterNamed("Gauss5x5");
    PaddedSource src = Source(f, {21, 4}, 0, 7);
    const unsigned saved = _mm_getcsr();
    for (unsigned mode : {0x2000u, 0x4000u, 0x6000u}) {
        Destination dst({21, 4}, 0, mode);
        auto expected = Expected(f, src, dst);
        _mm_setcsr((saved & ~0x6000u) | mode);
        f.call(src.roi(), src.step, dst.data(), dst.step, {21, 4});
        const unsigned after = _mm_getcsr();
        _mm_setcsr(saved);
        EXPECT_EQ(after & 0x6000u, mode);
        EXPECT_EQ(dst.bytes, expected) << std::hex << mode;
    }
}

// The size comes ahead of the steps here. The Roberts filters need no
// scratch; every other one reports the failed allocation before it writes.
TEST_P(FixedFilters, ChecksArgumentsInOrderAndWritesNothingOnError) {
    PaddedSource src({4, 3}, {2, 2, 2, 2}, 0, 3);
    Destination dst({4, 3}, 0, 4);
    const auto before = dst.bytes;
    const uint8_t* s = src.roi();
    uint8_t* d = dst.data();
    for (const auto& f : kvtest::FixedFilters()) {
        EXPECT_EQ(f.call(nullptr, src.step, d, 16, {0, 3}), PrimNullPtrErr) << f.name;
        EXPECT_EQ(f.call(s, 0, d, 16, {4, 0}), PrimSizeErr) << f.name;
        EXPECT_EQ(f.call(s, -src.step, d, 16, {4, 3}), PrimStepErr) << f.name;
    }
    for (auto filter : {primiFilterLaplace_8u_AC4R, primiFilterGauss_8u_AC4R, primiFilterHipass_8u_AC4R,
                        primiFilterLowpass_8u_AC4R}) {
        EXPECT_EQ(filter(s, src.step, d, 0, {4, 3}, 44), PrimStepErr);
        EXPECT_EQ(filter(s, src.step, d, 16, {4, 3}, MaskSize3x1), PrimMaskSizeErr);
        EXPECT_EQ(filter(nullptr, src.step, d, 16, {4, 3}, 44), PrimNullPtrErr);
    }
    kvtest::FailingAllocations failing;
    for (const auto& f : kvtest::FixedFilters()) {
        if (f.name.rfind("Roberts", 0) == 0) continue;
        EXPECT_EQ(f.call(src.roi(), src.step, dst.data(), dst.step, {4, 3}), PrimMemAllocErr) << f.name;
    }
    EXPECT_EQ(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(FixedFilters);

}  // namespace
