#include <gtest/gtest.h>

#include <algorithm>

#include "image_under_test.h"
#include "jump_index.h"

namespace {

using kvtest::ImageUnderTest;

// The exact value v scaled by 2^-k: ties go to the even neighbour, and the
// result saturates at 255.
int Scaled(int v, int k) {
    if (k > 0) {
        if (k > 16) return 0;
        int quotient = v >> k, remainder = v - (quotient << k), half = 1 << (k - 1);
        if (remainder > half || (remainder == half && quotient % 2 == 1)) ++quotient;
        return quotient;
    }
    if (k < -7) return v == 0 ? 0 : 255;
    return std::min(v << -k, 255);
}

// What the three primitives are given, as one call.
enum class Operation { AddC, SubC, Sub };

class ArithSfs : public EveryJumpIndex {
protected:
    // Runs the primitive on random images and compares every byte of the
    // buffer with the formula applied to the colour bytes of the region.
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
            PrimStatus status;
            if (op == Operation::AddC) {
                status = primiAddC_8u_AC4IRSfs(constant, image.data(), image.step, image.size, k);
            } else if (op == Operation::SubC) {
                status = primiSubC_8u_AC4IRSfs(constant, image.data(), image.step, image.size, k);
            } else {
                // The destination is image itself: its source copy stands in as source 2.
                ImageUnderTest source2 = image;
                status = KV_BUILD(primiSub_8u_AC4RSfs, GetParam())(other.data(), other.step, source2.data(),
                                                                   source2.step, image.data(), image.step,
                                                                   image.size, k);
            }
            ASSERT_EQ(status, PrimOk);
            ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << shape.height << " k " << k;
        }
    }
};

TEST_P(ArithSfs, AddCFollowsTheFormulaForEveryScaleFactor) {
    for (int k = -10; k <= 12; ++k) ExpectFormula(Operation::AddC, k);
    ExpectFormula(Operation::AddC, 1000);
    ExpectFormula(Operation::AddC, -1000);
}

TEST_P(ArithSfs, SubCFollowsTheFormulaForEveryScaleFactor) {
    for (int k = -10; k <= 12; ++k) ExpectFormula(Operation::SubC, k);
}

TEST_P(ArithSfs, SubGivesTheSecondSourceMinusTheFirstForEveryScaleFactor) {
    for (int k = -10; k <= 12; ++k) ExpectFormula(Operation::Sub, k);
}

// One pixel, so the byte-by-byte loop answers; the fourth byte is 77 each time.
uint8_t AddOne(int s, int c, int k) {
    uint8_t pixel[4] = {static_cast<uint8_t>(s), 0, 0, 77};
    const uint8_t constant[3] = {static_cast<uint8_t>(c), 0, 0};
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(constant, pixel, 4, {1, 1}, k), PrimOk);
    EXPECT_EQ(pixel[3], 77);
    return pixel[0];
}

uint8_t SubOne(int s, int c, int k) {
    uint8_t pixel[4] = {static_cast<uint8_t>(s), 0, 0, 77};
    const uint8_t constant[3] = {static_cast<uint8_t>(c), 0, 0};
    EXPECT_EQ(primiSubC_8u_AC4IRSfs(constant, pixel, 4, {1, 1}, k), PrimOk);
    EXPECT_EQ(pixel[3], 77);
    return pixel[0];
}

TEST_P(ArithSfs, WorkedValuesAtTheThresholdsOfEachPath) {
    EXPECT_EQ(AddOne(250, 10, 0), 255);
    EXPECT_EQ(SubOne(5, 10, 0), 0);
    EXPECT_EQ(AddOne(1, 2, 1), 2);  // 1.5 goes to 2
    EXPECT_EQ(AddOne(2, 3, 1), 2);  // 2.5 goes to 2
    EXPECT_EQ(AddOne(3, 4, 1), 4);  // 3.5 goes to 4
    EXPECT_EQ(AddOne(255, 255, 9), 1);
    EXPECT_EQ(AddOne(255, 255, 10), 0);
    EXPECT_EQ(SubOne(255, 0, 8), 1);
    EXPECT_EQ(SubOne(255, 0, 9), 0);
    EXPECT_EQ(AddOne(0, 0, -8), 0);
    EXPECT_EQ(AddOne(0, 1, -8), 255);
    EXPECT_EQ(AddOne(100, 28, -1), 255);
    EXPECT_EQ(AddOne(60, 3, -1), 126);
    EXPECT_EQ(SubOne(40, 40, -8), 0);
    EXPECT_EQ(SubOne(41, 40, -8), 255);
}

TEST_P(ArithSfs, ArgumentTestsComeInOrderAndWriteNothing) {
    ImageUnderTest image(4, 2, 0, 0, 9);
    const auto before = image.bytes;
    const uint8_t constant[3] = {1, 2, 3};
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(nullptr, image.data(), 16, {0, 2}, 0), PrimNullPtrErr);
    EXPECT_EQ(primiSubC_8u_AC4IRSfs(constant, nullptr, 16, {4, -1}, 0), PrimNullPtrErr);
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(constant, image.data(), 16, {4, 0}, 0), PrimSizeErr);
    EXPECT_EQ(primiSubC_8u_AC4IRSfs(constant, image.data(), 16, {0, 2}, 20), PrimSizeErr);
    auto sub = KV_BUILD(primiSub_8u_AC4RSfs, GetParam());
    EXPECT_EQ(sub(image.data(), 16, nullptr, 16, image.data(), 16, {0, 0}, 0), PrimNullPtrErr);
    EXPECT_EQ(sub(image.data(), 16, image.data(), 16, image.data(), 16, {4, 0}, 30), PrimSizeErr);
    EXPECT_EQ(image.bytes, before);
}

TEST_P(ArithSfs, StepsAreNotTested) {
    // One row never moves to a second, so any step serves.
    uint8_t pixels[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    const uint8_t constant[3] = {10, 10, 10};
    EXPECT_EQ(primiAddC_8u_AC4IRSfs(constant, pixels, 0, {2, 1}, 0), PrimOk);
    EXPECT_EQ(primiSubC_8u_AC4IRSfs(constant, pixels, -5, {2, 1}, 0), PrimOk);
    EXPECT_EQ(pixels[4], 5);
}

KV_ALL_JUMP_INDICES(ArithSfs);

}  // namespace
