// primiCannyGetSize and primiCanny_16s8u_C1R: an edge image of 0 and 255 from
// a horizontal and a vertical signed 16-bit gradient.
//
// One pass over the rows computes magnitudes |dx| + |dy| into a ring of four
// rows, one row ahead of the non-maximum suppression, which marks candidates
// in an edge map with a frame of one pixel and sets the seeds (magnitude
// above the high threshold) to 255 at once, pushing them on a stack. A walk
// of the stack then grows the seeds into every 8-connected candidate. No
// square root or arc tangent anywhere: the direction is quantised to four by
// comparing |dy| with |dx| times tan 22.5 and tan 67.5 degrees.
//
// The middle of a row goes eight magnitudes and four suppressions at a time,
// and the tail of a row one at a time; the two differ on purpose in two
// places. The wide magnitude saturates at 65535, the single one reaches 65536
// for two gradients of -32768. The wide direction test multiplies in single
// precision, the single one in double rounded to single.
//
// Buffer, from its first 32-byte boundary: the edge map of (h + 2) x (w + 2)
// bytes; padding to 32 bytes and 12 more, so that the ring's column 1 is on
// 16 bytes; the ring of 4 rows of w + 2 magnitudes, whose first and last
// columns stay 0; the stack of (row, column) pairs in map coordinates.
#include <emmintrin.h>
#ifdef __SSSE3__
#include <tmmintrin.h>
#endif

#include <cstring>

#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {
namespace {

// Images this wide or tall take 32-bit stack elements.
constexpr int32_t kWideStackFrom = 65533;

constexpr uint8_t kCandidate = 128;
constexpr uint8_t kEdge = 255;

// tan 22.5 and tan 67.5 degrees: single precision for the four-at-a-time
// test (bits 0x3ED413CD and 0x401A827A), double for the single pixels.
constexpr float const22 = 0.41421357f;
constexpr float const67 = 2.4142137f;
constexpr double kTan22 = 0.41421356237309503;
constexpr double kTan67 = 2.414213562373095;

// A threshold as an integer that compares with a whole magnitude m
// (0..65536) as the float does: m > t exactly when m > IntegerThreshold(t).
inline int32_t IntegerThreshold(float t) {
    if (!(t < 65536.0f)) return 65536;  // and NaN: no magnitude is above it
    if (t < 0.0f) return -1;
    return static_cast<int32_t>(t);
}

template <class Element>
class EdgeStack {
public:
    explicit EdgeStack(void* base) : base_(static_cast<Element*>(base)), top_(base_) {}
    void Push(uint32_t row, uint32_t column) {
        top_[0] = static_cast<Element>(row);
        top_[1] = static_cast<Element>(column);
        top_ += 2;
    }
    // Writes the pair in any case and keeps it only when asked: no branch
    // on the data. The write stays inside the stack, since no more pixels
    // have been pushed than seen.
    void PushIf(bool keep, uint32_t row, uint32_t column) {
        top_[0] = static_cast<Element>(row);
        top_[1] = static_cast<Element>(column);
        top_ += keep ? 2 : 0;
    }
    bool Pop(uint32_t& row, uint32_t& column) {
        if (top_ == base_) return false;
        top_ -= 2;
        row = top_[0];
        column = top_[1];
        return true;
    }

private:
    Element* base_;
    Element* top_;
};

struct CannyBuffer {
    uint8_t* map;
    uint32_t* ring;
    void* stack;
    ptrdiff_t stride;  // w + 2, of the map and of the ring
};

template <class T>
T* AlignUp32(void* at) {
    return reinterpret_cast<T*>((reinterpret_cast<uintptr_t>(at) + 31) & ~uintptr_t(31));
}

// Lays the buffer out and clears the map and the ring.
CannyBuffer LayOut(uint8_t* buffer, PrimSize size) {
    CannyBuffer parts;
    parts.stride = static_cast<ptrdiff_t>(size.width) + 2;
    const size_t mapBytes = static_cast<size_t>(parts.stride) * (static_cast<size_t>(size.height) + 2);
    const size_t ringBytes = 4 * sizeof(uint32_t) * static_cast<size_t>(parts.stride);
    parts.map = AlignUp32<uint8_t>(buffer);
    parts.ring = reinterpret_cast<uint32_t*>(AlignUp32<uint8_t>(parts.map + mapBytes) + 12);
    parts.stack = parts.ring + 4 * parts.stride;
    memset(parts.map, 0, mapBytes);
    memset(parts.ring, 0, ringBytes);
    return parts;
}

inline __m128i LoadLanes(const void* at) { return _mm_loadu_si128(static_cast<const __m128i*>(at)); }

// |x| of 16-bit lanes, read as unsigned: -32768 gives 32768.
inline __m128i Abs16(__m128i x) {
#ifdef __SSSE3__
    return _mm_abs_epi16(x);
#else
    return _mm_max_epi16(x, _mm_sub_epi16(_mm_setzero_si128(), x));
#endif
}

inline __m128i Abs32(__m128i x) {
#ifdef __SSSE3__
    return _mm_abs_epi32(x);
#else
    __m128i sign = _mm_srai_epi32(x, 31);
    return _mm_sub_epi32(_mm_xor_si128(x, sign), sign);
#endif
}

// Four 16-bit values sign-extended to 32-bit lanes.
inline __m128i LoadFourWidened(const int16_t* at) {
    __m128i v = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at));
    return _mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16);
}

