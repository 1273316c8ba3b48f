// Laplace 5x5 and Gauss 5x5. Both kernels are symmetric, so each source row
// passes through a row stage once and leaves three weighted lines: A for
// the kernel's outer rows, B for its second and fourth, C for its middle.
// With E = p(x-2) + p(x+2), O = p(x-1) + p(x+1) and c = p(x):
//
//   Laplace  A = -E - 3O - 4c      B = -3E + 6c          C = -4E + 6O + 20c
//   Gauss    A = 2E + 7O + 12c     B = 7E + 31O + 52c    C = 12E + 52O + 127c
//
// and output row y is A(y-2) + B(y-1) + C(y) + B(y+1) + A(y+2). Laplace
// lines are signed 16 bits and their sum fits them (11220 at most); Gauss
// lines are unsigned 16 bits (up to 65025) and are summed in 32.
#include "primitives/neighbourhood/fixed_filters.h"
#include "primitives/neighbourhood/fixed_lines.h"

namespace PRIM_BUILD {
namespace {

// 1/571 in single precision, bit pattern 0x3AE58C54.
constexpr float kGaussReciprocal = 1.0f / 571.0f;
constexpr uint32_t kSseRoundingBits = 0x6000;

// `row` is the source row's pixel two left of the region's first.
using WeightedRow = void (*)(const uint8_t* row, int16_t* a, int16_t* b, int16_t* c, int32_t count);
using SumOfLines = void (*)(const int16_t* a0, const int16_t* b1, const int16_t* c2, const int16_t* b3,
                            const int16_t* a4, uint8_t* dst, int32_t count);

// The weights of E, O and c in one line.
struct LineWeights {
    int16_t e, o, c;
};

inline __m128i Weighted(__m128i e, __m128i o, __m128i c, LineWeights w) {
    return _mm_add_epi16(_mm_add_epi16(_mm_mullo_epi16(e, _mm_set1_epi16(w.e)), _mm_mullo_epi16(o, _mm_set1_epi16(w.o))),
                         _mm_mullo_epi16(c, _mm_set1_epi16(w.c)));
}

void RowStage(const uint8_t* row, int16_t* a, int16_t* b, int16_t* c, int32_t count, LineWeights wa, LineWeights wb,
              LineWeights wc) {
    ForEachElementRun(count, [&](int32_t i, auto e) {
        const __m128i even = _mm_add_epi16(e.Load(row + i), e.Load(row + i + 16));
        const __m128i odd = _mm_add_epi16(e.Load(row + i + 4), e.Load(row + i + 12));
        const __m128i centre = e.Load(row + i + 8);
        e.Store(a + i, Weighted(even, odd, centre, wa));
        e.Store(b + i, Weighted(even, odd, centre, wb));
        e.Store(c + i, Weighted(even, odd, centre, wc));
    });
}

void ownLaplRow5x5_8u_C4(const uint8_t* row, int16_t* a, int16_t* b, int16_t* c, int32_t count) {
    RowStage(row, a, b, c, count, {-1, -3, -4}, {-3, 0, 6}, {-4, 6, 20});
}

void ownGaussRow5x5_8u_C4(const uint8_t* row, int16_t* a, int16_t* b, int16_t* c, int32_t count) {
    RowStage(row, a, b, c, count, {2, 7, 12}, {7, 31, 52}, {12, 52, 127});
}

void ownLaplCol5x5_8u_C4(const int16_t* a0, const int16_t* b1, const int16_t* c2, const int16_t* b3,
                         const int16_t* a4, uint8_t* dst, int32_t count) {
    WriteLine(dst, count, [&](int32_t i, auto e) {
        return _mm_add_epi16(_mm_add_epi16(_mm_add_epi16(e.Load(a0 + i), e.Load(a4 + i)),
                                           _mm_add_epi16(e.Load(b1 + i), e.Load(b3 + i))),
                             e.Load(c2 + i));
    });
}

// The five unsigned lines summed in 32 bits, times 1/571 in single
// precision, rounded in the current mode (the driver makes it nearest). The
// two A lines (15300 at most) and the two B lines (65280) still fit 16
// unsigned bits when added first.
inline __m128i GaussQuotient(__m128i outer, __m128i inner, __m128i middle, bool high) {
    const __m128i zero = _mm_setzero_si128();
    auto widen = [&](__m128i v) { return high ? _mm_unpackhi_epi16(v, zero) : _mm_unpacklo_epi16(v, zero); };
    const __m128i sum = _mm_add_epi32(_mm_add_epi32(widen(outer), widen(inner)), widen(middle));
    return _mm_cvtps_epi32(_mm_mul_ps(_mm_cvtepi32_ps(sum), _mm_set1_ps(kGaussReciprocal)));
}

void ownGaussCol5x5_8u_C4(const int16_t* a0, const int16_t* b1, const int16_t* c2, const int16_t* b3,
                          const int16_t* a4, uint8_t* dst, int32_t count) {
    WriteLine(dst, count, [&](int32_t i, auto e) {
        const __m128i outer = _mm_add_epi16(e.Load(a0 + i), e.Load(a4 + i));
        const __m128i inner = _mm_add_epi16(e.Load(b1 + i), e.Load(b3 + i));
        const __m128i middle = e.Load(c2 + i);
        return _mm_packs_epi32(GaussQuotient(outer, inner, middle, false), GaussQuotient(outer, inner, middle, true));
    });
}

// Tables of the 8u row; the C1 and C3 layouts are not built. The row stage
// treats all four elements of a pixel alike, so the C4 form fills the AC4
// slot too; in the line sums the term channels >> 2 picks the C4 form for
// AC4 alone.
const WeightedRow owntablFunLaplGausRow5x5[] = {nullptr, ownLaplRow5x5_8u_C4,  nullptr, ownLaplRow5x5_8u_C4,
                                                nullptr, ownGaussRow5x5_8u_C4, nullptr, ownGaussRow5x5_8u_C4};
const SumOfLines owntablFunLaplGausCol5x5[] = {nullptr, ownLaplCol5x5_8u_C4, nullptr, ownGaussCol5x5_8u_C4};

// Twelve lines in the scratch: five of A (rows y-2..y+2), four of B (rows
// y-1..y+2) and three of C (rows y..y+2). Source row r owns line r mod 5
// of A, r mod 4 of B and r mod 3 of C, so the lines rotate in place.
class WeightedLines {
public:
    WeightedLines(int16_t* scratch, size_t lineElements) : scratch_(scratch), lineElements_(lineElements) {}
    int16_t* A(int32_t row) const { return Line(Ring(row, 5)); }
    int16_t* B(int32_t row) const { return Line(5 + Ring(row, 4)); }
    int16_t* C(int32_t row) const { return Line(9 + Ring(row, 3)); }

private:
    // Rows start at -2.
    static int32_t Ring(int32_t row, int32_t size) { return (row + 2) % size; }
    int16_t* Line(int32_t index) const { return scratch_ + lineElements_ * static_cast<size_t>(index); }
    int16_t* scratch_;
    size_t lineElements_;
};

}  // namespace

PrimStatus ownprimiFilterLaplGaus5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                     PrimSize roiSize, int32_t kind, int32_t type, int32_t channels) {
    const WeightedRow rowStage = owntablFunLaplGausRow5x5[kind * 4 + type * 8 + channels - 1];
    const SumOfLines lineSum = owntablFunLaplGausCol5x5[type * 4 + kind * 2 + (channels >> 2)];
    const int32_t count = roiSize.width * 4;
    const uint32_t lineElements = (static_cast<uint32_t>(count) + 15) & ~15u;

    // The Gauss result must not depend on the caller's rounding mode.
    const bool roundingTaken = kind == kGauss && (ps_get_ssx() & kSseRoundingBits) != 0;
    const uint32_t savedControl = roundingTaken ? ps_set_ssx(0, kSseRoundingBits) : 0;
    const PrimStatus status = WithScratch(12 * lineElements * 2, [&](uint8_t* scratch) {
        const WeightedLines lines(reinterpret_cast<int16_t*>(scratch), lineElements);
        auto pass = [&](int32_t r) {
            rowStage(src + static_cast<ptrdiff_t>(r) * srcStep - 8, lines.A(r), lines.B(r), lines.C(r), count);
        };
        for (int32_t r = -2; r < 2; ++r) pass(r);
        for (int32_t y = 0; y < roiSize.height; ++y) {
            pass(y + 2);
            lineSum(lines.A(y - 2), lines.B(y - 1), lines.C(y), lines.B(y + 1), lines.A(y + 2),
                    dst + static_cast<ptrdiff_t>(y) * dstStep, count);
        }
    });
    if (roundingTaken) ps_set_ssx(savedControl, kSseRoundingBits);
    return status;
}

}  // namespace PRIM_BUILD
