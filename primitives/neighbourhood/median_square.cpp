// Medians over square 3x3 and 5x5 windows.
//
// Neighbouring windows share all their columns but one, so each image column
// is sorted once and the sorted columns are kept in short lines on the stack,
// a chunk of a row at a time; each window then only combines its columns.
//
// 3x3: with its three columns sorted, the median of nine is the median of
// the largest low, the median middle and the smallest high.
//
// 5x5: sorted columns are merged in adjacent pairs (ten values each). A
// window of columns c..c+4 is the pair at c together with the run of fifteen
// that merges the pair at c+2 with column c+4. The 13th smallest of two
// sorted runs T and P is the smallest, over every split 13 = t + p, of
// max(T[t], P[p]), counting from 1 and taking P[0] as nothing, which needs
// only ranks 3 to 13 of the run of fifteen.
#include "primitives/neighbourhood/median_common.h"
#include "primitives/neighbourhood/sorting_networks.h"

namespace PRIM_BUILD {
namespace {

// Output pixels a chunk of a row covers; the lines hold a few more columns.
constexpr int32_t kChunk = 128;

constexpr ComparatorNetwork kMergeColumns = MergeNetwork(5, 5);
constexpr ComparatorNetwork kMergePairAndColumn = MergeNetwork(10, 5);

// Lines of 32-bit pixels: the k-th line holds rank k of each column.
template <int kRanks, int kColumns>
struct RankLines {
    alignas(16) uint32_t rank[kRanks][kColumns];

    template <class Io>
    __m128i Load(int k, int32_t column, Io io) const {
        return io.Load(&rank[k][column]);
    }
    template <class Io>
    void Store(int k, int32_t column, __m128i v, Io io) {
        io.Store(&rank[k][column], v);
    }
};

// Sorts count image columns of kEdge pixels, from top (the first column's
// top pixel) on, into the lines of ranks.
template <int kEdge, int kColumns>
void SortColumns(const uint8_t* top, int32_t srcStep, int32_t count, RankLines<kEdge, kColumns>& columns) {
    static constexpr ComparatorNetwork kSort = SortNetwork(kEdge);
    ForEachGroup(count, [&](int32_t i, auto io) {
        __m128i v[kEdge];
#pragma GCC unroll 5
        for (int r = 0; r < kEdge; ++r) v[r] = io.Load(PixelAt(top, srcStep, r, i));
        ApplyNetwork(kSort, v);
#pragma GCC unroll 5
        for (int k = 0; k < kEdge; ++k) columns.Store(k, i, v[kSort.rank.slot[k]], io);
    });
}

void ownprimiFilterMedian_8u_C4R_3x3(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                     PrimSize size) {
    RankLines<3, kChunk + 2> columns;
    ForEachChunk(size, kChunk, [&](int32_t y, int32_t x0, int32_t n) {
        // Line column i is image column x0 - 1 + i.
        SortColumns(PixelAt(src, srcStep, y - 1, x0 - 1), srcStep, n + 2, columns);
        uint8_t* to = PixelAt(dst, dstStep, y, x0);
        ForEachGroup(n, [&](int32_t j, auto io) {
            __m128i median = Median9OfSortedTriples(
                columns.Load(0, j, io), columns.Load(1, j, io), columns.Load(2, j, io), columns.Load(0, j + 1, io),
                columns.Load(1, j + 1, io), columns.Load(2, j + 1, io), columns.Load(0, j + 2, io),
                columns.Load(1, j + 2, io), columns.Load(2, j + 2, io));
            io.StoreColour(to + 4 * j, median);
        });
    });
}

void ownprimiFilterMedian_8u_C4R_5x5(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                     PrimSize size) {
    RankLines<5, kChunk + 4> columns;
    RankLines<10, kChunk + 2> pairs;
    ForEachChunk(size, kChunk, [&](int32_t y, int32_t x0, int32_t n) {
        // Line column i is image column x0 - 2 + i.
        SortColumns(PixelAt(src, srcStep, y - 2, x0 - 2), srcStep, n + 4, columns);
        ForEachGroup(n + 2, [&](int32_t i, auto io) {
            __m128i v[10];
#pragma GCC unroll 5
            for (int k = 0; k < 5; ++k) {
                v[k] = columns.Load(k, i, io);
                v[5 + k] = columns.Load(k, i + 1, io);
            }
            ApplyNetwork(kMergeColumns, v);
#pragma GCC unroll 10
            for (int k = 0; k < 10; ++k) pairs.Store(k, i, v[kMergeColumns.rank.slot[k]], io);
        });
        uint8_t* to = PixelAt(dst, dstStep, y, x0);
        ForEachGroup(n, [&](int32_t j, auto io) {
            __m128i run[15];
#pragma GCC unroll 10
            for (int k = 0; k < 10; ++k) run[k] = pairs.Load(k, j + 2, io);
#pragma GCC unroll 5
            for (int k = 0; k < 5; ++k) run[10 + k] = columns.Load(k, j + 4, io);
            ApplyNetwork(kMergePairAndColumn, run);
            const auto& rank = kMergePairAndColumn.rank.slot;
            // Split 13 = 13 + 0, then 12 + 1 down to 3 + 10 (0-based ranks below).
            __m128i median = run[rank[12]];
#pragma GCC unroll 10
            for (int p = 1; p <= 10; ++p) {
                median = _mm_min_epu8(median, _mm_max_epu8(run[rank[12 - p]], pairs.Load(p - 1, j, io)));
            }
            io.StoreColour(to + 4 * j, median);
        });
    });
}

}  // namespace

PrimStatus ownprimiFilterMedianSqr_8u_AC4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                           PrimSize size, int32_t mask) {
    if (mask == MaskSize3x3) {
        ownprimiFilterMedian_8u_C4R_3x3(src, srcStep, dst, dstStep, size);
    } else {
        ownprimiFilterMedian_8u_C4R_5x5(src, srcStep, dst, dstStep, size);
    }
    return PrimOk;
}

}  // namespace PRIM_BUILD
