// The driver of the 8u -> 16s pipeline, ownFilterConvolution_8u16s_C1R, and
// the sizes of its row and column stage scratch.
//
// Rows of the image extended by r = H / 2 rows above and below ("virtual
// rows" -r .. height + r - 1) pass through the row function once each, into
// the ring slot (v + r) mod (H + 15). The column function then writes output
// rows in chunks of sixteen, each reading the sixteen plus 2r virtual rows
// around it, which are exactly the ring's H + 15 rows.
//
// The buffer holds, in order: the row stage's line scratch, the column
// stage's scratch, the table of ring row pointers on 32 bytes, the ring on
// 32 bytes. In the table entry i names ring row i mod (H + 15), for
// 3H + 30 entries, so that a run of consecutive slots never wraps.
#include "primitives/frame/cpu.h"
#include "primitives/neighbourhood/filter_pipeline_8u16s.h"

namespace PRIM_BUILD {
namespace {

template <class T>
T* AlignUp32(void* at) {
    return reinterpret_cast<T*>((reinterpret_cast<uintptr_t>(at) + 31) & ~uintptr_t(31));
}

class Pipeline {
public:
    Pipeline(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep, PrimSize size,
             const int16_t* rowKernel, int32_t rowKernelSize, int32_t columnKernelSize, int rowSlot, int columnSlot,
             int32_t border, uint8_t value, uint8_t* buffer)
        : src_(src),
          srcStep_(srcStep),
          dst_(dst),
          dstStepElements_(dstStep / 2),
          size_(size),
          radius_(columnKernelSize / 2),
          ringRows_(RingRows(columnKernelSize)),
          border_(border),
          kind_(border & 15),
          value_(value),
          row_(owntabRow_8u16s[rowSlot]),
          column_(owntabColumn_8u16s[columnSlot]) {
        int32_t rowScratch = 0, columnScratch = 0;
        PRIM(primiFilterRowBorderPipelineGetBufferSize_8u16s_C1R)(size, columnKernelSize, &rowScratch);
        PRIM(primiFilterColumnPipelineGetBufferSize_16s_C1R)(size, columnKernelSize, &columnScratch);
        line_ = buffer;
        table_ = AlignUp32<int16_t*>(buffer + rowScratch + columnScratch);
        int16_t* ring = AlignUp32<int16_t>(table_ + RingTableEntries(columnKernelSize));
        const int32_t rowElements = RingRowElements(size.width);
        for (int32_t i = 0; i < RingTableEntries(columnKernelSize); ++i)
            table_[i] = ring + static_cast<ptrdiff_t>(i % ringRows_) * rowElements;

        int32_t sum = 0;
        for (int32_t i = 0; i < rowKernelSize; ++i) sum += rowKernel[i];
        int32_t constant = value * sum;
        constant_ = static_cast<int16_t>(constant < -32768 ? -32768 : (constant > 32767 ? 32767 : constant));

        // Output that cannot stay in the cache anyway goes out with streaming
        // stores, where the rows start on 16 bytes.
        bool cacheResident = int64_t(size.width) * size.height < (owncvGetCacheSize() >> 1);
        streaming_ = !cacheResident && (reinterpret_cast<uintptr_t>(dst) & 15) == 0 && (dstStep & 15) == 0;
    }

    void Run() {
        int32_t prepared = -radius_;
        int16_t* window[kMaxRingRows];
        for (int32_t first = 0; first < size_.height; first += kPipelineChunkRows) {
            int32_t rows = size_.height - first < kPipelineChunkRows ? size_.height - first : kPipelineChunkRows;
            PrepareRows(prepared, first + rows + radius_);
            prepared = first + rows + radius_;
            for (int32_t i = 0; i < rows + 2 * radius_; ++i) window[i] = table_[Slot(StandIn(first - radius_ + i))];
            column_(window, dst_ + static_cast<ptrdiff_t>(first) * dstStepElements_, dstStepElements_,
                    {size_.width, rows}, streaming_);
        }
    }

private:
    int32_t Slot(int32_t v) const { return (v + radius_) % ringRows_; }