// The low byte of each 32-bit mask lane, as four bytes.
inline uint32_t MaskBytes(__m128i mask, uint8_t value) {
    __m128i words = _mm_packs_epi32(mask, mask);
    __m128i bytes = _mm_and_si128(_mm_packs_epi16(words, words), _mm_set1_epi8(static_cast<char>(value)));
    return static_cast<uint32_t>(_mm_cvtsi128_si32(bytes));
}

// Eight magnitudes, summed in unsigned 16 bits with saturation; those not
// above low become 0.
inline void ownCanny_16s8u_C1R_Mag_M7(const int16_t* dx, const int16_t* dy, uint32_t* out, __m128i low) {
    const __m128i zero = _mm_setzero_si128();
    __m128i m = _mm_adds_epu16(Abs16(LoadLanes(dx)), Abs16(LoadLanes(dy)));
    __m128i first = _mm_unpacklo_epi16(m, zero), second = _mm_unpackhi_epi16(m, zero);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_and_si128(first, _mm_cmpgt_epi32(first, low)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4), _mm_and_si128(second, _mm_cmpgt_epi32(second, low)));
}

// Magnitudes of one row into a ring row from its column 1.
void MagnitudeRow(const int16_t* dx, const int16_t* dy, uint32_t* out, int32_t width, int32_t low) {
    const __m128i lows = _mm_set1_epi32(low);
    int32_t x = 0;
    for (; x + 8 <= width; x += 8) ownCanny_16s8u_C1R_Mag_M7(dx + x, dy + x, out + x, lows);
    for (; x < width; ++x) {
        int32_t m = (dx[x] < 0 ? -dx[x] : dx[x]) + (dy[x] < 0 ? -dy[x] : dy[x]);
        out[x] = m > low ? static_cast<uint32_t>(m) : 0u;
    }
}

// One image row under suppression. Ring rows and the map row are indexed
// from the frame column, so image column x is at x + 1.
struct RowView {
    const int16_t* dx;
    const int16_t* dy;
    const uint32_t* above;
    const uint32_t* here;
    const uint32_t* below;
    uint8_t* map;
    uint8_t* dst;
    uint32_t mapRow;
};

