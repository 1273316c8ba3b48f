// Dilation and erosion with replicated borders, against the mask formula on
// random images: every byte is the maximum (dilation) or minimum (erosion)
// of its channel over the source pixels under the mask's selected
// elements, coordinates clamped to the image. Also the sorting of masks
// into kinds, which decides the method but must never change a result.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "jump_index.h"
#include "primitives/neighbourhood/morphology_state.h"
#include "rank_images.h"

namespace {

using kvtest::ImageUnderTest;

struct Mask {
    int32_t width, height;
    PrimPoint anchor;
    std::vector<uint8_t> bytes;

    PrimSize size() const { return {width, height}; }
    // Elements are given as rows of '.' (clear) and anything else (set).
    static Mask Drawn(std::vector<std::string> rows, PrimPoint anchor) {
        Mask m{int32_t(rows[0].size()), int32_t(rows.size()), anchor, {}};
        for (const std::string& row : rows)
            for (char c : row) m.bytes.push_back(c == '.' ? 0 : uint8_t(c));
        return m;
    }
};

std::string Describe(const Mask& m, PrimSize image, bool dilate) {
    std::ostringstream text;
    text << (dilate ? "dilate " : "erode ") << image.width << "x" << image.height << " mask " << m.width << "x"
         << m.height << " anchor " << m.anchor.x << "," << m.anchor.y << ":";
    for (int32_t j = 0; j < m.height; ++j) {
        text << " ";
        for (int32_t i = 0; i < m.width; ++i) text << (m.bytes[j * m.width + i] ? '#' : '.');
    }
    return text.str();
}

// The defining formula; with no element set, the image is copied.
ImageUnderTest Expected(ImageUnderTest dst, ImageUnderTest& src, const Mask& m, bool dilate) {
    const bool empty = std::all_of(m.bytes.begin(), m.bytes.end(), [](uint8_t b) { return b == 0; });
    const int32_t w = src.size.width, h = src.size.height;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x)
            for (int c = 0; c < 4; ++c) {
                uint8_t pick = empty ? src.at(x, y, c) : (dilate ? 0 : 255);
                for (int32_t j = 0; j < m.height; ++j)
                    for (int32_t i = 0; i < m.width; ++i) {
                        if (m.bytes[j * m.width + i] == 0) continue;
                        const uint8_t v = src.at(std::clamp(x + i - m.anchor.x, 0, w - 1),
                                                 std::clamp(y + j - m.anchor.y, 0, h - 1), c);
                        pick = dilate ? std::max(pick, v) : std::min(pick, v);
                    }
                dst.at(x, y, c) = pick;
            }
    return dst;
}

MorphologyState* Analysed(const Mask& m, int32_t roiWidth) {
    MorphologyState* state = nullptr;
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(roiWidth, m.bytes.data(), m.size(), m.anchor, &state), PrimOk);
    return state;
}

// A mask with each element set with the given chance, values 1 to 255.
Mask RandomMask(std::mt19937& random, int32_t width, int32_t height, unsigned percent) {
    Mask m{width, height, {int32_t(random() % width), int32_t(random() % height)}, {}};
    for (int32_t i = 0; i < width * height; ++i)
        m.bytes.push_back(random() % 100 < percent ? uint8_t(1 + random() % 255) : 0);
    return m;
}

