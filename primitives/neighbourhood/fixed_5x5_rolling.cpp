// Hipass 5x5 and Lowpass 5x5 on one rolling sum: a 16-bit scratch row holds,
// for each element from two pixels left of the region to two right, the
// sum of the five source rows y-2..y+2. Each output row reads five
// neighbouring sums S (and, for Hipass, its own source element); the sums
// then move down a row by taking out the top row and adding the next.
#include "primitives/neighbourhood/fixed_filters.h"
#include "primitives/neighbourhood/fixed_lines.h"

namespace PRIM_BUILD {
namespace {

constexpr uint32_t kElementsPerPixel = 4;

// `top` is the source two rows above and two pixels left of the row's first.
using FirstSums = void (*)(const uint8_t* top, int32_t srcStep, int16_t* sums, int32_t count);
using NextSums = void (*)(const uint8_t* top, int32_t srcStep, int16_t* sums, int32_t count);
using OutputRow = void (*)(const int16_t* sums, const uint8_t* centre, uint8_t* dst, int32_t count);

void ownHipass5x5Frs_8u(const uint8_t* top, int32_t srcStep, int16_t* sums, int32_t count) {
    ForEachElementRun(count, [&](int32_t i, auto e) {
        __m128i s = e.Load(top + i);
        for (int r = 1; r < 5; ++r) s = _mm_add_epi16(s, e.Load(top + static_cast<ptrdiff_t>(r) * srcStep + i));
        e.Store(sums + i, s);
    });
}

// The top row leaves, the row five below it enters.
void ownHipass5x5Row_8u(const uint8_t* top, int32_t srcStep, int16_t* sums, int32_t count) {
    const uint8_t* entering = top + 5 * static_cast<ptrdiff_t>(srcStep);
    ForEachElementRun(count, [&](int32_t i, auto e) {
        e.Store(sums + i, _mm_add_epi16(_mm_sub_epi16(e.Load(sums + i), e.Load(top + i)), e.Load(entering + i)));
    });
}

// combine(S, centre source element), S the 25-element sum.
template <class Combine>
void RowOfFive(const int16_t* sums, const uint8_t* centre, uint8_t* dst, int32_t count, Combine combine) {
    WriteLine(dst, count, [&](int32_t i, auto e) {
        const __m128i s = _mm_add_epi16(
            _mm_add_epi16(_mm_add_epi16(e.Load(sums + i), e.Load(sums + i + 4)),
                          _mm_add_epi16(e.Load(sums + i + 12), e.Load(sums + i + 16))),
            e.Load(sums + i + 8));
        return combine(s, e.Load(centre + i));
    });
}

// 25 times the centre less the sum: 24 at the centre, -1 around it.
void ownHipass5x5Col_8u_AC4(const int16_t* sums, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfFive(sums, centre, dst, count,
              [](__m128i s, __m128i c) { return _mm_sub_epi16(_mm_mullo_epi16(c, _mm_set1_epi16(25)), s); });
}

// (((s + 13) * 10485) >> 16) >> 2: 10485 is 4 * 65536 / 25 cut short, and
// the offset makes up for part of it; the quotient is not exact for every s.
void ownLowpass5x5Col_8u_C4(const int16_t* sums, const uint8_t* centre, uint8_t* dst, int32_t count) {
    RowOfFive(sums, centre, dst, count, [](__m128i s, __m128i) {
        return _mm_srli_epi16(_mm_mulhi_epu16(_mm_add_epi16(s, _mm_set1_epi16(13)), _mm_set1_epi16(10485)), 2);
    });
}

// Tables of the 8u row; the C1, C4 and C3 layouts are not built. Lowpass
// shares the first and next sums with Hipass.
const FirstSums owntablFunHipass5x5Frs[] = {ownHipass5x5Frs_8u};
const NextSums owntablFunHipass5x5Row[] = {ownHipass5x5Row_8u};
const OutputRow owntablFunHipass5x5Col[] = {nullptr, nullptr, nullptr, ownHipass5x5Col_8u_AC4};
// One stride of elements serves C1 and C4 here, so the function named C4
// sits in the AC4 slot; it keeps the fourth bytes all the same.
const OutputRow owntablFunLowpass5x5Col[] = {nullptr, nullptr, nullptr, ownLowpass5x5Col_8u_C4};

// The last output row makes no update, so row height + 2 is never read.
PrimStatus RunRollingFiveRows(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                              int32_t type, OutputRow output, uint32_t scratchBytes) {
    return WithScratch(scratchBytes, [&](uint8_t* scratch) {
        int16_t* sums = reinterpret_cast<int16_t*>(scratch);
        const int32_t count = roiSize.width * 4;
        const uint8_t* top = src - 2 * static_cast<ptrdiff_t>(srcStep) - 8;
        owntablFunHipass5x5Frs[type](top, srcStep, sums, count + 16);
        for (int32_t y = 0;; ++y) {
            output(sums, src + static_cast<ptrdiff_t>(y) * srcStep, dst + static_cast<ptrdiff_t>(y) * dstStep, count);
            if (y + 1 == roiSize.height) break;
            owntablFunHipass5x5Row[type](top + static_cast<ptrdiff_t>(y) * srcStep, srcStep, sums, count + 16);
        }
    });
}

uint32_t Width64(PrimSize roiSize) { return (static_cast<uint32_t>(roiSize.width) + 63) & ~63u; }

}  // namespace

PrimStatus ownprimiFilterHipass5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                   PrimSize roiSize, int32_t type, int32_t channels) {
    const uint32_t bytes = ((Width64(roiSize) + 4 * kElementsPerPixel + 63) >> 6) * 128 * kElementsPerPixel;
    return RunRollingFiveRows(src, srcStep, dst, dstStep, roiSize, type,
                              owntablFunHipass5x5Col[type * 4 + channels - 1], bytes);
}

PrimStatus ownprimiFilterLowpass5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                    PrimSize roiSize, int32_t type, int32_t channels) {
    const uint32_t bytes = ((4 * kElementsPerPixel + Width64(roiSize) + 63) & ~63u) * 2 * kElementsPerPixel;
    return RunRollingFiveRows(src, srcStep, dst, dstStep, roiSize, type,
                              owntablFunLowpass5x5Col[type * 4 + channels - 1], bytes);
}

}  // namespace PRIM_BUILD
