// The random generator through its two users: uniform vectors and Gaussian
// noise on images.
#include <xmmintrin.h>

#include <cmath>
#include <vector>

#include "jump_index.h"
#include "noise_reference.h"
#include "test_support.h"

namespace {

class RandUniform : public EveryJumpIndex {
protected:
    PrimRandUniformState_32f* NewFloatState(float low, float high, uint32_t seed) {
        PrimRandUniformState_32f* state = nullptr;
        EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_32f, GetParam())(&state, low, high, seed), PrimOk);
        return state;
    }
    PrimRandUniformState_16s* NewShortState(int16_t low, int16_t high, uint32_t seed) {
        PrimRandUniformState_16s* state = nullptr;
        EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_16s, GetParam())(&state, low, high, seed), PrimOk);
        return state;
    }
    std::vector<float> Floats(PrimRandUniformState_32f* state, int32_t length) {
        std::vector<float> out(length);
        EXPECT_EQ(KV_BUILD(primsRandUniform_32f, GetParam())(out.data(), length, state), PrimOk);
        return out;
    }
    std::vector<int16_t> Shorts(PrimRandUniformState_16s* state, int32_t length) {
        std::vector<int16_t> out(length);
        EXPECT_EQ(KV_BUILD(primsRandUniform_16s, GetParam())(out.data(), length, state), PrimOk);
        return out;
    }
    void Free(PrimRandUniformState_32f* state) {
        EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, GetParam())(state), PrimOk);
    }
    void Free(PrimRandUniformState_16s* state) {
        EXPECT_EQ(KV_BUILD(primsRandUniformFree_16s, GetParam())(state), PrimOk);
    }
};

TEST_P(RandUniform, FirstValuesOfSeedZeroAndTheSequenceAfter) {
    // The first generator outputs for seed 0, worked out by hand from the
    // recurrence (x2 = 1013904243, x3 = 924302730).
    const int32_t first[] = {-2143376656, -1588453546, -1238212167, -415855842, -631588969, 1034660151};
    const float low = -3.5f, high = 12.25f;
    const double mean = (low + high) * 0.5;
    const double scale = (high - low) * 2.3283064365387e-10;

    PrimRandUniformState_32f* state = NewFloatState(low, high, 0);
    std::vector<float> values = Floats(state, 6);
    for (int k = 0; k < 6; ++k) EXPECT_EQ(values[k], static_cast<float>(first[k] * scale + mean)) << k;

    // The state is written back: the next call continues the sequence.
    kvtest::ReferenceGenerator generator(0);
    for (int k = 0; k < 6; ++k) generator.Next();
    std::vector<float> more = Floats(state, 1000);
    for (int k = 0; k < 1000; ++k) ASSERT_EQ(more[k], static_cast<float>(generator.Next() * scale + mean)) << k;
    Free(state);
}

TEST_P(RandUniform, ShortsRoundInTheCurrentModeAndKeepTheLow16Bits) {
    const int16_t limits[][2] = {{0, 1024}, {-32768, 32767}, {100, -100}};
    for (const auto& limit : limits) {
        const double mean = (limit[0] + limit[1]) * 0.5;
        const double scale = (limit[1] - limit[0]) * 2.3283064365387e-10;
        for (unsigned mode : {_MM_ROUND_NEAREST, _MM_ROUND_TOWARD_ZERO}) {
            PrimRandUniformState_16s* state = NewShortState(limit[0], limit[1], 77);
            const unsigned saved = _MM_GET_ROUNDING_MODE();
            _MM_SET_ROUNDING_MODE(mode);
            std::vector<int16_t> values = Shorts(state, 4000);
            _MM_SET_ROUNDING_MODE(saved);
            kvtest::ReferenceGenerator generator(77);
            for (int k = 0; k < 4000; ++k) {
                double r = generator.Next() * scale + mean;
                long whole = static_cast<long>(mode == _MM_ROUND_NEAREST ? std::nearbyint(r) : std::trunc(r));
                ASSERT_EQ(values[k], static_cast<int16_t>(static_cast<uint16_t>(whole)))
                    << limit[0] << ".." << limit[1] << " element " << k;
            }
            Free(state);
        }
    }
}

TEST_P(RandUniform, EqualLimitsGiveThatValueEverywhere) {
    PrimRandUniformState_32f* state = NewFloatState(2.5f, 2.5f, 9);
    for (float value : Floats(state, 300)) ASSERT_EQ(value, 2.5f);
    Free(state);
}

