// Channel sums and means of a float image of four elements a pixel.
#include <limits>
#include <vector>

#include "jump_index.h"

namespace {

const float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float k2p24 = 16777216.0f;  // from here on, adding 1 in float is lost

// Pixels {v, v, -v, not a number}, rows 24 floats apart, padded with not a
// number: neither the fourth element nor the padding may reach a sum.
std::vector<float> Image(const std::vector<std::vector<float>>& rows) {
    std::vector<float> image(rows.size() * 24, kNaN);
    for (size_t y = 0; y < rows.size(); ++y)
        for (size_t x = 0; x < rows[y].size(); ++x) {
            image[y * 24 + 4 * x] = image[y * 24 + 4 * x + 1] = rows[y][x];
            image[y * 24 + 4 * x + 2] = -rows[y][x];
        }
    return image;
}

class Sum32f : public EveryJumpIndex {};

// The fast form sums each row in float, even and odd pixels apart: in row 0
// the even sum loses its 1 against 2^24 and the odd one keeps 1 + 1 (a
// running sum would lose all three); in row 1 the last, odd-numbered, pixel
// joins the even sum beside the first 1. Row totals add up in doubles. Hint 2
// sums every element in doubles and loses nothing.
TEST_P(Sum32f, FastFormSumsEvenAndOddPixelsApartAndHintTwoInDoubles) {
    auto sum = KV_BUILD(primiSum_32f_AC4R, GetParam());
    const auto image = Image({{k2p24, 1, 1, 1}, {1, k2p24, 1}});
    double total[3];
    ASSERT_EQ(sum(image.data(), 96, {4, 1}, total, 1), PrimOk);
    EXPECT_EQ(total[0], 16777218.0);
    ASSERT_EQ(sum(image.data() + 24, 96, {3, 1}, total, 0), PrimOk);
    EXPECT_EQ(total[2], -16777218.0);
    ASSERT_EQ(sum(image.data(), 96, {3, 2}, total, 7), PrimOk);
    EXPECT_EQ(total[1], 16777216.0 + 16777218.0) << "row 0 of three pixels loses a 1";
    ASSERT_EQ(sum(image.data(), 96, {3, 2}, total, 2), PrimOk);
    EXPECT_EQ(total[1], 2 * 16777218.0);
}

TEST_P(Sum32f, MeanScalesTheSumAndPassesOnItsErrors) {
    auto mean = KV_BUILD(primiMean_32f_AC4R, GetParam());
    auto sum = KV_BUILD(primiSum_32f_AC4R, GetParam());
    const auto image = Image({{1, 2, 4}, {8, 16, 32}});
    double m[3] = {-1, -1, -1};
    EXPECT_EQ(mean(nullptr, 96, {0, 2}, nullptr, 1), PrimNullPtrErr);
    EXPECT_EQ(mean(nullptr, 96, {0, 2}, m, 1), PrimNullPtrErr);
    EXPECT_EQ(mean(image.data(), 96, {3, 0}, m, 1), PrimSizeErr);
    EXPECT_EQ(sum(image.data(), 96, {0, 2}, nullptr, 2), PrimNullPtrErr);
    EXPECT_EQ(sum(image.data(), 96, {3, -1}, m, 2), PrimSizeErr);
    EXPECT_EQ(m[0], -1) << "an error writes nothing";
    ASSERT_EQ(mean(image.data(), 96, {3, 2}, m, 1), PrimOk);
    EXPECT_EQ(m[0], 63.0 * (1.0 / 6.0));
    EXPECT_EQ(m[2], -63.0 * (1.0 / 6.0));
}

KV_ALL_JUMP_INDICES(Sum32f);

}  // namespace
