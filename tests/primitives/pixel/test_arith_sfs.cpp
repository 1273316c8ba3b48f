#include <gtest/gtest.h>

#include <algorithm>

#include "image_under_test.h"
#include "jump_index.h"

namespace {

using kvtest::ImageUnderTest;

// The exact value v scaled by 2^-k: ties go to the even neighbour, and the
// result saturates at 255.
int Scaled(int v, int k) {
    if (k > 16) return 0;
    if (k > 0) {
        int quotient = v >> k, remainder = v - (quotient << k), half = 1 << (k - 1);
        return quotient + (remainder > half || (remainder == half && quotient % 2 == 1));
    }
    return k < -7 ? (v == 0 ? 0 : 255) : std::min(v << -k, 255);
}

enum class Operation { AddC, SubC, Sub };

class ArithSfs : public EveryJumpIndex {
protected:
    // Every byte of the buffer against the formula on the region's colour bytes.
    void ExpectFormula(Operation op, int k) {
        uint32_t seed = 1;
        for (const auto& shape : kvtest::AwkwardShapes()) {
            ImageUnderTest image(shape.width, shape.height, shape.padding, shape.offset, ++seed);
            ImageUnderTest other(shape.width, shape.height, shape.padding + 2, 3 - shape.offset, ++seed);
            const uint8_t constant[3] = {static_cast<uint8_t>(seed * 37), static_cast<uint8_t>(seed * 91), 0};
            ImageUnderTest expected = image;
            for (int y = 0; y < shape.height; ++y)
                for (int x = 0; x < shape.width; ++x)
                    for (int c = 0; c < 3; ++c) {
                        int s = image.at(x, y, c);
                        int v = op == Operation::AddC   ? s + constant[c]
                                : op == Operation::SubC ? std::max(s - constant[c], 0)
                                                        : std::max(s - other.at(x, y, c), 0);
                        expected.at(x, y, c) = static_cast<uint8_t>(Scaled(v, k));
                    }
            // Sub writes into image, with a copy of it as source 2.
            ImageUnderTest source2 = image;
            PrimStatus status =
                op == Operation::AddC ? primiAddC_8u_AC4IRSfs(constant, image.data(), image.step, image.size, k)
                : op == Operation::SubC
                    ? primiSubC_8u_AC4IRSfs(constant, image.data(), image.step, image.size, k)
                    : KV_BUILD(primiSub_8u_AC4RSfs, GetParam())(other.data(), other.step, source2.data(), source2.step,
                                                                image.data(), image.step, image.size, k);
            ASSERT_EQ(status, PrimOk);
            ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << shape.height << " k " << k;
        }
    }
};

TEST_P(ArithSfs, EveryScaleFactorPathFollowsTheFormula) {
    for (Operation op : {Operation::AddC, Operation::SubC, Operation::Sub})
        for (int k : {-1000, -10, -9, -8, -7, -3, -1, 0, 1, 2, 7, 8, 9, 10, 11, 1000}) ExpectFormula(op, k);
}

TEST_P(ArithSfs, NullThenSizeAndStepsNeverTested) {
    ImageUnderTest image(4, 2, 0, 0, 9);
    const auto before = image.bytes;
    const uint8_t constant[3] = {1, 2, 3};
    auto sub = KV_BUILD(primiSub_8u_AC4RSfs, GetParam());
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(nullptr, image.data(), 16, {0, 2}, 0), PrimNullPtrErr);
    EXPECT_EQ(primiSubC_8u_AC4IRSfs(constant, image.data(), -16, {0, 2}, 20), PrimSizeErr);
    EXPECT_EQ(sub(image.data(), 16, nullptr, 16, image.data(), 16, {0, 0}, 0), PrimNullPtrErr);
    EXPECT_EQ(sub(image.data(), 16, image.data(), 16, image.data(), 16, {4, 0}, 30), PrimSizeErr);
    EXPECT_EQ(image.bytes, before);
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(constant, image.data(), 0, {4, 1}, 0), PrimOk) << "one row needs no step";
}

KV_ALL_JUMP_INDICES(ArithSfs);

}  // namespace
