// The 3x3 fixed filters and the Prewitt and Sobel pairs, split by hand
// into a column stage and a row stage. For each output row the column stage
// combines source rows y-1, y, y+1 into a 16-bit scratch row that runs from
// one pixel left of the region to one right; the row stage combines each
// element with its neighbours one pixel to either side (L, M, R) and writes
// the colour bytes. No intermediate exceeds 4080, so 16 bits never wrap.
#include "primitives/neighbourhood/fixed_filters.h"
#include "primitives/neighbourhood/fixed_lines.h"

namespace PRIM_BUILD {
namespace {

// The column stage reads from `top`, the pixel above and left of the
// row's first; the row stage gets the scratch and the row's own source.
using ColumnStage = void (*)(const uint8_t* top, int32_t srcStep, int16_t* columns, int32_t count);
using RowStage = void (*)(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count);

constexpr uint32_t kElementsPerPixel = 4;

template <class Combine>
void ColumnsOfThree(const uint8_t* top, int32_t srcStep, int16_t* columns, int32_t count, Combine combine) {
    const uint8_t* middle = top + srcStep;
    const uint8_t* bottom = middle + srcStep;
    ForEachElementRun(count, [&](int32_t i, auto e) {
        e.Store(columns + i, combine(e.Load(top + i), e.Load(middle + i), e.Load(bottom + i)));
    });
}

// combine(L, M, R, centre source element).
template <class Combine>
void RowOfThree(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count, Combine combine) {
    WriteLine(dst, count, [&](int32_t i, auto e) {
        return combine(e.Load(columns + i), e.Load(columns + i + 4), e.Load(columns + i + 8), e.Load(centre + i));
    });
}

inline __m128i Twice(__m128i v) { return _mm_add_epi16(v, v); }

void ownPrewColV_8u(const uint8_t* top, int32_t srcStep, int16_t* columns, int32_t count) {
    ColumnsOfThree(top, srcStep, columns, count,
                   [](__m128i a, __m128i b, __m128i c) { return _mm_add_epi16(_mm_add_epi16(a, b), c); });
}

void ownSoblColV_8u(const uint8_t* top, int32_t srcStep, int16_t* columns, int32_t count) {
    ColumnsOfThree(top, srcStep, columns, count,
                   [](__m128i a, __m128i b, __m128i c) { return _mm_add_epi16(_mm_add_epi16(a, c), Twice(b)); });
}

void ownPrewSoblColH_8u(const uint8_t* top, int32_t srcStep, int16_t* columns, int32_t count) {
    ColumnsOfThree(top, srcStep, columns, count, [](__m128i a, __m128i, __m128i c) { return _mm_sub_epi16(c, a); });
}

// Left minus right, and 0 where right is larger.
void ownPrewSoblRowV_8u_AC4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count, [](__m128i l, __m128i, __m128i r, __m128i) { return _mm_subs_epu16(l, r); });
}

void ownPrewRowH_8u_AC4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count,
               [](__m128i l, __m128i m, __m128i r, __m128i) { return _mm_add_epi16(_mm_add_epi16(l, m), r); });
}

void ownSoblRowH_8u_AC4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count,
               [](__m128i l, __m128i m, __m128i r, __m128i) { return _mm_add_epi16(_mm_add_epi16(l, r), Twice(m)); });
}

// s / 16 rounded to nearest with ties to even: (s + 8) >> 4, less one when
// the low five bits of s are exactly 8 (an exact half above an even
// quotient).
void ownGauss3x3Row_8u_AC4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count, [](__m128i l, __m128i m, __m128i r, __m128i) {
        const __m128i s = _mm_add_epi16(_mm_add_epi16(l, r), Twice(m));
        const __m128i q = _mm_srli_epi16(_mm_add_epi16(s, _mm_set1_epi16(8)), 4);
        const __m128i evenTie = _mm_cmpeq_epi16(_mm_and_si128(s, _mm_set1_epi16(31)), _mm_set1_epi16(8));
        return _mm_add_epi16(q, evenTie);
    });
}

// Nine times the centre less the nine-element sum: 8 at the centre, -1
// around it.
void ownLaplace3x3Row_8u_AC4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count, [](__m128i l, __m128i m, __m128i r, __m128i c) {
        return _mm_sub_epi16(_mm_mullo_epi16(c, _mm_set1_epi16(9)), _mm_add_epi16(_mm_add_epi16(l, m), r));
    });
}

// ((s + 5) * 7281) >> 16: 7281 is 65536 / 9 cut short, and the offset
// makes up for part of it; the quotient is not exact for every s.
void ownLowpass3x3Row_8u_C4(const int16_t* columns, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfThree(columns, centre, dst, count, [](__m128i l, __m128i m, __m128i r, __m128i) {
        const __m128i s = _mm_add_epi16(_mm_add_epi16(l, m), r);
        return _mm_mulhi_epu16(_mm_add_epi16(s, _mm_set1_epi16(5)), _mm_set1_epi16(7281));
    });
}