// Masks of every kind: empty, rectangles (with the anchor inside and
// outside), ellipses (a plus, a disc, one with a gap), and arbitrary shapes.
std::vector<Mask> ShapedMasks() {
    return {
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
}

std::vector<PrimSize> ImageSizes() {
    return {{1, 1}, {1, 6}, {2, 3}, {3, 1}, {5, 2}, {6, 7}, {7, 4}, {12, 9}, {17, 3}, {33, 8}, {70, 21}};
}

class Morphology : public EveryJumpIndex {
protected:
    // One state serves both operations, on images up to its width; the
    // source and the bytes outside the destination's region stay.
    void Check(const Mask& m, PrimSize image, int32_t roiWidth, uint32_t seed) {
        std::mt19937 random(seed);
        MorphologyState* state = Analysed(m, roiWidth);
        ASSERT_NE(state, nullptr);
        ImageUnderTest src(image.width, image.height, int32_t(random() % 9), int32_t(random() % 4), seed);
        const std::vector<uint8_t> source = src.bytes;
        for (bool dilate : {true, false}) {
            ImageUnderTest dst(image.width, image.height, int32_t(random() % 9), int32_t(random() % 4), seed + 1);
            const ImageUnderTest expected = Expected(dst, src, m, dilate);
            auto morph = dilate ? primiDilateBorderReplicate_8u_C4R : primiErodeBorderReplicate_8u_C4R;
            ASSERT_EQ(morph(src.data(), src.step, dst.data(), dst.step, image, BorderRepl, state), PrimOk)
                << Describe(m, image, dilate);
            ASSERT_EQ(kvtest::FirstDifference(dst, expected), "") << Describe(m, image, dilate);
            ASSERT_EQ(src.bytes, source) << Describe(m, image, dilate);
        }
        EXPECT_EQ(primiMorphologyFree(state), PrimOk);
    }
};

TEST_P(Morphology, MasksOfEveryKindOnAwkwardImages) {
    uint32_t seed = 50;
    for (const Mask& m : ShapedMasks())
        for (PrimSize image : ImageSizes()) {
            ++seed;
            Check(m, image, image.width + int32_t(seed % 3), seed);
        }
}

TEST_P(Morphology, RandomMasksAndAnchors) {
    std::mt19937 random(21);
    for (int n = 0; n < 120; ++n) {
        Mask m = RandomMask(random, 1 + int32_t(random() % 7), 1 + int32_t(random() % 7), unsigned(random() % 100));
        PrimSize image = {1 + int32_t(random() % 40), 1 + int32_t(random() % 20)};
        Check(m, image, image.width, 3000 + n);
    }
}

// Large enough for the wide loops, and square and round masks up to the
// size the effects use.
TEST_P(Morphology, SquaresAndDiscsOnALargerImage) {
    uint32_t seed = 90;
    for (int32_t edge : {2, 5, 10}) {
        Mask square{edge, edge, {edge / 2, edge / 2}, std::vector<uint8_t>(edge * edge, 1)};
        Check(square, {131, 37}, 131, ++seed);
        Mask disc{edge + 1, edge + 1, {edge / 2, edge / 2}, {}};
        for (int32_t j = 0; j <= edge; ++j)
            for (int32_t i = 0; i <= edge; ++i) {
                const int32_t dx = 2 * i - edge, dy = 2 * j - edge;
                disc.bytes.push_back(dx * dx + dy * dy <= edge * edge ? 1 : 0);
            }
        Check(disc, {131, 37}, 140, ++seed);
    }
}

// The analysis: what only the mask's zero and non-zero elements and the
// anchor decide.
TEST_P(Morphology, MasksSortIntoKinds) {
    struct Expectation {
        Mask mask;
        int32_t kind;
        PrimSize normalised;
        PrimPoint anchor;
    };
    const std::vector<Expectation> expectations = {
        {Mask::Drawn({"...", "..."}, {2, 1}), MaskEmpty, {3, 2}, {0, 0}},
        {Mask::Drawn({"7#", "#\xff", "a1"}, {0, 2}), MaskRectangle, {2, 3}, {0, 2}},
        {Mask::Drawn({".....", ".....", "....#"}, {1, 0}), MaskRectangle, {1, 1}, {-3, -2}},
        {Mask::Drawn({"....", ".##.", ".##.", "...."}, {3, 3}), MaskRectangle, {2, 2}, {2, 2}},
        {Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {2, 2}), MaskEllipse, {5, 5}, {2, 2}},
        {Mask::Drawn({".....", "..#..", ".###.", ".....", "..#.."}, {2, 2}), MaskEllipse, {3, 4}, {1, 1}},
        {Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {0, 2}), MaskArbitrary, {5, 5}, {0, 2}},
        {Mask::Drawn({"..#..", "..#..", "#####", "..#..", "..#.."}, {2, 0}), MaskEllipse, {5, 5}, {2, 0}},
        {Mask::Drawn({"###", "#.#", "###"}, {1, 1}), MaskArbitrary, {3, 3}, {1, 1}},
        {Mask::Drawn({"##.", ".##"}, {1, 0}), MaskArbitrary, {3, 2}, {1, 0}},
        {Mask::Drawn({".#.", "###"}, {1, 0}), MaskEllipse, {3, 2}, {1, 0}},
        {Mask::Drawn({".#.", "###", "..."}, {1, 2}), MaskArbitrary, {3, 3}, {1, 2}},
    };
    for (const Expectation& e : expectations) {
        MorphologyState* state = Analysed(e.mask, 9);
        ASSERT_NE(state, nullptr);
        const std::string what = Describe(e.mask, {9, 1}, true);
        EXPECT_EQ(state->maskKind, e.kind) << what;
        EXPECT_EQ(state->maskWidth, e.normalised.width) << what;
        EXPECT_EQ(state->maskHeight, e.normalised.height) << what;
        EXPECT_EQ(state->anchorX, e.anchor.x) << what;
        EXPECT_EQ(state->anchorY, e.anchor.y) << what;
        EXPECT_EQ(state->maxWidth, 9);
        primiMorphologyFree(state);
    }
}

