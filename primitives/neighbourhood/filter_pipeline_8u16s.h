// The separable 8u -> 16s convolution behind the Sobel border primitives.
//
// A kernel is split into a row part and a column part. A row function
// filters source rows, border included, into a ring of signed 16-bit rows; a
// column function combines ring rows into the destination, sixteen output
// rows at a time, so that the ring stays in the cache however tall the image.
// The weights are built into the functions; the tables below pick them.
#ifndef KV_PRIMITIVES_NEIGHBOURHOOD_FILTER_PIPELINE_8U16S_H
#define KV_PRIMITIVES_NEIGHBOURHOOD_FILTER_PIPELINE_8U16S_H

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Output rows that one call of a column function writes at most.
constexpr int32_t kPipelineChunkRows = 16;

// Kernels of up to 5 rows: a ring of at most 5 + 15 rows.
constexpr int32_t kMaxKernelSize = 5;
constexpr int32_t kMaxRingRows = kMaxKernelSize + kPipelineChunkRows - 1;

// The ring and its table of row pointers for a kernel of the given height.
inline int32_t RingRows(int32_t kernelSize) { return kernelSize + kPipelineChunkRows - 1; }
inline int32_t RingTableEntries(int32_t kernelSize) { return 3 * kernelSize + 30; }
inline int32_t RingRowElements(int32_t width) { return (width + 7) & ~7; }

// Filters size.height source rows, srcStep apart, each into the ring row that
// its entry of rows names. border is the border word without the top and
// bottom flags: it decides the columns outside the row.
using RowPipelineFunction = void (*)(const uint8_t* src, int16_t* const* rows, uint8_t* line, int32_t srcStep,
                                     PrimSize size, int32_t border, uint8_t borderValue);

// Writes size.height output rows of size.width values. window[0] is the top
// row of the first output row's neighbourhood; window[i] the rows below it.
using ColumnPipelineFunction = void (*)(int16_t* const* window, int16_t* dst, int32_t dstStepElements, PrimSize size,
                                        bool streaming);

// Row functions by slot; only the slots that the Sobel primitives use are
// filled: 2 3x3 kerDxNeg, 3 5x5 kerDxNeg, 6 3x3 kerSobel, 7 5x5 kerSobel.
constexpr int kRowSlots = 11;
extern const RowPipelineFunction owntabRow_8u16s[kRowSlots];

// Column functions by slot; filled: 1 3x3 kerDx, 4 5x5 kerDx,
// 11 3x3 kerSobelNeg, 12 5x5 kerSobelNeg.
constexpr int kColumnSlots = 13;
extern const ColumnPipelineFunction owntabColumn_8u16s[kColumnSlots];

// Runs the pipeline over roiSize with the row and column functions of the
// slots. The row kernel's weights give, for BorderConst, the value of a row
// outside the image; the column kernel's size is the number of rows that an
// output row spans. Arguments have been checked by the caller; buffer holds
// what primiFilterSobel...GetBufferSize reported for the size.
void ownFilterConvolution_8u16s_C1R(const uint8_t* src, int32_t srcStep, int16_t* dst, int32_t dstStep,
                                    PrimSize roiSize, const int16_t* rowKernel, int32_t rowKernelSize,
                                    int32_t columnKernelSize, int rowSlot, int columnSlot, int32_t borderType,
                                    uint8_t borderValue, uint8_t* buffer);

// Buffer sizes are 32-bit arithmetic and wrap for absurd images.
inline int32_t Wrap32(uint32_t value) { return static_cast<int32_t>(value); }

// The position inside 0..n-1 that position i reads under a border kind that
// takes its values from the image (BorderRepl, BorderWrap, BorderMirror,
// BorderMirrorEdge). Positions far outside, as in images narrower than the
// kernel, go on repeating the same rule.
inline int32_t BorderIndex(int32_t i, int32_t n, int32_t kind) {
    if (i >= 0 && i < n) return i;
    switch (kind) {
        case BorderWrap: {
            int32_t m = i % n;
            return m < 0 ? m + n : m;
        }
        case BorderMirror: {
            if (n == 1) return 0;
            int32_t period = 2 * (n - 1), m = i % period;
            if (m < 0) m += period;
            return m < n ? m : period - m;
        }
        case BorderMirrorEdge: {
            int32_t period = 2 * n, m = i % period;
            if (m < 0) m += period;
            return m < n ? m : period - 1 - m;
        }
        default:
            return i < 0 ? 0 : n - 1;
    }
}

// Eight bytes widened to eight 16-bit lanes.
inline __m128i LoadBytes8(const uint8_t* at) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)), _mm_setzero_si128());
}

inline __m128i LoadWords8(const int16_t* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); }

// Runs group(x) over x = 0, 8, 16, ... and, when count is not a multiple of
// eight, once more at count - 8, overlapping the group before: every value is
// computed in a group and no load or store passes the end. Rows shorter than
// eight go one value at a time through single(x).
template <class Group, class Single>
inline void ForEachGroupOf8(int32_t count, const Group& group, const Single& single) {
    if (count < 8) {
        for (int32_t x = 0; x < count; ++x) single(x);
        return;
    }
    int32_t x = 0;
    for (; x + 8 <= count; x += 8) group(x, true);
    if (x < count) group(count - 8, false);
}

}  // namespace PRIM_BUILD

#endif
