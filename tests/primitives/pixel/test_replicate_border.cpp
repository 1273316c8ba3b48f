#include <gtest/gtest.h>

#include <algorithm>

#include "image_under_test.h"
#include "jump_index.h"

namespace {

using kvtest::ImageUnderTest;

struct Border {
    int32_t top, left, right, bottom;
};
const Border kBorders[] = {{0, 0, 0, 0}, {1, 1, 1, 1}, {5, 3, 2, 7}, {2, 0, 17, 0}, {0, 9, 0, 1}, {3, 4, 5, 0}};

// The destination as it must be: each outer pixel takes the nearest pixel
// of the source; only the bytes named by channels are written.
ImageUnderTest Replicated(ImageUnderTest outer, ImageUnderTest& inner, const Border& b, int channels) {
    for (int y = 0; y < outer.size.height; ++y)
        for (int x = 0; x < outer.size.width; ++x) {
            int sx = std::clamp(x - b.left, 0, inner.size.width - 1);
            int sy = std::clamp(y - b.top, 0, inner.size.height - 1);
            for (int c = 0; c < channels; ++c) outer.at(x, y, c) = inner.at(sx, sy, c);
        }
    return outer;
}

PrimSize Outer(PrimSize inner, const Border& b) {
    return {inner.width + b.left + b.right, inner.height + b.top + b.bottom};
}

class ReplicateBorder : public EveryJumpIndex {};

TEST_P(ReplicateBorder, CopyFormsReplicateEdgesAndKeepWhatTheyDoNotOwn) {
    auto c4 = KV_BUILD(primiCopyReplicateBorder_8u_C4R, GetParam());
    uint32_t seed = 100;
    for (const auto& shape : kvtest::AwkwardShapes())
        for (const Border& b : kBorders)
            for (int channels : {3, 4}) {
                ImageUnderTest src(shape.width, shape.height, shape.padding, shape.offset, ++seed);
                PrimSize outer = Outer(src.size, b);
                ImageUnderTest dst(outer.width, outer.height, shape.offset * 3, 3 - shape.offset, ++seed);
                ImageUnderTest expected = Replicated(dst, src, b, channels);
                auto copy = channels == 3 ? primiCopyReplicateBorder_8u_AC4R : c4;
                ASSERT_EQ(copy(src.data(), src.step, src.size, dst.data(), dst.step, outer, b.top, b.left), PrimOk);
                ASSERT_EQ(dst.bytes, expected.bytes)
                    << shape.width << "x" << shape.height << " top " << b.top << " left " << b.left << " bytes "
                    << channels;
            }
}

TEST_P(ReplicateBorder, InPlaceFormFillsAroundTheInnerImage) {
    auto inPlace = KV_BUILD(primiCopyReplicateBorder_8u_C4IR, GetParam());
    uint32_t seed = 200;
    for (const auto& shape : kvtest::AwkwardShapes())
        for (const Border& b : kBorders) {
            PrimSize outer = Outer({shape.width, shape.height}, b);
            ImageUnderTest image(outer.width, outer.height, shape.padding, shape.offset, ++seed);
            ImageUnderTest inner = image;
            inner.start += b.top * image.step + 4 * b.left;
            inner.size = {shape.width, shape.height};
            ImageUnderTest expected = Replicated(image, inner, b, 4);
            uint8_t* innerStart = image.data() + b.top * image.step + 4 * b.left;
            ASSERT_EQ(inPlace(innerStart, image.step, inner.size, outer, b.top, b.left), PrimOk);
            ASSERT_EQ(image.bytes, expected.bytes) << shape.width << "x" << shape.height << " top " << b.top;
        }
}

TEST_P(ReplicateBorder, NullThenStepThenSizeAndNothingWritten) {
    ImageUnderTest src(4, 4, 0, 0, 1), dst(6, 6, 0, 0, 2);
    const auto before = dst.bytes;
    auto inPlace = KV_BUILD(primiCopyReplicateBorder_8u_C4IR, GetParam());
    auto c4 = KV_BUILD(primiCopyReplicateBorder_8u_C4R, GetParam());
    for (auto copy : {primiCopyReplicateBorder_8u_AC4R, c4}) {
        EXPECT_EQ(copy(nullptr, 0, src.size, dst.data(), 24, {0, 6}, 1, 1), PrimNullPtrErr);
        EXPECT_EQ(copy(src.data(), 16, {0, 4}, dst.data(), 0, {6, 6}, 1, 1), PrimStepErr);
        EXPECT_EQ(copy(src.data(), 16, src.size, dst.data(), 24, {4, 6}, 1, 1), PrimSizeErr);  // 4 + 1 > 4
        EXPECT_EQ(copy(src.data(), 16, src.size, dst.data(), 24, {6, 6}, 3, 1), PrimSizeErr);  // 4 + 3 > 6
        EXPECT_EQ(copy(src.data(), 16, src.size, dst.data(), 24, {6, 6}, -1, 1), PrimSizeErr);
        EXPECT_EQ(copy(src.data(), 16, src.size, dst.data(), 24, {6, 0}, 0, 0), PrimSizeErr);
    }
    uint8_t* inner = dst.data() + 24 + 4;
    EXPECT_EQ(inPlace(nullptr, 0, {0, 4}, {6, 6}, 1, 1), PrimNullPtrErr);
    EXPECT_EQ(inPlace(inner, -24, {0, 4}, {6, 6}, 1, 1), PrimStepErr);
    EXPECT_EQ(inPlace(inner, 24, {4, 4}, {6, 6}, 1, -1), PrimSizeErr);
    EXPECT_EQ(inPlace(inner, 24, {4, 4}, {6, 5}, 2, 1), PrimSizeErr);
    EXPECT_EQ(dst.bytes, before);
}

KV_ALL_JUMP_INDICES(ReplicateBorder);

}  // namespace
