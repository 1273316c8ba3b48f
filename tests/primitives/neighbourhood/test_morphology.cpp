// Dilation and erosion with replicated borders: every byte is the maximum
// (dilation) or minimum (erosion) of its channel over the source pixels under
// the mask's selected elements, coordinates clamped to the image. Also the
// sorting of masks into kinds, which chooses the method.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "jump_index.h"
#include "primitives/neighbourhood/morphology_state.h"
#include "window_images.h"

namespace {

using kvtest::ImageUnderTest;

struct Mask {
    int32_t width, height;
    PrimPoint anchor;
    std::vector<uint8_t> bytes;

    // Rows of '.' (clear) and anything else (set).
    static Mask Drawn(std::vector<std::string> rows, PrimPoint anchor) {
        Mask m{int32_t(rows[0].size()), int32_t(rows.size()), anchor, {}};
        for (const std::string& row : rows)
            for (char c : row) m.bytes.push_back(c == '.' ? 0 : uint8_t(c));
        return m;
    }
    std::string Describe() const {
        std::ostringstream text;
        text << "mask " << width << "x" << height << " anchor " << anchor.x << "," << anchor.y << ":";
        for (size_t k = 0; k < bytes.size(); ++k) text << (k % width ? "" : " ") << (bytes[k] ? '#' : '.');
        return text.str();
    }
};

// One state serves both operations on an image up to its width; the source
// and the bytes outside the destination's region stay. With no element set
// the image is copied.
void Check(const Mask& m, PrimSize image, int32_t roiWidth, uint32_t seed) {
    SCOPED_TRACE(testing::Message() << "image " << image.width << "x" << image.height << " " << m.Describe());
    std::mt19937 random(seed);
    MorphologyState* state = nullptr;
    ASSERT_EQ(primiMorphologyInitAlloc_8u_C4R(roiWidth, m.bytes.data(), {m.width, m.height}, m.anchor, &state), PrimOk);
    ImageUnderTest src(image.width, image.height, int32_t(random() % 9), int32_t(random() % 4), seed);
    const std::vector<uint8_t> source = src.bytes;
    kvtest::Window window;
    for (int32_t k = 0; k < m.width * m.height; ++k)
        if (m.bytes[k] != 0) window.push_back({k % m.width - m.anchor.x, k / m.width - m.anchor.y});
    if (window.empty()) window.push_back({0, 0});
    for (bool dilate : {true, false}) {
        ImageUnderTest dst(image.width, image.height, int32_t(random() % 9), int32_t(random() % 4), seed + 1);
        const ImageUnderTest expected = kvtest::Picked(dst, src, window, dilate);
        auto morph = dilate ? primiDilateBorderReplicate_8u_C4R : primiErodeBorderReplicate_8u_C4R;
        ASSERT_EQ(morph(src.data(), src.step, dst.data(), dst.step, image, BorderRepl, state), PrimOk) << dilate;
        ASSERT_EQ(kvtest::FirstDifference(dst, expected), "") << (dilate ? "dilate" : "erode");
        ASSERT_EQ(src.bytes, source);
    }
    EXPECT_EQ(primiMorphologyFree(state), PrimOk);
}

class Morphology : public EveryJumpIndex {};

// Masks of every kind: empty, rectangles (anchor inside and outside),
// ellipses (a plus, a disc, one with a gap) and arbitrary shapes, on
// awkward sizes, images narrower than the state, and taller or narrower
// than the mask.
TEST_P(Morphology, MasksOfEveryKindOnAwkwardImages) {
    const Mask shaped[] = {
        Mask::Drawn({"...", "..."}, {1, 0}),
        Mask::Drawn({"###", "###", "###"}, {1, 1}),
        Mask::Drawn({"#9#a", "b###"}, {3, 1}),
        Mask::Drawn({".....", ".....", "....#"}, {0, 0}),
        Mask::Drawn({"#....", ".....", "....."}, {4, 2}),
        Mask::Drawn({"......", ".##...", ".##...", "......"}, {5, 0}),
        Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {2, 2}),
        Mask::Drawn({".###.", "#####", "#####", "#####", ".###."}, {2, 3}),
        Mask::Drawn({"..#..", ".....", "#####", ".....", ".###."}, {2, 2}),
        Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {2, 0}),
        Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {4, 2}),
        Mask::Drawn({"####", "#..#", "####"}, {1, 1}),
        Mask::Drawn({"##..", ".##.", "..##"}, {1, 1}),
        Mask::Drawn({"#.#.#", ".#.#.", "#.#.#"}, {2, 1}),
        Mask::Drawn({"#######", "...#...", "#######"}, {3, 0}),
    };
    const PrimSize images[] = {{1, 1}, {1, 6}, {2, 3}, {3, 1}, {5, 2}, {6, 7}, {7, 4}, {12, 9}, {17, 3}, {33, 8}, {70, 21}};
    uint32_t seed = 50;
    for (const Mask& m : shaped)
        for (PrimSize image : images) {
            ++seed;
            Check(m, image, image.width + int32_t(seed % 3), seed);
        }
    Check(shaped[6], {4, 40}, 6, 77);
}

TEST_P(Morphology, RandomMasksAndAnchors) {
    std::mt19937 random(21);
    for (int n = 0; n < 120; ++n) {
        const int32_t width = 1 + int32_t(random() % 7), height = 1 + int32_t(random() % 7);
        const unsigned percent = random() % 100;
        Mask m{width, height, {int32_t(random() % width), int32_t(random() % height)}, {}};
        for (int32_t i = 0; i < width * height; ++i)
            m.bytes.push_back(random() % 100 < percent ? uint8_t(1 + random() % 255) : 0);
        PrimSize image = {1 + int32_t(random() % 40), 1 + int32_t(random() % 20)};
        Check(m, image, image.width, 3000 + n);
    }
}

