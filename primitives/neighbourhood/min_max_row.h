// Row passes of the min and max filters, shared with the elliptical
// morphology.
//
// A row pass writes, for every pixel of a row, the pick (bytewise maximum or
// minimum) of the pixels inside a window of maskWidth pixels that starts
// anchor pixels to its left. The window is cut at the row's ends, which is
// the same as replicating the edge pixels, so nothing outside the row is
// read. The mask is clipped to the row first (ClipMaskAxis): anchor is then
// below width and the window reaches at most width - 1 pixels to the right.
//
// Every pass has the same shape: outputs whose windows are cut on the left
// come from a running pick forward from the row's first pixel, those cut on
// the right from a running pick back from its last, and the middle from the
// pass's own method. Two methods exist: a fixed window of N < 16 pixels,
// four outputs at a time, and a block method whose cost per pixel does not
// depend on the window. Windows wider than a method's own are reached by
// widening its result in place.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_MIN_MAX_ROW_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_MIN_MAX_ROW_H

#include "primitives/neighbourhood/rank_pick.h"

namespace PRIM_BUILD {

using RowPass = void (*)(const uint8_t* src, uint8_t* dst, int32_t width, int32_t maskWidth, int32_t anchor);

// A mask's extent and anchor along one axis of the image.
struct MaskAxis {
    int32_t size;
    int32_t anchor;
};

// Cuts a mask to what can reach an image of extent pixels on this axis: an
// anchor at or past the far edge is pulled back to the last pixel with the
// window's far end kept, and a reach beyond the image is shortened. The
// result is the same; only the passes have less to do.
inline MaskAxis ClipMaskAxis(int32_t size, int32_t anchor, int32_t extent) {
    if (anchor >= extent) {
        size = size + extent - anchor - 1;
        anchor = extent - 1;
    }
    if (extent < size - anchor) size = extent + anchor;
    return {size, anchor};
}

// Outputs 0 to min(anchor, width) - 1, whose windows start before the row:
// each is the pick of pixels 0 to its window's end.
template <class Pick>
void RowLeftEdge(const uint8_t* src, uint8_t* dst, int32_t width, int32_t window, int32_t anchor) {
    int32_t count = anchor < width ? anchor : width;
    if (count == 0) return;
    int32_t end = window - 1 - anchor < width - 1 ? window - 1 - anchor : width - 1;
    __m128i acc = LoadPixel(src);
    for (int32_t i = 1; i <= end; ++i) acc = Pick::Of(acc, LoadPixel(src + 4 * i));
    for (int32_t x = 0; x < count; ++x) {
        StorePixel(dst + 4 * x, acc);
        if (end < width - 1) acc = Pick::Of(acc, LoadPixel(src + 4 * ++end));
    }
}

// Outputs from max(anchor, width - window + anchor + 1) to the last, whose
// windows end past the row: each is the pick of its window's start to the
// row's last pixel, walking back.
template <class Pick>
void RowRightEdge(const uint8_t* src, uint8_t* dst, int32_t width, int32_t window, int32_t anchor) {
    int32_t first = width - window + anchor + 1 > anchor ? width - window + anchor + 1 : anchor;
    if (first > width - 1) return;
    int32_t start = width - 1 - anchor;
    __m128i acc = LoadPixel(src + 4 * start);
    for (int32_t i = start + 1; i < width; ++i) acc = Pick::Of(acc, LoadPixel(src + 4 * i));
    for (int32_t x = width - 1; x >= first; --x) {
        StorePixel(dst + 4 * x, acc);
        if (start > 0) acc = Pick::Of(acc, LoadPixel(src + 4 * --start));
    }
}

// Picks each output of a row with the output k places to its left, in place
// from the right end: its window grows by k pixels on the left. Outputs
// less than k from the start take output 0, whose window is the one cut at
// the row's start.
template <class Pick>
void WidenLeft(uint8_t* row, int32_t width, int32_t k) {
    int32_t x = width - 1;
    for (; x - 3 >= k; x -= 4) Store16(row + 4 * (x - 3), Pick::Of(Load16(row + 4 * (x - 3)), Load16(row + 4 * (x - 3 - k))));
    for (; x >= k; --x) StorePixel(row + 4 * x, Pick::Of(LoadPixel(row + 4 * x), LoadPixel(row + 4 * (x - k))));
    for (; x >= 1; --x) StorePixel(row + 4 * x, Pick::Of(LoadPixel(row + 4 * x), LoadPixel(row)));
}

// The same to the right, in place from the left end.
template <class Pick>
void WidenRight(uint8_t* row, int32_t width, int32_t k) {
    uint8_t* last = row + 4 * (width - 1);
    int32_t x = 0;
    for (; x + k + 3 <= width - 1; x += 4) Store16(row + 4 * x, Pick::Of(Load16(row + 4 * x), Load16(row + 4 * (x + k))));
    for (; x + k <= width - 1; ++x) StorePixel(row + 4 * x, Pick::Of(LoadPixel(row + 4 * x), LoadPixel(row + 4 * (x + k))));
    for (; x < width - 1; ++x) StorePixel(row + 4 * x, Pick::Of(LoadPixel(row + 4 * x), LoadPixel(last)));
}

// Brings a row of picks over windows of `window` pixels with anchor `core`
// to windows of maskWidth pixels with anchor `anchor`. Each step adds at
// most the present window's width, so that the two windows it joins touch:
// the width at most doubles per step.
template <class Pick>
void WidenRow(uint8_t* row, int32_t width, int32_t window, int32_t core, int32_t maskWidth, int32_t anchor) {
    int32_t left = anchor - core;
    int32_t right = (maskWidth - 1 - anchor) - (window - 1 - core);
    while (left > 0) {
        int32_t k = left < window ? left : window;
        WidenLeft<Pick>(row, width, k);
        window += k;
        left -= k;
    }
    while (right > 0) {
        int32_t k = right < window ? right : window;
        WidenRight<Pick>(row, width, k);
        window += k;
        right -= k;
    }
}

// The anchor of a pass whose own window is narrower than the mask.
inline int32_t CoreAnchor(int32_t anchor, int32_t window) { return anchor < window - 1 ? anchor : window - 1; }

// The pick of four pixel vectors one pixel apart: lane l covers pixels l to
// l + 3 from at.
template <class Pick>
__m128i PickOfFour(const uint8_t* at) {
    return Pick::Of(Pick::Of(Load16(at), Load16(at + 4)), Pick::Of(Load16(at + 8), Load16(at + 12)));
}

// The fixed-window pass: N pixels, four outputs a vector. It serves masks of
// N pixels and, through widening, wider ones (an even width goes to the odd
// pass below it). A window of N = 4q + r pixels is the pick of q picks of
// four and r single pixels; each pick of four serves the q vectors of
// outputs that share it, so a vector costs 3 + (q - 1) + r operations.
template <class Pick, int N>
void ownFilterRow_8u_C4R(const uint8_t* src, uint8_t* dst, int32_t width, int32_t maskWidth, int32_t anchor) {
    constexpr int Q = N / 4, R = N % 4;
    const int32_t core = CoreAnchor(anchor, N);
    RowLeftEdge<Pick>(src, dst, width, N, core);
    RowRightEdge<Pick>(src, dst, width, N, core);
    // Windows inside the row start at pixels 0 to width - N.
    const int32_t starts = width - N + 1;
    uint8_t* out = dst + 4 * core;
    int32_t s = 0;
    if (starts >= 4) {
        __m128i fours[Q + 1];  // fours[m]: the pick of four from pixel s + 4m
        for (int m = 0; m + 1 < Q; ++m) fours[m] = PickOfFour<Pick>(src + 16 * m);
        for (; s + 4 <= starts; s += 4) {
            const uint8_t* at = src + 4 * s;
            __m128i acc;
            if (Q > 0) {
                fours[Q - 1] = PickOfFour<Pick>(at + 16 * (Q - 1));
                acc = fours[0];
                for (int m = 1; m < Q; ++m) acc = Pick::Of(acc, fours[m]);
                for (int m = 0; m + 1 < Q; ++m) fours[m] = fours[m + 1];
            } else {
                acc = Load16(at);
            }
            for (int k = Q > 0 ? 0 : 1; k < R; ++k) acc = Pick::Of(acc, Load16(at + 16 * Q + 4 * k));
            Store16(out + 4 * s, acc);
        }
    }
    for (; s < starts; ++s) {
        const uint8_t* at = src + 4 * s;
        __m128i acc = LoadPixel(at);
        for (int k = 1; k < N; ++k) acc = Pick::Of(acc, LoadPixel(at + 4 * k));
        StorePixel(out + 4 * s, acc);
    }
    WidenRow<Pick>(dst, width, N, core, maskWidth, anchor);
}

// The block method takes windows of up to 63 pixels; wider ones are widened.
constexpr int32_t kBlockWindowMax = 63;

// The block method: the row is cut into blocks of `window` pixels. A window
// starting inside a block covers the rest of that block and the start of
// the next, so it is the pick of the block's running pick back from its end
// (kept on the stack) and the next block's running pick forward.
template <class Pick>
void ownFilterRowVH_8u_C4R(const uint8_t* src, uint8_t* dst, int32_t width, int32_t maskWidth, int32_t anchor) {
    const int32_t window = maskWidth < kBlockWindowMax ? maskWidth : kBlockWindowMax;
    const int32_t core = CoreAnchor(anchor, window);
    RowLeftEdge<Pick>(src, dst, width, window, core);
    RowRightEdge<Pick>(src, dst, width, window, core);
    const int32_t starts = width - window + 1;
    uint8_t backward[4 * kBlockWindowMax];
    for (int32_t block = 0; block < starts; block += window) {
        const uint8_t* first = src + 4 * block;
        __m128i acc = LoadPixel(first + 4 * (window - 1));
        StorePixel(backward + 4 * (window - 1), acc);
        for (int32_t i = window - 2; i >= 0; --i) {
            acc = Pick::Of(acc, LoadPixel(first + 4 * i));
            StorePixel(backward + 4 * i, acc);
        }
        uint8_t* out = dst + 4 * (block + core);
        StorePixel(out, acc);
        const int32_t count = starts - block < window ? starts - block : window;
        const uint8_t* next = first + 4 * window;
        __m128i forward = _mm_set1_epi8(static_cast<char>(Pick::kLoser));
        for (int32_t i = 1; i < count; ++i) {
            forward = Pick::Of(forward, LoadPixel(next + 4 * (i - 1)));
            StorePixel(out + 4 * i, Pick::Of(LoadPixel(backward + 4 * i), forward));
        }
    }
    WidenRow<Pick>(dst, width, window, core, maskWidth, anchor);
}

// The row pass tables, by slot. Small images keep to the fixed windows, an
// even slot taking the odd pass below it; larger ones send the even slots
// from 8 on to the block method.
template <class Pick>
constexpr RowPass owntablFilterRow_8u_C4_Small[16] = {
    ownFilterRowVH_8u_C4R<Pick>,   ownFilterRow_8u_C4R<Pick, 1>,  ownFilterRow_8u_C4R<Pick, 2>,
    ownFilterRow_8u_C4R<Pick, 3>,  ownFilterRow_8u_C4R<Pick, 4>,  ownFilterRow_8u_C4R<Pick, 5>,
    ownFilterRow_8u_C4R<Pick, 6>,  ownFilterRow_8u_C4R<Pick, 7>,  ownFilterRow_8u_C4R<Pick, 7>,
    ownFilterRow_8u_C4R<Pick, 9>,  ownFilterRow_8u_C4R<Pick, 9>,  ownFilterRow_8u_C4R<Pick, 11>,
    ownFilterRow_8u_C4R<Pick, 11>, ownFilterRow_8u_C4R<Pick, 13>, ownFilterRow_8u_C4R<Pick, 13>,
    ownFilterRow_8u_C4R<Pick, 15>,
};

template <class Pick>
constexpr RowPass owntablFilterRow_8u_C4[16] = {
    ownFilterRowVH_8u_C4R<Pick>,  ownFilterRow_8u_C4R<Pick, 1>,  ownFilterRow_8u_C4R<Pick, 2>,
    ownFilterRow_8u_C4R<Pick, 3>, ownFilterRow_8u_C4R<Pick, 4>,  ownFilterRow_8u_C4R<Pick, 5>,
    ownFilterRow_8u_C4R<Pick, 6>, ownFilterRow_8u_C4R<Pick, 7>,  ownFilterRowVH_8u_C4R<Pick>,
    ownFilterRow_8u_C4R<Pick, 9>, ownFilterRowVH_8u_C4R<Pick>,  ownFilterRow_8u_C4R<Pick, 11>,
    ownFilterRowVH_8u_C4R<Pick>,  ownFilterRow_8u_C4R<Pick, 13>, ownFilterRowVH_8u_C4R<Pick>,
    ownFilterRow_8u_C4R<Pick, 15>,
};

// The pass of the larger table for a clipped mask width: a fixed window
// when the row holds two windows and the window is below 16.
template <class Pick>
RowPass LargeRowPass(int32_t width, int32_t maskWidth) {
    return owntablFilterRow_8u_C4<Pick>[width >= 2 * int64_t{maskWidth} && maskWidth < 16 ? maskWidth : 0];
}

// The pass for a region and a clipped mask width. Images of up to 16384
// bytes take a fixed window whenever the row holds two masks, however wide.
template <class Pick>
RowPass ChooseRowPass(PrimSize roi, int32_t maskWidth) {
    const bool small = int64_t{roi.width} * roi.height * 4 < 16385;
    if (!small) return LargeRowPass<Pick>(roi.width, maskWidth);
    const bool wide = roi.width >= 2 * int64_t{maskWidth};
    return owntablFilterRow_8u_C4_Small<Pick>[wide ? (maskWidth < 16 ? maskWidth : 15) : 0];
}

}  // namespace PRIM_BUILD

#endif