    // Rows inside the image, and outside it on a side that is real memory.
    bool RowInMemory(int32_t v) const {
        if (v < 0) return (border_ & BorderInMemTop) != 0;
        if (v >= size_.height) return (border_ & BorderInMemBottom) != 0;
        return true;
    }

    // The virtual row whose ring row stands for v. BorderRepl reads the edge
    // row's ring row again, and BorderConst one constant row per side; every
    // other row has a ring row of its own.
    int32_t StandIn(int32_t v) const {
        if (RowInMemory(v)) return v;
        if (kind_ == BorderRepl) return v < 0 ? 0 : size_.height - 1;
        if (kind_ == BorderConst) return v < 0 ? -radius_ : size_.height;
        return v;
    }

    // Virtual rows from .. to - 1 into their ring rows, the rows in memory in
    // runs of one call each.
    void PrepareRows(int32_t from, int32_t to) {
        const PrimSize oneRow = {size_.width, 1};
        const int32_t sideBorder = border_ & ~(BorderInMemTop | BorderInMemBottom);
        for (int32_t v = from; v < to;) {
            if (RowInMemory(v)) {
                int32_t end = v + 1;
                while (end < to && RowInMemory(end)) ++end;
                row_(src_ + static_cast<ptrdiff_t>(v) * srcStep_, table_ + Slot(v), line_, srcStep_,
                     {size_.width, end - v}, sideBorder, value_);
                v = end;
                continue;
            }
            if (StandIn(v) == v) {
                if (kind_ == BorderConst) {
                    FillConstant(table_[Slot(v)]);
                } else {
                    const uint8_t* source =
                        src_ + static_cast<ptrdiff_t>(BorderIndex(v, size_.height, kind_)) * srcStep_;
                    row_(source, table_ + Slot(v), line_, srcStep_, oneRow, sideBorder, value_);
                }
            }
            ++v;
        }
    }

    // A row of border value times the row kernel's sum.
    void FillConstant(int16_t* row) const {
        for (int32_t x = 0; x < size_.width; ++x) row[x] = constant_;
    }

    const uint8_t* src_;
    int32_t srcStep_;
    int16_t* dst_;
    int32_t dstStepElements_;
    PrimSize size_;
    int32_t radius_;
    int32_t ringRows_;
    int32_t border_;
    int32_t kind_;
    uint8_t value_;
    int16_t constant_;
    bool streaming_;
    RowPipelineFunction row_;
    ColumnPipelineFunction column_;
    uint8_t* line_;
    int16_t** table_;
};

}  // namespace

void ownFilterConvolution_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    PrimSize roiSize, const int16_t* rowKernel, int32_t rowKernelSize,
                                    int32_t columnKernelSize, int rowSlot, int columnSlot, int32_t borderType,
                                    uint8_t borderValue, uint8_t* buffer) {
    Pipeline(src, srcStep, dst, dstStep, roiSize, rowKernel, rowKernelSize, columnKernelSize, rowSlot, columnSlot,
             borderType, borderValue, buffer)
        .Run();
}

}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

// The line scratch: room for a row end extended by the kernel's reach.
extern "C" PrimStatus PRIM(primiFilterRowBorderPipelineGetBufferSize_8u16s_C1R)(PrimSize roiSize, int32_t kernelSize,
                                                                                int32_t* bufferSize) {
    if (bufferSize == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1 || kernelSize < 1) return PrimSizeErr;
    *bufferSize = Wrap32(36u * static_cast<uint32_t>(kernelSize) + 144u);
    return PrimOk;
}

extern "C" PrimStatus PRIM(primiFilterColumnPipelineGetBufferSize_16s_C1R)(PrimSize roiSize, int32_t kernelSize,
                                                                           int32_t* bufferSize) {
    if (bufferSize == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1 || kernelSize < 1) return PrimSizeErr;
    *bufferSize = Wrap32(((static_cast<uint32_t>(roiSize.width) + 3u) & ~3u) * 12u + 64u);
    return PrimOk;
}