// Large enough for the wide loops: squares and discs up to the size the
// effects use.
TEST_P(Morphology, SquaresAndDiscsOnALargerImage) {
    uint32_t seed = 90;
    for (int32_t edge : {2, 5, 10}) {
        Check({edge, edge, {edge / 2, edge / 2}, std::vector<uint8_t>(edge * edge, 1)}, {131, 37}, 131, ++seed);
        Mask disc{edge + 1, edge + 1, {edge / 2, edge / 2}, {}};
        for (int32_t j = 0; j <= edge; ++j)
            for (int32_t i = 0; i <= edge; ++i)
                disc.bytes.push_back((2 * i - edge) * (2 * i - edge) + (2 * j - edge) * (2 * j - edge) <= edge * edge);
        Check(disc, {131, 37}, 140, ++seed);
    }
}

// The analysis, which only the mask's zero and non-zero elements and the
// anchor decide: empty, rectangles (one pixel away from the anchor leaves it
// outside), ellipses (rows missing in the middle or not), and a miss, a
// ring or equal widths at different offsets making the mask arbitrary.
TEST_P(Morphology, MasksSortIntoKinds) {
    const struct {
        Mask mask;
        int32_t kind;
        PrimSize normalised;
        PrimPoint anchor;
    } expectations[] = {
        {Mask::Drawn({"...", "..."}, {2, 1}), MaskEmpty, {3, 2}, {0, 0}},
        {Mask::Drawn({"7#", "#\xff", "a1"}, {0, 2}), MaskRectangle, {2, 3}, {0, 2}},
        {Mask::Drawn({".....", ".....", "....#"}, {1, 0}), MaskRectangle, {1, 1}, {-3, -2}},
        {Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {2, 2}), MaskEllipse, {5, 5}, {2, 2}},
        {Mask::Drawn({".....", "..#..", ".###.", ".....", "..#.."}, {2, 2}), MaskEllipse, {3, 4}, {1, 1}},
        {Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {0, 2}), MaskArbitrary, {5, 5}, {0, 2}},
        {Mask::Drawn({"###", "#.#", "###"}, {1, 1}), MaskArbitrary, {3, 3}, {1, 1}},
        {Mask::Drawn({"##.", ".##"}, {1, 0}), MaskArbitrary, {3, 2}, {1, 0}},
        {Mask::Drawn({".#.", "###", "..."}, {1, 2}), MaskArbitrary, {3, 3}, {1, 2}},
    };
    for (const auto& e : expectations) {
        MorphologyState* state = nullptr;
        ASSERT_EQ(primiMorphologyInitAlloc_8u_C4R(9, e.mask.bytes.data(), {e.mask.width, e.mask.height}, e.mask.anchor,
                                                  &state),
                  PrimOk);
        const std::string what = e.mask.Describe();
        EXPECT_EQ(state->maskKind, e.kind) << what;
        EXPECT_EQ(state->maskWidth, e.normalised.width) << what;
        EXPECT_EQ(state->maskHeight, e.normalised.height) << what;
        EXPECT_EQ(state->anchorX, e.anchor.x) << what;
        EXPECT_EQ(state->anchorY, e.anchor.y) << what;
        EXPECT_EQ(state->maxWidth, 9);
        primiMorphologyFree(state);
    }
}

// Creation: pointer, sizes, anchor, and the result place only after the
// analysis. The filters: pointers, size, steps, the border kind, then the
// state's width. Nothing is written on a refusal.
TEST_P(Morphology, ChecksInOrderAndWritesNothing) {
    const uint8_t mask[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    MorphologyState* state = nullptr;
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(0, nullptr, {3, 2}, {0, 0}, &state), PrimNullPtrErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(0, mask, {3, 2}, {5, 0}, &state), PrimSizeErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 0}, {5, 0}, &state), PrimSizeErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {3, 0}, nullptr), PrimAnchorErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {0, -1}, &state), PrimAnchorErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {2, 1}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(primiMorphologyFree(nullptr), PrimNullPtrErr);

    ASSERT_EQ(primiMorphologyInitAlloc_8u_C4R(6, mask, {3, 3}, {1, 1}, &state), PrimOk);
    ImageUnderTest src(7, 5, 0, 0, 1), dst(7, 5, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    const uint8_t* s = src.data();
    uint8_t* d = dst.data();
    for (auto morph : {primiDilateBorderReplicate_8u_C4R, primiErodeBorderReplicate_8u_C4R}) {
        EXPECT_EQ(morph(nullptr, 0, d, 28, {0, 5}, BorderConst, state), PrimNullPtrErr);
        EXPECT_EQ(morph(s, 28, nullptr, 28, {6, 5}, BorderRepl, state), PrimNullPtrErr);
        EXPECT_EQ(morph(s, 0, d, 28, {6, 0}, BorderConst, state), PrimSizeErr);
        EXPECT_EQ(morph(s, 23, d, 28, {7, 5}, BorderConst, state), PrimStepErr);
        EXPECT_EQ(morph(s, 28, d, 20, {6, 5}, BorderConst, state), PrimStepErr);
        EXPECT_EQ(morph(s, 28, d, 28, {7, 5}, BorderInMem, state), PrimBadArgErr);
        EXPECT_EQ(morph(s, 28, d, 28, {7, 5}, BorderRepl, state), PrimSizeErr);
    }
    EXPECT_EQ(dst.bytes, before);
    primiMorphologyFree(state);
}

KV_ALL_JUMP_INDICES(Morphology);

}  // namespace
