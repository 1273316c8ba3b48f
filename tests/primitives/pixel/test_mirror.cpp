#include <gtest/gtest.h>

#include "image_under_test.h"
#include "jump_index.h"

namespace {

using kvtest::ImageUnderTest;

// Colour bytes move to the mirrored position; the fourth bytes stay put.
ImageUnderTest Mirrored(ImageUnderTest image, int axis) {
    ImageUnderTest result = image;
    for (int y = 0; y < image.size.height; ++y)
        for (int x = 0; x < image.size.width; ++x) {
            int fromX = axis == 0 ? x : image.size.width - 1 - x;
            int fromY = axis == 1 ? y : image.size.height - 1 - y;
            for (int c = 0; c < 3; ++c) result.at(x, y, c) = image.at(fromX, fromY, c);
        }
    return result;
}

class Mirror : public EveryJumpIndex {};

TEST_P(Mirror, EachAxisMovesOnlyTheColourBytes) {
    uint32_t seed = 300;
    for (const auto& shape : kvtest::AwkwardShapes())
        for (int height : {shape.height, shape.height + 1})
            for (int axis : {0, 1, 2}) {
                if ((axis != 1 && height < 2) || (axis != 0 && shape.width < 2)) continue;
                ImageUnderTest image(shape.width, height, shape.padding, shape.offset, ++seed);
                ImageUnderTest expected = Mirrored(image, axis);
                ASSERT_EQ(primiMirror_8u_AC4IR(image.data(), image.step, image.size, axis), PrimOk);
                ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << height << " axis " << axis;
            }
}

TEST_P(Mirror, TooShortAnAxisIsASizeErrorAndAnUnknownAxisComesFirst) {
    ImageUnderTest row(5, 1, 0, 0, 1), column(1, 5, 0, 0, 2);
    const auto rowBefore = row.bytes, columnBefore = column.bytes;
    EXPECT_EQ(primiMirror_8u_AC4IR(row.data(), row.step, row.size, 0), PrimSizeErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(row.data(), row.step, row.size, 2), PrimSizeErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(row.data(), row.step, row.size, 3), PrimMirrorAxisErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(column.data(), column.step, column.size, 1), PrimSizeErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(column.data(), column.step, column.size, -1), PrimMirrorAxisErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(nullptr, 0, {0, 0}, 7), PrimNullPtrErr);
    EXPECT_EQ(primiMirror_8u_AC4IR(row.data(), row.step, {0, 1}, 7), PrimSizeErr);
    EXPECT_EQ(row.bytes, rowBefore);
    EXPECT_EQ(column.bytes, columnBefore);

    EXPECT_EQ(primiMirror_8u_AC4IR(row.data(), row.step, row.size, 1), PrimOk);
    EXPECT_EQ(row.at(0, 0, 0), rowBefore[16]);
}

KV_ALL_JUMP_INDICES(Mirror);

}  // namespace
