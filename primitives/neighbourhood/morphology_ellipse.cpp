// Dilation and erosion over an elliptical mask: one run of elements per
// mask row, each run over the anchor's column.
//
// A run of width L at offset o is a one-row min or max filter of L pixels
// with anchor o, so a run row of the mask contributes the row pass of its
// width applied to the source row it lies over. Each source row is filtered
// once for every distinct run width, into a ring of one entry per mask row;
// an output row is then the pick of one ring buffer per run row (a run of
// one pixel reads the source row itself). The cost per pixel follows the
// number of run rows and of distinct widths, not the mask's area. Source
// rows above and below the image are the first and the last row again, and
// the row passes cut windows at the row's ends: this is the replicated
// border.
#include "primitives/neighbourhood/min_max_row.h"
#include "primitives/neighbourhood/morphology_kinds.h"

namespace PRIM_BUILD {

namespace {

// A distinct run width's row pass and its window, clipped to the row.
struct RunPass {
    RowPass pass;
    MaskAxis axis;
};

uint8_t* AlignUp(uint8_t* at, uintptr_t alignment) {
    return at + ((alignment - reinterpret_cast<uintptr_t>(at) % alignment) % alignment);
}

}  // namespace

template <class Pick>
void ownMorphEllipse_8u_C4R(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roi,
                            const MorphologyState& state) {
    const MorphologyEllipse& e = *state.ellipse;
    const size_t rowBytes = (4 * static_cast<size_t>(roi.width) + 31) & ~size_t{31};
    const size_t entryBytes = rowBytes * static_cast<size_t>(e.runCount);

    // The work buffer: the run passes, the rows of one output, the ring.
    RunPass* runs = reinterpret_cast<RunPass*>(state.workBuffer);
    const uint8_t** parts = reinterpret_cast<const uint8_t**>(runs + e.runCount);
    uint8_t* ring = AlignUp(reinterpret_cast<uint8_t*>(parts + e.rowCount), 32);
    for (int32_t u = 0; u < e.runCount; ++u) {
        runs[u].axis = ClipMaskAxis(e.runWidth[u], e.runAnchor[u], roi.width);
        runs[u].pass = LargeRowPass<Pick>(roi.width, runs[u].axis.size);
    }

    int32_t filtered = 0;  // source rows through the row passes so far
    for (int32_t y = 0; y < roi.height; ++y) {
        const int32_t top = y - e.anchorY;
        const int32_t lowest = top + e.height - 1 < roi.height - 1 ? top + e.height - 1 : roi.height - 1;
        for (; filtered <= lowest; ++filtered) {
            const uint8_t* row = src + static_cast<ptrdiff_t>(filtered) * srcStep;
            uint8_t* entry = ring + static_cast<size_t>(filtered % e.height) * entryBytes;
            for (int32_t u = 0; u < e.runCount; ++u)
                if (runs[u].axis.size > 1)
                    runs[u].pass(row, entry + u * rowBytes, roi.width, runs[u].axis.size, runs[u].axis.anchor);
        }
        for (int32_t t = 0; t < e.rowCount; ++t) {
            int32_t r = top + e.rowIndex[t];
            r = r < 0 ? 0 : (r > roi.height - 1 ? roi.height - 1 : r);
            const int32_t u = e.rowRun[t];
            parts[t] = runs[u].axis.size == 1 ? src + static_cast<ptrdiff_t>(r) * srcStep
                                              : ring + static_cast<size_t>(r % e.height) * entryBytes + u * rowBytes;
        }
        PickRowSet<Pick>(parts, e.rowCount, dst + static_cast<ptrdiff_t>(y) * dstStep,
                         4 * static_cast<size_t>(roi.width), false);
    }
}

template void ownMorphEllipse_8u_C4R<PickMax>(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize,
                                              const MorphologyState&);
template void ownMorphEllipse_8u_C4R<PickMin>(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize,
                                              const MorphologyState&);

}  // namespace PRIM_BUILD