// Tables of the 8u row; the C1, C4 and C3 layouts are not built.
const ColumnStage owntablFunPrewSoblColV[] = {ownPrewColV_8u, ownSoblColV_8u};
const RowStage owntablFunPrewSoblRowV[] = {nullptr, nullptr, nullptr, ownPrewSoblRowV_8u_AC4};
const ColumnStage owntablFunPrewSoblColH[] = {ownPrewSoblColH_8u};
const RowStage owntablFunPrewSoblRowH[] = {nullptr, nullptr, nullptr, ownPrewRowH_8u_AC4,
                                           nullptr, nullptr, nullptr, ownSoblRowH_8u_AC4};
const RowStage owntablFunGauss3x3Row[] = {nullptr, nullptr, nullptr, ownGauss3x3Row_8u_AC4};
const RowStage owntablFunLaplace3x3Row[] = {nullptr, nullptr, nullptr, ownLaplace3x3Row_8u_AC4};
// One stride of elements serves C1 and C4 here, so the function named C4
// sits in the AC4 slot; it keeps the fourth bytes all the same.
const RowStage owntablFunLowpass3x3Row[] = {nullptr, nullptr, nullptr, ownLowpass3x3Row_8u_C4};

PrimStatus RunThreeRows(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                        ColumnStage column, RowStage row, uint32_t scratchBytes) {
    return WithScratch(scratchBytes, [&](uint8_t* scratch) {
        int16_t* columns = reinterpret_cast<int16_t*>(scratch);
        const int32_t count = roiSize.width * 4;
        for (int32_t y = 0; y < roiSize.height; ++y) {
            const uint8_t* centre = src + static_cast<ptrdiff_t>(y) * srcStep;
            column(centre - srcStep - 4, srcStep, columns, count + 8);
            row(columns, centre, dst + static_cast<ptrdiff_t>(y) * dstStep, count);
        }
    });
}

uint32_t Width16(PrimSize roiSize) { return (static_cast<uint32_t>(roiSize.width) + 15) & ~15u; }

}  // namespace

PrimStatus ownprimiFilterPrewittSobelVert(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                          PrimSize roiSize, int32_t kind, int32_t type, int32_t channels) {
    const uint32_t bytes = ((Width16(roiSize) + 2 * kElementsPerPixel + 15) >> 4) * 32 * kElementsPerPixel;
    return RunThreeRows(src, srcStep, dst, dstStep, roiSize, owntablFunPrewSoblColV[type * 2 + kind],
                        owntablFunPrewSoblRowV[type * 4 + channels - 1], bytes);
}

PrimStatus ownprimiFilterPrewittSobelHoriz(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                           PrimSize roiSize, int32_t kind, int32_t type, int32_t channels) {
    const uint32_t bytes = ((Width16(roiSize) + 2 * kElementsPerPixel + 31) & ~31u) * 4 * kElementsPerPixel;
    return RunThreeRows(src, srcStep, dst, dstStep, roiSize, owntablFunPrewSoblColH[type],
                        owntablFunPrewSoblRowH[kind * 4 + type * 8 + channels - 1], bytes);
}

// Gauss takes the Sobel column stage, a + 2b + c.
PrimStatus ownprimiFilterGauss3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize roiSize, int32_t type, int32_t channels) {
    const uint32_t bytes = ((Width16(roiSize) + 2 * kElementsPerPixel + 15) & ~15u) * 2 * kElementsPerPixel;
    return RunThreeRows(src, srcStep, dst, dstStep, roiSize, owntablFunPrewSoblColV[type * 2 + kSobel],
                        owntablFunGauss3x3Row[type * 4 + channels - 1], bytes);
}

// Laplace and Lowpass take the Prewitt column stage, a + b + c.
PrimStatus ownprimiFilterLaplace3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels) {
    const uint32_t bytes = ((Width16(roiSize) + 2 * kElementsPerPixel + 15) & ~15u) * 2 * kElementsPerPixel;
    return RunThreeRows(src, srcStep, dst, dstStep, roiSize, owntablFunPrewSoblColV[type * 2 + kPrewitt],
                        owntablFunLaplace3x3Row[type * 4 + channels - 1], bytes);
}

PrimStatus ownprimiFilterLowpass3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels) {
    const uint32_t bytes =
        (((static_cast<uint32_t>(roiSize.width) + 63) | 63) + 2 * kElementsPerPixel) & ~63u;
    return RunThreeRows(src, srcStep, dst, dstStep, roiSize, owntablFunPrewSoblColV[type * 2 + kPrewitt],
                        owntablFunLowpass3x3Row[type * 4 + channels - 1], bytes * 2 * kElementsPerPixel);
}

}  // namespace PRIM_BUILD
