// Channel sums and means of a float image with four elements a pixel: the
// fast form sums each row in single precision with even and odd pixels apart,
// the accurate form (hint 2) sums every element in doubles.
#include <limits>
#include <vector>

#include "jump_index.h"

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float k2p24 = 16777216.0f;  // from here on, adding 1 in float is lost

// Pixels {v, v, -v, not a number}, rows stepFloats apart, padded with not a
// number: neither the fourth element nor the padding may reach a sum.
std::vector<float> Image(const std::vector<std::vector<float>>& rows, int32_t stepFloats) {
    std::vector<float> image(rows.size() * stepFloats, kNaN);
    for (size_t y = 0; y < rows.size(); ++y)
        for (size_t x = 0; x < rows[y].size(); ++x) {
            float* p = &image[y * stepFloats + 4 * x];
            p[0] = p[1] = rows[y][x];
            p[2] = -rows[y][x];
        }
    return image;
}

class Sum32f : public EveryJumpIndex {};

// Row 0: the even accumulator loses its 1 against 2^24, the odd one keeps
// 1 + 1 (a running sum would lose all three). Row 1 has three pixels: the
// last joins the even accumulator beside the first 1 and survives. The row
// totals then add up in doubles.
TEST_P(Sum32f, FastFormSumsEvenAndOddPixelsApartPerRow) {
    auto sum = KV_BUILD(primiSum_32f_AC4R, GetParam());
    const auto image = Image({{k2p24, 1, 1, 1}, {1, k2p24, 1, kNaN}}, 16 + 3);
    double total[3];
    ASSERT_EQ(sum(image.data(), 19 * 4, {4, 1}, total, 1), PrimOk);
    EXPECT_EQ(total[0], 16777218.0);
    ASSERT_EQ(sum(image.data() + 19, 19 * 4, {3, 1}, total, 0), PrimOk);
    EXPECT_EQ(total[0], 16777218.0);
    EXPECT_EQ(total[2], -16777218.0);

    const auto twoRows = Image({{k2p24, 1, 1, 1}, {k2p24, 1, 1, 1}}, 16 + 5);
    ASSERT_EQ(sum(twoRows.data(), 21 * 4, {4, 2}, total, 7), PrimOk);
    EXPECT_EQ(total[0], 2 * 16777218.0);
    EXPECT_EQ(total[1], 2 * 16777218.0);
    ASSERT_EQ(sum(twoRows.data(), 21 * 4, {4, 2}, total, 2), PrimOk);
    EXPECT_EQ(total[0], 2 * 16777219.0) << "in doubles, nothing is lost";
    EXPECT_EQ(total[2], -2 * 16777219.0);
}

TEST_P(Sum32f, MeanScalesTheSumAndPassesOnItsErrors) {
    auto mean = KV_BUILD(primiMean_32f_AC4R, GetParam());
    auto sum = KV_BUILD(primiSum_32f_AC4R, GetParam());
    const auto image = Image({{1, 2, 4}, {8, 16, 32}}, 12);
    double m[3];
    ASSERT_EQ(mean(image.data(), 48, {3, 2}, m, 1), PrimOk);
    EXPECT_EQ(m[0], 63.0 * (1.0 / 6.0));
    EXPECT_EQ(m[2], -63.0 * (1.0 / 6.0));

    double untouched[3] = {-1, -1, -1};
    EXPECT_EQ(mean(nullptr, 48, {0, 2}, nullptr, 1), PrimNullPtrErr);
    EXPECT_EQ(mean(nullptr, 48, {0, 2}, untouched, 1), PrimNullPtrErr);
    EXPECT_EQ(mean(image.data(), 48, {3, 0}, untouched, 1), PrimSizeErr);
    EXPECT_EQ(sum(image.data(), 48, {0, 2}, nullptr, 2), PrimNullPtrErr);
    EXPECT_EQ(sum(image.data(), 48, {3, -1}, untouched, 2), PrimSizeErr);
    EXPECT_EQ(untouched[0], -1) << "an error writes nothing";
}

KV_ALL_JUMP_INDICES(Sum32f);

}  // namespace
