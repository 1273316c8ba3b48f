// The random generator through its two users: uniform vectors and Gaussian
// noise on images.
#include <xmmintrin.h>

#include <cmath>
#include <tuple>
#include <vector>

#include "jump_index.h"
#include "noise_reference.h"
#include "test_support.h"

namespace {

class RandUniform : public EveryJumpIndex {};

// The reference's first outputs for seed 0 are worked out by hand from the
// recurrence (x2 = 1013904243, x3 = 924302730). A second call continues the
// sequence; equal limits give that value everywhere.
TEST_P(RandUniform, FloatsFollowTheSequenceFromItsFirstValuesOn) {
    kvtest::ReferenceGenerator worked(0);
    for (int32_t v : {-2143376656, -1588453546, -1238212167, -415855842, -631588969, 1034660151})
        ASSERT_EQ(worked.Next(), v);
    for (auto [low, high, seed] : {std::tuple{-3.5f, 12.25f, 0u}, {2.5f, 2.5f, 9u}}) {
        const double mean = (low + high) * 0.5, scale = (high - low) * 2.3283064365387e-10;
        PrimRandUniformState_32f* state = nullptr;
        ASSERT_EQ(KV_BUILD(primsRandUniformInitAlloc_32f, GetParam())(&state, low, high, seed), PrimOk);
        kvtest::ReferenceGenerator generator(seed);
        for (int length : {6, 1000}) {
            std::vector<float> values(length);
            ASSERT_EQ(KV_BUILD(primsRandUniform_32f, GetParam())(values.data(), length, state), PrimOk);
            for (int k = 0; k < length; ++k)
                ASSERT_EQ(values[k], static_cast<float>(generator.Next() * scale + mean)) << low << " " << k;
        }
        EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, GetParam())(state), PrimOk);
    }
}

// Rounding follows the current mode, and the low 16 bits are stored as they
// are: with limits -32768..32767 a value rounded up to 32768 wraps.
TEST_P(RandUniform, ShortsRoundInTheCurrentModeAndKeepTheLow16Bits) {
    const int16_t limits[][2] = {{0, 1024}, {-32768, 32767}, {100, -100}};
    for (const auto& limit : limits) {
        const double mean = (limit[0] + limit[1]) * 0.5, scale = (limit[1] - limit[0]) * 2.3283064365387e-10;
        for (unsigned mode : {_MM_ROUND_NEAREST, _MM_ROUND_TOWARD_ZERO}) {
            PrimRandUniformState_16s* state = nullptr;
            ASSERT_EQ(KV_BUILD(primsRandUniformInitAlloc_16s, GetParam())(&state, limit[0], limit[1], 77), PrimOk);
            std::vector<int16_t> values(4000);
            const unsigned saved = _MM_GET_ROUNDING_MODE();
            _MM_SET_ROUNDING_MODE(mode);
            ASSERT_EQ(KV_BUILD(primsRandUniform_16s, GetParam())(values.data(), 4000, state), PrimOk);
            _MM_SET_ROUNDING_MODE(saved);
            kvtest::ReferenceGenerator generator(77);
            for (int k = 0; k < 4000; ++k) {
                double r = generator.Next() * scale + mean;
                long whole = static_cast<long>(mode == _MM_ROUND_NEAREST ? std::nearbyint(r) : std::trunc(r));
                ASSERT_EQ(values[k], static_cast<int16_t>(static_cast<uint16_t>(whole))) << limit[0] << " " << k;
            }
            EXPECT_EQ(KV_BUILD(primsRandUniformFree_16s, GetParam())(state), PrimOk);
        }
    }
}

TEST_P(RandUniform, RefusesNullsLengthsAndTheOtherKindOfState) {
    const int index = GetParam();
    PrimRandUniformState_32f* floats = nullptr;
    PrimRandUniformState_16s* shorts = nullptr;
    ASSERT_EQ(KV_BUILD(primsRandUniformInitAlloc_32f, index)(&floats, 0, 1, 1), PrimOk);
    ASSERT_EQ(KV_BUILD(primsRandUniformInitAlloc_16s, index)(&shorts, 0, 1, 1), PrimOk);
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
    EXPECT_TRUE(f[0] == 7 && s[0] == 7);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, index)(nullptr), PrimNullPtrErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, index)(shortsAsFloats), PrimContextErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_16s, index)(floatsAsShorts), PrimContextErr);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_32f, index)(floats), PrimOk);
    EXPECT_EQ(KV_BUILD(primsRandUniformFree_16s, index)(shorts), PrimOk);
}

KV_ALL_JUMP_INDICES(RandUniform);

class AddRandGauss : public EveryJumpIndex {};

// Rows wider than the pixels need keep their padding; mean 0 with
// deviation 0 changes nothing and still moves the seed; large means and
// deviations saturate.
TEST_P(AddRandGauss, EqualsThePolarReferenceOnRandomImages) {
    struct Case {
        int32_t width, height, pad;
        uint8_t mean, deviation;
        uint32_t seed;
    };
    const Case cases[] = {{1, 1, 0, 0, 8, 0},     {1, 5, 4, 3, 40, 1},      {2, 1, 0, 0, 255, 5},
                          {6, 2, 0, 0, 0, 5},     {3, 3, 12, 128, 20, 7},   {7, 5, 8, 0, 8, 123456},
                          {17, 9, 0, 255, 255, 42}, {33, 2, 20, 200, 0, 9}, {128, 3, 4, 60, 100, 0xFFFFFFFFu}};
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
        EXPECT_EQ(image, expected) << c.width << "x" << c.height << " mean " << int(c.mean);
        EXPECT_EQ(seed, expectedSeed);
        EXPECT_NE(seed, c.seed);
    }
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
