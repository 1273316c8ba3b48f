// The exact quarter turns: the box the source rectangle lands on, and the
// pixel permutations that fill it. The half turn reverses rows; the quarter
// turns transpose blocks of 4x4 pixels.
#include "primitives/geometry/quarter_turn.h"

#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

// Destination columns done together in the quarter turns: one cache line of
// each destination row, while the sixteen source rows they read stay in
// cache down the whole height.
constexpr int32_t kStripColumns = 16;

inline void CopyColour(uint8_t* to, const uint8_t* from) { memcpy(to, from, 3); }

inline void StoreColour(uint8_t* at, __m128i pixels) {
    StoreUnaligned(at, Merge(pixels, LoadUnaligned(at), Broadcast(kColourMask)));
}

// Pixel (i, j) of the width x height block at dst is the source pixel i
// columns left of and j rows above `from`.
void ownpi_Rotate180_8_AC4R(const uint8_t* from, int32_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                            int32_t height) {
    for (int32_t j = 0; j < height; ++j) {
        const uint8_t* source = from - static_cast<ptrdiff_t>(j) * srcStep;
        uint8_t* row = dst + static_cast<ptrdiff_t>(j) * dstStep;
        int32_t i = 0;
        for (; i + 4 <= width; i += 4) StoreColour(row + 4 * i, ReversePixels(LoadUnaligned(source - 4 * (i + 3))));
        for (; i < width; ++i) CopyColour(row + 4 * i, source - 4 * i);
    }
}

// One 4x4 block of a quarter turn, at column i and row j of the
// destination block: four source rows, transposed.
void ownpi_Rotate90_B_8_AC4R(const uint8_t* from, ptrdiff_t srcStep, uint8_t* dst, int32_t dstStep, int32_t i,
                             int32_t j, int direction) {
    // The four source pixels of a row, from the lowest address; walking
    // backwards their order is reversed, and so is that of the rows they
    // become.
    const ptrdiff_t lowest = direction > 0 ? 4 * j : -4 * (j + 3);
    __m128i r[4];
    for (int k = 0; k < 4; ++k) r[k] = LoadUnaligned(from + (i + k) * srcStep + lowest);
    const __m128i t0 = _mm_unpacklo_epi32(r[0], r[1]), t1 = _mm_unpacklo_epi32(r[2], r[3]);
    const __m128i t2 = _mm_unpackhi_epi32(r[0], r[1]), t3 = _mm_unpackhi_epi32(r[2], r[3]);
    const __m128i columns[4] = {_mm_unpacklo_epi64(t0, t1), _mm_unpackhi_epi64(t0, t1), _mm_unpacklo_epi64(t2, t3),
                                _mm_unpackhi_epi64(t2, t3)};
    for (int k = 0; k < 4; ++k) {
        const int32_t row = j + (direction > 0 ? k : 3 - k);
        StoreColour(dst + static_cast<ptrdiff_t>(row) * dstStep + 4 * i, columns[k]);
    }
}

// Pixel (i, j) of the width x height block at dst is the source pixel at
// from + i * srcStep + 4 * direction * j: a destination row reads down a
// source column (up it, with the step negated), and the next row reads the
// next column in the direction given.
void ownpi_Rotate90_8_AC4R(const uint8_t* from, ptrdiff_t srcStep, uint8_t* dst, int32_t dstStep, int32_t width,
                           int32_t height, int direction) {
    const int32_t fullWidth = width & ~3, fullHeight = height & ~3;
    for (int32_t strip = 0; strip < fullWidth; strip += kStripColumns) {
        const int32_t stripEnd = strip + kStripColumns < fullWidth ? strip + kStripColumns : fullWidth;
        for (int32_t j = 0; j < fullHeight; j += 4)
            for (int32_t i = strip; i < stripEnd; i += 4)
                ownpi_Rotate90_B_8_AC4R(from, srcStep, dst, dstStep, i, j, direction);
    }
    // What the blocks leave: the last columns of every row, and the last
    // rows.
    for (int32_t j = 0; j < height; ++j)
        for (int32_t i = j < fullHeight ? fullWidth : 0; i < width; ++i)
            CopyColour(dst + static_cast<ptrdiff_t>(j) * dstStep + 4 * i, from + i * srcStep + 4 * direction * j);
}