// A pixel survives when its magnitude m is above that of the neighbour
// before it across the edge, and above that of the neighbour after it, or
// equal to it for a horizontal or vertical gradient: a plateau across a
// straight edge keeps its first pixel, a diagonal plateau none. A survivor
// is a candidate; above high it is a seed, set to 255 and pushed.
template <class Element>
void SuppressFour(const RowView& row, int32_t x, __m128i high, EdgeStack<Element>& stack) {
    const int32_t c = x + 1;
    const __m128i m = LoadLanes(row.here + c);
    if (_mm_movemask_epi8(_mm_cmpeq_epi32(m, _mm_setzero_si128())) == 0xFFFF) return;

    const __m128i dx = LoadFourWidened(row.dx + x), dy = LoadFourWidened(row.dy + x);
    const __m128 fx = _mm_cvtepi32_ps(Abs32(dx)), fy = _mm_cvtepi32_ps(Abs32(dy));
    const __m128i vertical = _mm_castps_si128(_mm_cmplt_ps(_mm_mul_ps(_mm_set1_ps(const67), fx), fy));
    const __m128i horizontal =
        _mm_andnot_si128(vertical, _mm_castps_si128(_mm_cmplt_ps(fy, _mm_mul_ps(_mm_set1_ps(const22), fx))));
    const __m128i straight = _mm_or_si128(vertical, horizontal);
    const __m128i opposite = _mm_srai_epi32(_mm_xor_si128(dx, dy), 31);

    // Before: left, above, above right (signs differ), above left.
    __m128i before = Merge(LoadLanes(row.above + c + 1), LoadLanes(row.above + c - 1), opposite);
    before = Merge(LoadLanes(row.above + c), before, vertical);
    before = Merge(LoadLanes(row.here + c - 1), before, horizontal);
    // After: right, below, below left (signs differ), below right.
    __m128i after = Merge(LoadLanes(row.below + c - 1), LoadLanes(row.below + c + 1), opposite);
    after = Merge(LoadLanes(row.below + c), after, vertical);
    after = Merge(LoadLanes(row.here + c + 1), after, horizontal);

    const __m128i aboveAfter =
        _mm_or_si128(_mm_cmpgt_epi32(m, after), _mm_and_si128(straight, _mm_cmpeq_epi32(m, after)));
    const __m128i survives = _mm_and_si128(_mm_cmpgt_epi32(m, before), aboveAfter);
    const __m128i seeds = _mm_and_si128(survives, _mm_cmpgt_epi32(m, high));
    const uint32_t candidates = MaskBytes(survives, kCandidate), edges = MaskBytes(seeds, kEdge);
    memcpy(row.map + c, &candidates, 4);
    memcpy(row.dst + x, &edges, 4);
    const int bits = _mm_movemask_ps(_mm_castsi128_ps(seeds));
    for (int lane = 0; lane < 4; ++lane) stack.PushIf((bits >> lane) & 1, row.mapRow, static_cast<uint32_t>(c + lane));
}

template <class Element>
void SuppressOne(const RowView& row, int32_t x, int32_t high, EdgeStack<Element>& stack) {
    const int32_t c = x + 1;
    const uint32_t m = row.here[c];
    if (m == 0) return;
    const int32_t dx = row.dx[x], dy = row.dy[x];
    const int32_t ax = dx < 0 ? -dx : dx, ay = dy < 0 ? -dy : dy;
    const float fy = static_cast<float>(ay);
    uint32_t before, after;
    bool straight = true;
    if (static_cast<float>(kTan67 * ax) < fy) {
        before = row.above[c];
        after = row.below[c];
    } else if (fy < static_cast<float>(kTan22 * ax)) {
        before = row.here[c - 1];
        after = row.here[c + 1];
    } else {
        straight = false;
        bool opposite = (dx ^ dy) < 0;
        before = opposite ? row.above[c + 1] : row.above[c - 1];
        after = opposite ? row.below[c - 1] : row.below[c + 1];
    }
    if (!(m > before && (m > after || (straight && m == after)))) return;
    row.map[c] = kCandidate;
    if (static_cast<int32_t>(m) > high) {
        row.dst[x] = kEdge;
        stack.Push(row.mapRow, static_cast<uint32_t>(c));
    }
}

template <class Element>
void SuppressRow(const RowView& row, int32_t width, int32_t high, EdgeStack<Element>& stack) {
    const __m128i highs = _mm_set1_epi32(high);
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) SuppressFour(row, x, highs, stack);
    for (; x < width; ++x) SuppressOne(row, x, high, stack);
}

// Grows the seeds: every candidate next to an edge pixel becomes one. The
// map's frame is 0, so the walk never leaves the image.
// The neighbours are taken row by row, above, level, below, and left to
// right in a row. A row's three map bytes come in one 4-byte load (the
// fourth byte lies in the map or in the padding behind it), so that only
// the candidates among them cost a branch.
template <class Element>
void Hysteresis(EdgeStack<Element>& stack, const uint8_t* map, ptrdiff_t stride, uint8_t* dst, int32_t dstStep) {
    uint32_t row, column;
    while (stack.Pop(row, column)) {
        const uint8_t* here = map + row * stride + column;
        uint8_t* edge = dst + (static_cast<ptrdiff_t>(row) - 1) * dstStep + column - 1;
        for (int32_t dr = -1; dr <= 1; ++dr) {
            uint32_t candidates = LoadWord(here + dr * stride - 1) & (dr == 0 ? 0x800080u : 0x808080u);
            for (; candidates != 0; candidates &= candidates - 1) {
                const int32_t dc = (__builtin_ctz(candidates) >> 3) - 1;
                uint8_t& neighbour = edge[dr * static_cast<ptrdiff_t>(dstStep) + dc];
                if (neighbour != 0) continue;
                neighbour = kEdge;
                stack.Push(row + dr, column + dc);
            }
        }
    }
}

