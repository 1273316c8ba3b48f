// Building and releasing the morphology state: primiMorphologyInitAlloc_8u_C4R,
// primiMorphologyFree.
//
// The mask is analysed once. Its selected elements (any non-zero byte) may
// form nothing at all, a rectangle, an "ellipse" (one run per row, every run
// over the anchor's column and the anchor's row between the first and last
// run, equal widths at equal offsets), or anything else. Each kind has its
// own method, and the state carries what that method needs.
#include "primitives/neighbourhood/morphology_state.h"

#include <climits>
#include <cstring>

#include "primitives/frame/build.h"

static_assert(sizeof(MorphologyState) == 96, "the state's header is 96 bytes");
static_assert(sizeof(MorphologyEllipse) == 56, "the ellipse record is 56 bytes");

namespace PRIM_BUILD {
namespace {

constexpr int32_t kType8u = 1;
constexpr int32_t kChannels = 4;
constexpr int32_t kSelectBytes = 16;  // an arbitrary mask's table entry per element

struct RowRun {
    int32_t row;
    int32_t start;  // first selected element
    int32_t end;    // first clear element after it
};

// What the analysis finds. The arrays point into its temporary tables.
struct MaskAnalysis {
    int32_t kind;
    int32_t width, height;  // of the rectangle or the ellipse's span
    int32_t anchorX, anchorY;
    int32_t rowCount, runCount;
    RowRun* runs;        // rowCount entries
    int32_t* rowRun;     // rowCount entries
    int32_t* runWidth;   // runCount entries, falling
    int32_t* runAnchor;  // runCount entries
};

// The distinct run widths, falling, with their anchor offsets; false when
// two runs of one width lie differently around the anchor.
bool CollectRunWidths(MaskAnalysis& a, int32_t anchorX) {
    a.runCount = 0;
    for (int32_t t = 0; t < a.rowCount; ++t) {
        const int32_t width = a.runs[t].end - a.runs[t].start;
        const int32_t offset = anchorX - a.runs[t].start;
        int32_t u = 0;
        while (u < a.runCount && a.runWidth[u] > width) ++u;
        if (u < a.runCount && a.runWidth[u] == width) {
            if (a.runAnchor[u] != offset) return false;
            continue;
        }
        for (int32_t v = a.runCount; v > u; --v) {
            a.runWidth[v] = a.runWidth[v - 1];
            a.runAnchor[v] = a.runAnchor[v - 1];
        }
        a.runWidth[u] = width;
        a.runAnchor[u] = offset;
        ++a.runCount;
    }
    for (int32_t t = 0; t < a.rowCount; ++t) {
        const int32_t width = a.runs[t].end - a.runs[t].start;
        int32_t u = 0;
        while (a.runWidth[u] != width) ++u;
        a.rowRun[t] = u;
    }
    return true;
}

int32_t AnalyseMask(const uint8_t* mask, PrimSize size, PrimPoint anchor, MaskAnalysis& a) {
    uint8_t any = 0;
    for (int64_t i = 0; i < int64_t{size.width} * size.height; ++i) any |= mask[i];
    if (any == 0) return MaskEmpty;

    bool miss = false;
    int32_t minStart = size.width, maxEnd = 0;
    a.rowCount = 0;
    for (int32_t j = 0; j < size.height; ++j) {
        const uint8_t* row = mask + static_cast<ptrdiff_t>(j) * size.width;
        int32_t start = 0;
        while (start < size.width && row[start] == 0) ++start;
        if (start == size.width) continue;
        int32_t end = start;
        while (end < size.width && row[end] != 0) ++end;
        for (int32_t i = end; i < size.width; ++i)
            if (row[i] != 0) return MaskArbitrary;  // a second run
        a.runs[a.rowCount++] = {j, start, end};
        if (start < minStart) minStart = start;
        if (end > maxEnd) maxEnd = end;
        if (anchor.x < start || anchor.x >= end) miss = true;
    }
    const RowRun& first = a.runs[0];
    const int32_t lastRow = a.runs[a.rowCount - 1].row;
    if (anchor.y < first.row || anchor.y > lastRow) miss = true;

    a.width = maxEnd - minStart;
    a.height = lastRow - first.row + 1;
    a.anchorX = anchor.x - minStart;
    a.anchorY = anchor.y - first.row;
    bool rectangle = a.height == a.rowCount;
    for (int32_t t = 1; t < a.rowCount && rectangle; ++t)
        rectangle = a.runs[t].start == first.start && a.runs[t].end == first.end;
    if (rectangle) return MaskRectangle;
    if (miss) return MaskArbitrary;
    return CollectRunWidths(a, anchor.x) ? MaskEllipse : MaskArbitrary;
}

// The size of the row store that an ellipse's calls work in.
int64_t EllipseBufferSize(int32_t roiWidth, int32_t height, int32_t runCount) {
    return (int64_t{height} * runCount + 1) * (int64_t{roiWidth} * 4 + 32) + int64_t{height} * 5 * 8 + 40;
}

int32_t ArbitraryWorkStep(int32_t roiWidth, int32_t maskWidth) {
    return static_cast<int32_t>(((int64_t{roiWidth} + maskWidth) * 4 + 15) & ~int64_t{15});
}

// Bytes of the block for the kind found; the mask copy takes A of them.
int64_t StateSize(const MaskAnalysis& a, int32_t roiWidth, PrimSize mask) {
    const int64_t maskBytes = (int64_t{mask.width} * mask.height + 15) & ~int64_t{15};
    switch (a.kind) {
        case MaskEmpty:
            return maskBytes + 96;
        case MaskRectangle: {
            // The min filter asks the same as the max filter.
            int32_t filterBytes = 0;
            PRIM(primiFilterMaxGetBufferSize_8u_C4R)(roiWidth, {a.width, a.height}, &filterBytes);
            return maskBytes + filterBytes + 128;
        }
        case MaskEllipse:
            return maskBytes + (int64_t{a.rowCount} + a.runCount) * 8 + 160 +
                   EllipseBufferSize(roiWidth, a.height, a.runCount);
        default: {
            const int64_t scratch = int64_t{mask.height} * 2 * ArbitraryWorkStep(roiWidth, mask.width);
            const int64_t rows = 4 * int64_t{mask.height};
            return 33 * maskBytes + (scratch > rows ? scratch : rows) + 112;
        }
    }
}

uint8_t* AlignUp(uint8_t* at, uintptr_t alignment) {
    return at + ((alignment - reinterpret_cast<uintptr_t>(at) % alignment) % alignment);
}

// Copies the ellipse's runs into the record and its arrays behind it, and
// returns the first byte after them.
uint8_t* PlaceEllipse(uint8_t* at, const MaskAnalysis& a, MorphologyState& state) {
    MorphologyEllipse* e = reinterpret_cast<MorphologyEllipse*>(at);
    int32_t* arrays = reinterpret_cast<int32_t*>(e + 1);
    *e = {a.width, a.height, a.anchorX, a.anchorY, a.rowCount, a.runCount,
          arrays,  arrays + a.rowCount, arrays + 2 * a.rowCount, arrays + 2 * a.rowCount + a.runCount};
    for (int32_t t = 0; t < a.rowCount; ++t) {
        e->rowIndex[t] = a.runs[t].row - a.runs[0].row;
        e->rowRun[t] = a.rowRun[t];
    }
    for (int32_t u = 0; u < a.runCount; ++u) {
        e->runWidth[u] = a.runWidth[u];
        e->runAnchor[u] = a.runAnchor[u];
    }
    state.ellipse = e;
    return reinterpret_cast<uint8_t*>(arrays + 2 * (a.rowCount + a.runCount));
}

// The two selection tables of an arbitrary mask, one 16-byte entry per
// element, so that a whole vector of source bytes is kept or dropped.
void FillSelectTables(const uint8_t* mask, int64_t elements, uint8_t* erodeTable, uint8_t* dilateTable) {
    for (int64_t i = 0; i < elements; ++i) {
        const uint8_t selected = mask[i] != 0 ? 0xFF : 0x00;
        memset(dilateTable + i * kSelectBytes, selected, kSelectBytes);
        memset(erodeTable + i * kSelectBytes, static_cast<uint8_t>(~selected), kSelectBytes);
    }
}

void BuildState(uint8_t* block, int32_t totalSize, const MaskAnalysis& a, int32_t roiWidth, const uint8_t* mask,
                PrimSize maskSize, PrimPoint anchor) {
    MorphologyState& state = *reinterpret_cast<MorphologyState*>(block);
    const int64_t elements = int64_t{maskSize.width} * maskSize.height;
    const int64_t maskBytes = (elements + 15) & ~int64_t{15};
    state = MorphologyState{};
    state.maskData = block + sizeof(MorphologyState);
    memcpy(state.maskData, mask, static_cast<size_t>(elements));
    state.maskWidth = maskSize.width;
    state.maskHeight = maskSize.height;
    state.anchorX = anchor.x;
    state.anchorY = anchor.y;
    state.totalSize = totalSize;
    state.dataType = kType8u;
    state.channels = kChannels;
    state.maxWidth = roiWidth;
    state.reserved = -1;
    state.maskKind = a.kind;
    uint8_t* behindMask = state.maskData + maskBytes;
    switch (a.kind) {
        case MaskEmpty:
            state.anchorX = state.anchorY = 0;
            break;
        case MaskRectangle:
        case MaskEllipse:
            state.maskWidth = a.width;
            state.maskHeight = a.height;
            state.anchorX = a.anchorX;
            state.anchorY = a.anchorY;
            state.workBuffer =
                a.kind == MaskRectangle ? behindMask : AlignUp(PlaceEllipse(behindMask, a, state), 32);
            break;
        default:
            state.erodeTable = behindMask;
            state.dilateTable = state.maskData + 17 * maskBytes;
            state.workBuffer = state.maskData + 33 * maskBytes;
            state.rightReach = maskSize.width - anchor.x - 1;
            state.bottomReach = maskSize.height - anchor.y - 1;
            state.workStep = ArbitraryWorkStep(roiWidth, maskSize.width);
            FillSelectTables(mask, elements, state.erodeTable, state.dilateTable);
            break;
    }
}

PrimStatus InitAlloc(int32_t roiWidth, const uint8_t* mask, PrimSize maskSize, PrimPoint anchor,
                     MorphologyState** stateOut) {
    if (mask == nullptr) return PrimNullPtrErr;
    if (roiWidth < 1 || maskSize.width < 1 || maskSize.height < 1) return PrimSizeErr;
    if (anchor.x < 0 || anchor.x >= maskSize.width || anchor.y < 0 || anchor.y >= maskSize.height)
        return PrimAnchorErr;

    // The analysis tables: a run, a distinct width and offset, and a width
    // index for each mask row at most.
    const int64_t tableBytes = int64_t{maskSize.height} * (sizeof(RowRun) + 3 * sizeof(int32_t));
    uint8_t* tables = tableBytes <= INT32_MAX ? static_cast<uint8_t*>(primMalloc(static_cast<int32_t>(tableBytes)))
                                              : nullptr;
    if (tables == nullptr) return PrimMemAllocErr;
    MaskAnalysis a{};
    a.runs = reinterpret_cast<RowRun*>(tables);
    a.rowRun = reinterpret_cast<int32_t*>(a.runs + maskSize.height);
    a.runWidth = a.rowRun + maskSize.height;
    a.runAnchor = a.runWidth + maskSize.height;
    a.kind = AnalyseMask(mask, maskSize, anchor, a);

    const int64_t size = StateSize(a, roiWidth, maskSize);
    uint8_t* block = size <= INT32_MAX ? static_cast<uint8_t*>(primMalloc(static_cast<int32_t>(size))) : nullptr;
    PrimStatus status = PrimOk;
    if (block == nullptr) {
        status = PrimMemAllocErr;
    } else if (stateOut == nullptr) {
        primFree(block);
        status = PrimNullPtrErr;
    } else {
        BuildState(block, static_cast<int32_t>(size), a, roiWidth, mask, maskSize, anchor);
        *stateOut = reinterpret_cast<MorphologyState*>(block);
    }
    primFree(tables);
    return status;
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiMorphologyInitAlloc_8u_C4R)(int32_t roiWidth, const uint8_t* mask, PrimSize maskSize,
                                                             PrimPoint anchor, MorphologyState** state) {
    return PRIM_BUILD::InitAlloc(roiWidth, mask, maskSize, anchor, state);
}

extern "C" PrimStatus PRIM(primiMorphologyFree)(MorphologyState* state) {
    if (state == nullptr) return PrimNullPtrErr;
    PRIM(primsFree)(state);
    return PrimOk;
}
