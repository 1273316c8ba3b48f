// Dilation and erosion over an arbitrary mask, element by element.
//
// Each output pixel is the pick, over every mask element, of the source
// pixel under it, with the element's 16-byte selection entry applied: a
// clear element turns the source into the pick's loser (AND with zero for
// the maximum, OR with ones for the minimum) and so drops out without a
// branch. Where the window reaches past the image, the rows go through a
// scratch copy with a replicated border first; in the middle rows the
// source is read in place, and the few columns at each side fold the
// elements past the edge onto the edge pixel.
#include "primitives/neighbourhood/morphology_kinds.h"
#include "primitives/neighbourhood/rank_pick.h"

namespace PRIM_BUILD {

namespace {

// The pick over the mask of one vector of outputs, or of one pixel: Load
// reads 16 bytes or 4.
template <class Pick, class Load>
__m128i PickUnderMask(const uint8_t* window, int32_t srcStep, const uint8_t* selectTable, int32_t maskWidth,
                      int32_t maskHeight, Load load) {
    __m128i acc = _mm_set1_epi8(static_cast<char>(Pick::kLoser));
    const __m128i* select = reinterpret_cast<const __m128i*>(selectTable);
    for (int32_t j = 0; j < maskHeight; ++j, window += srcStep)
        for (int32_t i = 0; i < maskWidth; ++i, ++select)
            acc = Pick::Of(acc, Pick::Masked(load(window + 4 * i), _mm_load_si128(select)));
    return acc;
}

// One row of outputs: window points at the top-left pixel of output 0's
// window. Four vectors of outputs at a time, sharing each selection entry,
// then one vector, then single pixels.
template <class Pick>
void ownMorphRow_8u_C4S(const uint8_t* window, int32_t srcStep, uint8_t* dst, int32_t width,
                        const uint8_t* selectTable, int32_t maskWidth, int32_t maskHeight) {
    const __m128i loser = _mm_set1_epi8(static_cast<char>(Pick::kLoser));
    int32_t x = 0;
    for (; x + 16 <= width; x += 16) {
        __m128i a0 = loser, a1 = loser, a2 = loser, a3 = loser;
        const uint8_t* row = window + 4 * x;
        const __m128i* select = reinterpret_cast<const __m128i*>(selectTable);
        for (int32_t j = 0; j < maskHeight; ++j, row += srcStep)
            for (int32_t i = 0; i < maskWidth; ++i, ++select) {
                const __m128i keep = _mm_load_si128(select);
                const uint8_t* at = row + 4 * i;
                a0 = Pick::Of(a0, Pick::Masked(Load16(at), keep));
                a1 = Pick::Of(a1, Pick::Masked(Load16(at + 16), keep));
                a2 = Pick::Of(a2, Pick::Masked(Load16(at + 32), keep));
                a3 = Pick::Of(a3, Pick::Masked(Load16(at + 48), keep));
            }
        uint8_t* out = dst + 4 * x;
        Store16(out, a0);
        Store16(out + 16, a1);
        Store16(out + 32, a2);
        Store16(out + 48, a3);
    }
    for (; x + 4 <= width; x += 4)
        Store16(dst + 4 * x, PickUnderMask<Pick>(window + 4 * x, srcStep, selectTable, maskWidth, maskHeight, Load16));
    for (; x < width; ++x)
        StorePixel(dst + 4 * x,
                   PickUnderMask<Pick>(window + 4 * x, srcStep, selectTable, maskWidth, maskHeight, LoadPixel));
}

struct ArbitraryJob {
    const uint8_t* src;
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    PrimSize roi;
    const MorphologyState& state;
    const uint8_t* selectTable;

