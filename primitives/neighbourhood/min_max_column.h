// Column passes of the min and max filters. A column pass drives the row
// pass: it filters source rows into a ring of row buffers as it needs them
// and writes each destination row as the pick of the filtered rows inside
// its window, cut at the image's top and bottom edges.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_MIN_MAX_COLUMN_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_MIN_MAX_COLUMN_H

#include "primitives/neighbourhood/min_max_row.h"

namespace PRIM_BUILD {

// The filtered rows, in a ring of ringRows buffers addressed through a
// doubled pointer table: entries i and ringRows + i are the same buffer, so
// that the rows from any row on are consecutive entries, with no wrap.
struct FilteredRows {
    const uint8_t* src;
    int32_t srcStep;
    int32_t width;
    MaskAxis x;
    RowPass rowPass;
    uint8_t** table;
    int32_t ringRows;
    int32_t next;  // the first row not filtered yet

    // Entries from row r on; rows up to `last` are filtered first. A row
    // stays in the ring until ringRows later rows have been filtered.
    uint8_t** From(int32_t r, int32_t last) {
        for (; next <= last; ++next)
            rowPass(src + static_cast<ptrdiff_t>(next) * srcStep, table[next % ringRows], width, x.size, x.anchor);
        return table + r % ringRows;
    }
    uint8_t* Row(int32_t r) { return From(r, r)[0]; }
};

struct ColumnJob {
    FilteredRows rows;
    uint8_t* dst;
    int32_t dstStep;
    int32_t height;
    MaskAxis y;
    bool streaming;  // write full destination rows around the cache

    uint8_t* DstRow(int32_t row) const { return dst + static_cast<ptrdiff_t>(row) * dstStep; }
    size_t RowBytes() const { return 4 * static_cast<size_t>(rows.width); }
};

using ColumnPass = void (*)(ColumnJob& job);

// Destination rows 0 to anchor - 1, whose windows start above the image:
// row 0 is the pick of filtered rows 0 to its window's end, and each next
// row adds one filtered row, or repeats the previous row once the windows
// reach the bottom as well.
template <class Pick>
void ColumnTopEdge(ColumnJob& job) {
    if (job.y.anchor == 0) return;
    const int32_t bytes = static_cast<int32_t>(job.RowBytes());
    int32_t end = job.y.size - 1 - job.y.anchor < job.height - 1 ? job.y.size - 1 - job.y.anchor : job.height - 1;
    uint8_t* out = job.DstRow(0);
    PRIM(primsCopy_8u)(job.rows.Row(0), out, bytes);
    for (int32_t r = 1; r <= end; ++r) Pick::Every(job.rows.Row(r), out, bytes);
    for (int32_t y = 1; y < job.y.anchor; ++y) {
        uint8_t* above = out;
        out = job.DstRow(y);
        if (end < job.height - 1) {
            PickRows<Pick>(above, job.rows.Row(++end), out, job.RowBytes(), false);
        } else {
            PRIM(primsCopy_8u)(above, out, bytes);
        }
    }
}

// A mask one row high: the row pass writes straight into the destination.
template <class Pick>
void ownFilterColumn01_8u_C1R(ColumnJob& job) {
    FilteredRows& rows = job.rows;
    for (int32_t r = 0; r < job.height; ++r)
        rows.rowPass(rows.src + static_cast<ptrdiff_t>(r) * rows.srcStep, job.DstRow(r), rows.width, rows.x.size,
                     rows.x.anchor);
}

// Short masks on images of at least two masks' height: every destination
// row below the top edge is the pick of the H ring rows of its window, or
// of fewer where the window reaches past the bottom.
template <class Pick, int32_t H>
void ownFilterColumnShort_8u_C1R(ColumnJob& job) {
    ColumnTopEdge<Pick>(job);
    for (int32_t start = 0; start + job.y.anchor < job.height; ++start) {
        const int32_t last = start + H - 1 < job.height - 1 ? start + H - 1 : job.height - 1;
        uint8_t** window = job.rows.From(start, last);
        PickRowSet<Pick>(window, last - start + 1, job.DstRow(start + job.y.anchor), job.RowBytes(), job.streaming);
    }
}

// Any mask height, at a cost per row that does not depend on it. The rows
// are cut into blocks of H. A window starting inside a block covers the
// rest of that block and the start of the next one: the pick of the
// block's running pick back from its end (made in place in the ring) and
// of the next block's running pick forward (made into the ring rows of the
// block as they are used up). The next block's own rows stay as filtered,
// for its turn.
template <class Pick>
void ownFilterColumnVH_8u_C1R(ColumnJob& job) {
    ColumnTopEdge<Pick>(job);
    const int32_t H = job.y.size;
    const int32_t height = job.height;
    const int32_t lastStart = height - 1 - job.y.anchor;
    const size_t bytes = job.RowBytes();
    for (int32_t block = 0; block <= lastStart; block += H) {
        const int32_t blockRows = block + H < height ? H : height - block;
        uint8_t** own = job.rows.From(block, block + blockRows - 1);
        for (int32_t i = blockRows - 2; i >= 0; --i) PickRows<Pick>(own[i], own[i + 1], own[i], bytes, false);

        const int32_t count = lastStart - block + 1 < H ? lastStart - block + 1 : H;
        const uint8_t* ahead = nullptr;  // the pick of the next block's rows so far
        for (int32_t i = 0; i < count; ++i) {
            const int32_t newest = block + H + i - 1;
            if (i > 0 && newest < height) {
                uint8_t* row = job.rows.From(block, newest)[H + i - 1];
                if (ahead == nullptr) {
                    ahead = row;
                } else {
                    PickRows<Pick>(ahead, row, own[i - 1], bytes, false);
                    ahead = own[i - 1];
                }
            }
            const uint8_t* const parts[2] = {own[i], ahead};
            PickRowSet<Pick>(parts, ahead == nullptr ? 1 : 2, job.DstRow(block + i + job.y.anchor), bytes,
                             job.streaming);
        }
    }
}

// Column passes by slot: the short forms for masks of 1, 3 and 5 rows.
template <class Pick>
constexpr ColumnPass owntablFilterColumn_8u_C1[8] = {
    ownFilterColumnVH_8u_C1R<Pick>,       ownFilterColumn01_8u_C1R<Pick>, ownFilterColumnVH_8u_C1R<Pick>,
    ownFilterColumnShort_8u_C1R<Pick, 3>, ownFilterColumnVH_8u_C1R<Pick>, ownFilterColumnShort_8u_C1R<Pick, 5>,
    ownFilterColumnVH_8u_C1R<Pick>,       ownFilterColumnVH_8u_C1R<Pick>,
};

}  // namespace PRIM_BUILD

#endif