// Pointer, sizes, anchor; the result place is tested only after the
// analysis. Free refuses a null state.
TEST_P(Morphology, InitAllocChecksInOrder) {
    const uint8_t mask[6] = {1, 1, 1, 1, 1, 1};
    MorphologyState* state = nullptr;
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(0, nullptr, {3, 2}, {0, 0}, &state), PrimNullPtrErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(0, mask, {3, 2}, {5, 0}, &state), PrimSizeErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 0}, {5, 0}, &state), PrimSizeErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {3, 0}, nullptr), PrimAnchorErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {0, -1}, &state), PrimAnchorErr);
    EXPECT_EQ(primiMorphologyInitAlloc_8u_C4R(4, mask, {3, 2}, {2, 1}, nullptr), PrimNullPtrErr);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(primiMorphologyFree(nullptr), PrimNullPtrErr);
}

// Pointers, size, steps, the border kind, then the state's width; nothing
// is written on a refusal. A narrower image and any height are served.
TEST_P(Morphology, FilterChecksInOrderAndWritesNothing) {
    const uint8_t mask[9] = {0, 1, 0, 1, 1, 1, 0, 1, 0};
    MorphologyState* state = nullptr;
    ASSERT_EQ(primiMorphologyInitAlloc_8u_C4R(6, mask, {3, 3}, {1, 1}, &state), PrimOk);
    ImageUnderTest src(7, 5, 0, 0, 1), dst(7, 5, 0, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    const uint8_t* s = src.data();
    uint8_t* d = dst.data();
    for (auto morph : {primiDilateBorderReplicate_8u_C4R, primiErodeBorderReplicate_8u_C4R}) {
        EXPECT_EQ(morph(nullptr, 28, d, 28, {0, 5}, BorderRepl, state), PrimNullPtrErr);
        EXPECT_EQ(morph(s, 28, nullptr, 28, {6, 5}, BorderRepl, state), PrimNullPtrErr);
        EXPECT_EQ(morph(s, 0, d, 28, {6, 0}, BorderRepl, state), PrimSizeErr);
        EXPECT_EQ(morph(s, 23, d, 28, {6, 5}, BorderConst, state), PrimStepErr);
        EXPECT_EQ(morph(s, 28, d, 20, {6, 5}, BorderConst, state), PrimStepErr);
        EXPECT_EQ(morph(s, 28, d, 28, {7, 5}, BorderConst, state), PrimBadArgErr);
        EXPECT_EQ(morph(s, 28, d, 28, {6, 5}, BorderInMem, state), PrimBadArgErr);
        EXPECT_EQ(morph(s, 28, d, 28, {7, 5}, BorderRepl, state), PrimSizeErr);
    }
    EXPECT_EQ(dst.bytes, before);
    primiMorphologyFree(state);

    Mask plus{3, 3, {1, 1}, std::vector<uint8_t>(mask, mask + 9)};
    Check(plus, {4, 40}, 6, 77);
}

KV_ALL_JUMP_INDICES(Morphology);

}  // namespace