    const uint8_t* SrcRow(int32_t y) const { return src + static_cast<ptrdiff_t>(y) * srcStep; }
    uint8_t* DstRow(int32_t y) const { return dst + static_cast<ptrdiff_t>(y) * dstStep; }
};

// Output rows first to end - 1 (at most the mask's height of them) from a
// copy of the source rows they need, with the border replicated around it.
template <class Pick>
void FilterBand(const ArbitraryJob& job, int32_t first, int32_t end) {
    const MorphologyState& s = job.state;
    const int32_t from = first - s.anchorY, to = end - 1 + s.bottomReach;
    const int32_t top = from < 0 ? 0 : from;
    const int32_t bottom = to > job.roi.height - 1 ? job.roi.height - 1 : to;
    const int32_t rows = bottom - top + 1;
    const PrimSize inner = {job.roi.width, rows};
    const PrimSize outer = {job.roi.width + s.maskWidth - 1, to - from + 1};
    PRIM(primiCopyReplicateBorder_8u_C4R)(job.SrcRow(top), job.srcStep, inner, s.workBuffer, s.workStep, outer,
                                          top - from, s.anchorX);
    for (int32_t y = first; y < end; ++y)
        ownMorphRow_8u_C4S<Pick>(s.workBuffer + static_cast<ptrdiff_t>(y - first) * s.workStep, s.workStep,
                                 job.DstRow(y), job.roi.width, job.selectTable, s.maskWidth, s.maskHeight);
}

// One output pixel of a middle row near the left or right edge: the mask
// columns past the image read the edge pixel.
template <class Pick>
void FilterEdgePixel(const ArbitraryJob& job, int32_t x, int32_t y) {
    const MorphologyState& s = job.state;
    __m128i acc = _mm_set1_epi8(static_cast<char>(Pick::kLoser));
    for (int32_t j = 0; j < s.maskHeight; ++j) {
        const uint8_t* row = job.SrcRow(y + j - s.anchorY);
        for (int32_t i = 0; i < s.maskWidth; ++i) {
            if (s.maskData[j * s.maskWidth + i] == 0) continue;
            int32_t column = x + i - s.anchorX;
            column = column < 0 ? 0 : (column > job.roi.width - 1 ? job.roi.width - 1 : column);
            acc = Pick::Of(acc, LoadPixel(row + 4 * column));
        }
    }
    StorePixel(job.DstRow(y) + 4 * x, acc);
}

}  // namespace

template <class Pick>
void ownMorphArbitrary_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                              const MorphologyState& state, const uint8_t* selectTable) {
    const ArbitraryJob job{src, srcStep, dst, dstStep, roi, state, selectTable};
    const int32_t H = state.maskHeight, W = state.maskWidth;
    if (roi.height < H) {
        FilterBand<Pick>(job, 0, roi.height);
        return;
    }
    if (roi.width < W) {
        for (int32_t first = 0; first < roi.height; first += H)
            FilterBand<Pick>(job, first, first + H < roi.height ? first + H : roi.height);
        return;
    }
    if (state.anchorY > 0) FilterBand<Pick>(job, 0, state.anchorY);
    const int32_t rightStart = roi.width - state.rightReach;
    for (int32_t y = state.anchorY; y < roi.height - state.bottomReach; ++y) {
        for (int32_t x = 0; x < state.anchorX; ++x) FilterEdgePixel<Pick>(job, x, y);
        ownMorphRow_8u_C4S<Pick>(job.SrcRow(y - state.anchorY), srcStep, job.DstRow(y) + 4 * state.anchorX,
                                 roi.width - W + 1, selectTable, W, H);
        for (int32_t x = rightStart; x < roi.width; ++x) FilterEdgePixel<Pick>(job, x, y);
    }
    if (state.bottomReach > 0) FilterBand<Pick>(job, roi.height - state.bottomReach, roi.height);
}

template void ownMorphArbitrary_8u_C4R<PickMax>(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize,
                                                const MorphologyState&, const uint8_t*);
template void ownMorphArbitrary_8u_C4R<PickMin>(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize,
                                                const MorphologyState&, const uint8_t*);

}  // namespace PRIM_BUILD