struct Gradients {
    const int16_t* dx;
    int32_t dxStep;
    const int16_t* dy;
    int32_t dyStep;
    const int16_t* DxRow(int32_t y) const { return Row(dx, dxStep, y); }
    const int16_t* DyRow(int32_t y) const { return Row(dy, dyStep, y); }
    static const int16_t* Row(const int16_t* image, int32_t step, int32_t y) {
        return reinterpret_cast<const int16_t*>(reinterpret_cast<const uint8_t*>(image) +
                                                static_cast<ptrdiff_t>(y) * step);
    }
};

template <class Element>
void RunCanny(const Gradients& gradients, uint8_t* dst, int32_t dstStep, PrimSize size, int32_t low, int32_t high,
              const CannyBuffer& buffer) {
    EdgeStack<Element> stack(buffer.stack);
    // Image row y in ring row (y + 1) mod 4: row -1, above the image, is the
    // ring's first row and stays 0.
    auto ringRow = [&](int32_t y) { return buffer.ring + ((y + 1) & 3) * buffer.stride; };
    MagnitudeRow(gradients.DxRow(0), gradients.DyRow(0), ringRow(0) + 1, size.width, low);
    for (int32_t y = 0; y < size.height; ++y) {
        if (y + 1 < size.height)
            MagnitudeRow(gradients.DxRow(y + 1), gradients.DyRow(y + 1), ringRow(y + 1) + 1, size.width, low);
        else
            memset(ringRow(y + 1), 0, sizeof(uint32_t) * static_cast<size_t>(buffer.stride));  // below the image
        const RowView row = {gradients.DxRow(y),
                             gradients.DyRow(y),
                             ringRow(y - 1),
                             ringRow(y),
                             ringRow(y + 1),
                             buffer.map + (y + 1) * buffer.stride,
                             dst + static_cast<ptrdiff_t>(y) * dstStep,
                             static_cast<uint32_t>(y + 1)};
        SuppressRow(row, size.width, high, stack);
    }
    Hysteresis(stack, buffer.map, buffer.stride, dst, dstStep);
}

bool WideStack(PrimSize size) { return size.width >= kWideStackFrom || size.height >= kWideStackFrom; }

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

// One map byte and one stack pair of 16-bit elements a cell, or of 32-bit
// elements for the wide stack, the ring and the alignments.
extern "C" PrimStatus PRIM(primiCannyGetSize)(PrimSize roiSize, int32_t* bufferSize) {
    if (bufferSize == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    const uint32_t width = static_cast<uint32_t>(roiSize.width), height = static_cast<uint32_t>(roiSize.height);
    const uint32_t cellBytes = WideStack(roiSize) ? 9u : 5u;
    *bufferSize = static_cast<int32_t>((width + 2u) * (height + 2u) * cellBytes + 16u * width + 160u);
    return PrimOk;
}

extern "C" PrimStatus PRIM(primiCanny_16s8u_C1R)(const int16_t* srcDx, int32_t srcDxStep, const int16_t* srcDy,
                                                 int32_t srcDyStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                                                 float lowThresh, float highThresh, uint8_t* buffer) {
    if (srcDx == nullptr || srcDy == nullptr || dst == nullptr || buffer == nullptr) return PrimNullPtrErr;
    if (roiSize.width < 1 || roiSize.height < 1) return PrimSizeErr;
    const int64_t gradientRow = int64_t(roiSize.width) * 2;
    if (srcDxStep < gradientRow || srcDyStep < gradientRow || dstStep < roiSize.width) return PrimStepErr;
    if ((srcDxStep | srcDyStep) & 1) return PrimStepNotEvenErr;
    if (lowThresh < 0.0f || lowThresh > highThresh) return PrimBadArgErr;

    PRIM(primiSet_8u_C1R)(0, dst, dstStep, roiSize);
    const CannyBuffer parts = LayOut(buffer, roiSize);
    const Gradients gradients = {srcDx, srcDxStep, srcDy, srcDyStep};
    const int32_t low = IntegerThreshold(lowThresh), high = IntegerThreshold(highThresh);
    if (WideStack(roiSize))
        RunCanny<uint32_t>(gradients, dst, dstStep, roiSize, low, high, parts);
    else
        RunCanny<uint16_t>(gradients, dst, dstStep, roiSize, low, high, parts);
    return PrimOk;
}
