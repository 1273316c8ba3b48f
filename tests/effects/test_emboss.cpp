#include <gtest/gtest.h>

#include "colour_effect_support.h"
#include "effects/Emboss.h"
#include "test_support.h"

namespace {

using kvtest::Bytes;

// Read from an untouched copy: each colour byte minus the one below and to
// the right, plus the bias; the last row and column stay.
Bytes EmbossReference(const Bytes& in, int width, int height, int bias) {
    Bytes out = in;
    for (int y = 0; y + 1 < height; ++y)
        for (int x = 0; x + 1 < width; ++x)
            for (int c = 0; c < 3; ++c) {
                int v = in[(y * width + x) * 4 + c] - in[((y + 1) * width + x + 1) * 4 + c] + bias;
                out[(y * width + x) * 4 + c] = std::min(std::max(v, 0), 255);
            }
    return out;
}

TEST(EmbossEffect, EqualsTheDifferenceOfTheUnchangedFrame) {
    const int sizes[][2] = {{1, 1}, {1, 4}, {4, 1}, {2, 2}, {5, 3}, {6, 4}, {19, 5}};
    for (int bias : {-37, 200, 0, 300}) {
        for (const auto& size : sizes) {
            auto frame = kvtest::RandomBytes(size_t(size[0]) * size[1] * 4, size[0] + 100 * size[1]);
            auto expected = bias == 0 ? frame : EmbossReference(frame, size[0], size[1], std::min(bias, 200));
            EXPECT_EQ(kvtest::Processed(Emboss::CreateInstance, frame, size[0], size[1], &bias), expected)
                << size[0] << "x" << size[1] << " bias " << bias;
        }
    }
}

TEST(EmbossEffect, DefaultBiasTurnsAFlatFrameToTen) {
    Bytes frame, expected;
    for (int i = 0; i < 6 * 3; ++i) {
        bool lastRowOrColumn = i % 6 == 5 || i / 6 == 2;
        frame.insert(frame.end(), {90, 91, 92, 5});
        expected.insert(expected.end(), {uint8_t(lastRowOrColumn ? 90 : 10), uint8_t(lastRowOrColumn ? 91 : 10),
                                         uint8_t(lastRowOrColumn ? 92 : 10), 5});
    }
    EXPECT_EQ(kvtest::Processed(Emboss::CreateInstance, frame, 6, 3), expected);
}

}  // namespace