// Inclusive columns and rows, wide enough for any sum of the inputs.
struct Box {
    int64_t xLo, xHi, yLo, yHi;
};

}  // namespace

PrimStatus ownpi_RotateQuarter(const uint8_t* src, PrimSize srcSize, int32_t srcStep, PrimRect srcRoi, uint8_t* dst,
                               int32_t dstStep, PrimRect dstRoi, double angle, double xShift, double yShift) {
    if (src == nullptr || dst == nullptr) return PrimNullPtrErr;
    if (srcSize.width < 1 || srcSize.height < 1 || srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 ||
        srcRoi.height < 1 || dstRoi.x < 0 || dstRoi.y < 0 || dstRoi.width < 1 || dstRoi.height < 1)
        return PrimSizeErr;
    if (srcRoi.x >= srcSize.width || srcRoi.y >= srcSize.height) return PrimNoOverlapWrn;
    if (srcRoi.width > srcSize.width - srcRoi.x) srcRoi.width = srcSize.width - srcRoi.x;
    if (srcRoi.height > srcSize.height - srcRoi.y) srcRoi.height = srcSize.height - srcRoi.y;

    const int32_t turn = static_cast<int32_t>(angle + 0.1);
    const int64_t xs = _mm_cvttsd_si32(_mm_set_sd(xShift)), ys = _mm_cvttsd_si32(_mm_set_sd(yShift));
    const int64_t x0 = srcRoi.x, y0 = srcRoi.y;
    const int64_t xEnd = x0 + srcRoi.width - 1, yEnd = y0 + srcRoi.height - 1;

    // Where the source rectangle lands: x' = y + xs, y' = ys - x for 90;
    // x' = xs - x, y' = ys - y for 180; x' = xs - y, y' = x + ys for 270.
    Box box;
    if (turn == 90) {
        box = {y0 + xs, yEnd + xs, ys - xEnd, ys - x0};
    } else if (turn == 180) {
        box = {xs - xEnd, xs - x0, ys - yEnd, ys - y0};
    } else {
        box = {xs - yEnd, xs - y0, x0 + ys, xEnd + ys};
    }
    if (box.xLo < dstRoi.x) box.xLo = dstRoi.x;
    if (box.yLo < dstRoi.y) box.yLo = dstRoi.y;
    if (box.xHi > int64_t(dstRoi.x) + dstRoi.width - 1) box.xHi = int64_t(dstRoi.x) + dstRoi.width - 1;
    if (box.yHi > int64_t(dstRoi.y) + dstRoi.height - 1) box.yHi = int64_t(dstRoi.y) + dstRoi.height - 1;
    if (box.xLo > box.xHi || box.yLo > box.yHi) return PrimNoOverlapWrn;

    const int32_t width = static_cast<int32_t>(box.xHi - box.xLo + 1);
    const int32_t height = static_cast<int32_t>(box.yHi - box.yLo + 1);
    uint8_t* first = dst + box.yLo * dstStep + 4 * box.xLo;
    auto source = [&](int64_t column, int64_t row) { return src + row * srcStep + 4 * column; };
    if (turn == 90) {
        ownpi_Rotate90_8_AC4R(source(ys - box.yLo, box.xLo - xs), srcStep, first, dstStep, width, height, -1);
    } else if (turn == 180) {
        ownpi_Rotate180_8_AC4R(source(xs - box.xLo, ys - box.yLo), srcStep, first, dstStep, width, height);
    } else {
        ownpi_Rotate90_8_AC4R(source(box.yLo - ys, xs - box.xLo), -static_cast<ptrdiff_t>(srcStep), first, dstStep,
                              width, height, +1);
    }
    return PrimOk;
}

}  // namespace PRIM_BUILD
