// Medians over fixed small windows: a row or a column of three or five
// pixels, and the plus-shaped cross of five or nine. Each destination pixel
// is one pass of a min/max network over the window's pixels, four pixels a
// vector.
#include "primitives/neighbourhood/median_common.h"

namespace PRIM_BUILD {
namespace {

// The pixel `right` columns right and `down` rows down of at, through io.
template <class Io>
inline __m128i Near(const uint8_t* at, int32_t step, int32_t right, int32_t down, Io io) {
    return io.Load(PixelAt(at, step, down, right));
}

struct Row3 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        return Median3(Near(p, s, -1, 0, io), Near(p, s, 0, 0, io), Near(p, s, 1, 0, io));
    }
};

struct Row5 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        return Median5(Near(p, s, -2, 0, io), Near(p, s, -1, 0, io), Near(p, s, 0, 0, io), Near(p, s, 1, 0, io),
                       Near(p, s, 2, 0, io));
    }
};

struct Column3 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        return Median3(Near(p, s, 0, -1, io), Near(p, s, 0, 0, io), Near(p, s, 0, 1, io));
    }
};

struct Column5 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        return Median5(Near(p, s, 0, -2, io), Near(p, s, 0, -1, io), Near(p, s, 0, 0, io), Near(p, s, 0, 1, io),
                       Near(p, s, 0, 2, io));
    }
};

// The pixel above, the three of the middle row, the pixel below.
struct Cross5 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        return Median5(Near(p, s, 0, -1, io), Near(p, s, -1, 0, io), Near(p, s, 0, 0, io), Near(p, s, 1, 0, io),
                       Near(p, s, 0, 1, io));
    }
};

// Nine pixels as three triples, each sorted: the upper arm with the far left
// pixel, the middle three, the lower arm with the far right pixel.
struct Cross9 {
    template <class Io>
    __m128i operator()(const uint8_t* p, int32_t s, Io io) const {
        __m128i a0 = Near(p, s, 0, -2, io), a1 = Near(p, s, 0, -1, io), a2 = Near(p, s, -2, 0, io);
        __m128i b0 = Near(p, s, -1, 0, io), b1 = Near(p, s, 0, 0, io), b2 = Near(p, s, 1, 0, io);
        __m128i c0 = Near(p, s, 2, 0, io), c1 = Near(p, s, 0, 1, io), c2 = Near(p, s, 0, 2, io);
        Sort3(a0, a1, a2);
        Sort3(b0, b1, b2);
        Sort3(c0, c1, c2);
        return Median9OfSortedTriples(a0, a1, a2, b0, b1, b2, c0, c1, c2);
    }
};

// The common entry: checks, then the network of whichever of the two
// accepted codes was given. The workers cannot fail.
template <class Small, class Large>
PrimStatus FilterFixedShape(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                            int32_t mask, int32_t smallCode, int32_t largeCode) {
    PrimStatus status = CheckRegion(src, srcStep, dst, dstStep, size);
    if (status != PrimOk) return status;
    if (mask == smallCode) {
        FilterEachPixel(src, srcStep, dst, dstStep, size, Small());
    } else if (mask == largeCode) {
        FilterEachPixel(src, srcStep, dst, dstStep, size, Large());
    } else {
        return PrimMaskSizeErr;
    }
    return PrimOk;
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterMedianHoriz_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                           int32_t dstStep, PrimSize size, int32_t mask) {
    return FilterFixedShape<Row3, Row5>(src, srcStep, dst, dstStep, size, mask, MaskSize3x1, MaskSize5x1);
}

extern "C" PrimStatus PRIM(primiFilterMedianVert_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                          int32_t dstStep, PrimSize size, int32_t mask) {
    return FilterFixedShape<Column3, Column5>(src, srcStep, dst, dstStep, size, mask, MaskSize1x3, MaskSize1x5);
}

extern "C" PrimStatus PRIM(primiFilterMedianCross_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                           int32_t dstStep, PrimSize size, int32_t mask) {
    return FilterFixedShape<Cross5, Cross9>(src, srcStep, dst, dstStep, size, mask, MaskSize3x3, MaskSize5x5);
}