TEST_P(RandUniform, RefusesNullsLengthsAndTheOtherKindOfState) {
    const int index = GetParam();
    PrimRandUniformState_32f* floats = NewFloatState(0, 1, 1);
    PrimRandUniformState_16s* shorts = NewShortState(0, 1, 1);
    auto* floatsAsShorts = reinterpret_cast<PrimRandUniformState_16s*>(floats);
    auto* shortsAsFloats = reinterpret_cast<PrimRandUniformState_32f*>(shorts);
    float f[2] = {7, 7};
    int16_t s[2] = {7, 7};

    EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_32f, index)(nullptr, 0, 1, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_16s, index)(nullptr, 0, 1, 0), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_32f, index)(nullptr, 0, floats), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_32f, index)(f, 2, nullptr), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_32f, index)(f, 0, shortsAsFloats), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_32f, index)(f, 2, shortsAsFloats), PrimContextErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_16s, index)(s, -1, floatsAsShorts), PrimSizeErr);
    EXPECT_EQ(KV_BUILD(primsRandUniform_16s, index)(s, 2, floatsAsShorts), PrimContextErr);
    EXPECT_EQ(f[0], 7);
    EXPECT_EQ(s[0], 7);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, index)(nullptr), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, index)(shortsAsFloats), PrimContextErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_16s, index)(floatsAsShorts), PrimContextErr);
    Free(floats);
    Free(shorts);
}

TEST_P(RandUniform, InitAllocReportsAFailedAllocation) {
    void* (*saved)(size_t) = i_malloc;
    i_malloc = [](size_t) -> void* { return nullptr; };
    PrimRandUniformState_32f* floats = nullptr;
    PrimRandUniformState_16s* shorts = nullptr;
    EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_32f, GetParam())(&floats, 0, 1, 0), PrimMemAllocErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformInitAlloc_16s, GetParam())(&shorts, 0, 1, 0), PrimMemAllocErr);
    i_malloc = saved;
    EXPECT_EQ(floats, nullptr);
    EXPECT_EQ(shorts, nullptr);
}

KV_ALL_JUMP_INDICES(RandUniform);

class AddRandGauss : public EveryJumpIndex {};

TEST_P(AddRandGauss, EqualsThePolarReferenceOnRandomImages) {
    struct Case {
        int32_t width, height, pad;
        uint8_t mean, deviation;
        uint32_t seed;
    };
    const Case cases[] = {{1, 1, 0, 0, 8, 0},      {1, 5, 4, 3, 40, 1},       {2, 1, 0, 0, 255, 5},
                          {3, 3, 12, 128, 20, 7},   {7, 5, 8, 0, 8, 123456},  {17, 9, 0, 255, 255, 42},
                          {33, 2, 20, 10, 3, 9999}, {128, 3, 4, 60, 100, 0xFFFFFFFFu}};
    for (const Case& c : cases) {
        const int32_t step = c.width * 4 + c.pad;
        std::vector<uint8_t> image = kvtest::RandomBytes(static_cast<size_t>(step) * c.height, c.width + c.seed);
        std::vector<uint8_t> expected = image;
        uint32_t expectedSeed =
            kvtest::ReferenceAddGauss(expected.data(), step, c.width, c.height, c.mean, c.deviation, c.seed);
        uint32_t seed = c.seed;
        EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(image.data(), step, {c.width, c.height}, c.mean, c.deviation,
                                                    &seed),
                  PrimOk);
        EXPECT_EQ(image, expected) << c.width << "x" << c.height << " mean " << int(c.mean) << " dev "
                                   << int(c.deviation);
        EXPECT_EQ(seed, expectedSeed);
    }
}

TEST_P(AddRandGauss, NoDeviationNoMeanLeavesTheImageButMovesTheSeed) {
    std::vector<uint8_t> image = kvtest::RandomBytes(4 * 6 * 2, 3);
    const std::vector<uint8_t> before = image;
    uint32_t seed = 5;
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(image.data(), 24, {6, 2}, 0, 0, &seed), PrimOk);
    EXPECT_EQ(image, before);
    std::vector<uint8_t> scratch = before;
    EXPECT_EQ(seed, kvtest::ReferenceAddGauss(scratch.data(), 24, 6, 2, 0, 0, 5));
    EXPECT_NE(seed, 5u);
}

TEST_P(AddRandGauss, BytesSaturateAndTheFourthByteIsNeverTouched) {
    std::vector<uint8_t> image(4 * 50, 100);
    for (size_t i = 3; i < image.size(); i += 4) image[i] = 0x5A;
    uint32_t seed = 1;
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(image.data(), 200, {50, 1}, 200, 0, &seed), PrimOk);
    for (size_t i = 0; i < image.size(); ++i) EXPECT_EQ(image[i], i % 4 == 3 ? 0x5A : 255) << i;
}

TEST_P(AddRandGauss, RefusalsFollowTheCheckOrderAndWriteNothing) {
    uint8_t pixel[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    uint32_t seed = 11;
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(nullptr, 0, {0, 1}, 0, 9, &seed), PrimNullPtrErr);
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(pixel, 8, {2, 1}, 0, 9, nullptr), PrimNullPtrErr);
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(pixel, 0, {2, 0}, 0, 9, &seed), PrimSizeErr);
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(pixel, -8, {0, 1}, 0, 9, &seed), PrimSizeErr);
    EXPECT_EQ(primiAddRandGauss_Direct_8u_AC4IR(pixel, 0, {2, 1}, 0, 9, &seed), PrimStepErr);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(pixel[i], i + 1);
    EXPECT_EQ(seed, 11u);
}

KV_ALL_JUMP_INDICES(AddRandGauss);

}  // namespace
