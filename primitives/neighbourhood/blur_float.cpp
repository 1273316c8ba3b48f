// The box filter on single-precision running sums, for masks of area above
// 8100, where an integer multiplier would overflow 32 bits.
//
// The order of the float operations is part of the result once sums pass
// 2^24: columns are built by adding the rows in order, a row's running sum
// starts as the first maskWidth columns added left to right, and it slides
// as (sum + entering column) - leaving column. Each mean is the truncation
// of scale * sum + 9.0e-6.
#include "primitives/frame/memory.h"
#include "primitives/neighbourhood/box_filter.h"
#include "primitives/neighbourhood/box_running_sums.h"

namespace PRIM_BUILD {
namespace {

// Lifts a mean that lies a hair below a whole number, as 255 for a white
// window does. Bit pattern 0x3716FEB5.
constexpr float kMeanOffset = 9.0e-6f;

// Column sums of three floats a column, one per colour channel.
constexpr int kLanes = 3;

inline __m128 Floats(__m128i v) { return _mm_castsi128_ps(v); }

// Four pixels of four 32-bit lanes each, as twelve colour lanes in three
// vectors: the fourth lane of each pixel drops out.
inline void ColourLanes(const __m128i d[4], __m128i out[3]) {
    const __m128 p0 = Floats(d[0]), p1 = Floats(d[1]), p2 = Floats(d[2]), p3 = Floats(d[3]);
    const __m128 p0b2p1b0 = _mm_shuffle_ps(p0, p1, _MM_SHUFFLE(0, 0, 2, 2));
    const __m128 p2b2p3b0 = _mm_shuffle_ps(p2, p3, _MM_SHUFFLE(0, 0, 2, 2));
    out[0] = _mm_castps_si128(_mm_shuffle_ps(p0, p0b2p1b0, _MM_SHUFFLE(2, 0, 1, 0)));
    out[1] = _mm_castps_si128(_mm_shuffle_ps(p1, p2, _MM_SHUFFLE(1, 0, 2, 1)));
    out[2] = _mm_castps_si128(_mm_shuffle_ps(p2b2p3b0, p3, _MM_SHUFFLE(2, 1, 2, 0)));
}

// A column is read as four floats, the fourth belonging to the next column
// (the scratch has spare columns at the end): its lane is computed along
// and dropped by the store.
class FloatSums {
public:
    FloatSums(float* columns, int32_t count, float scale) : columns_(columns), count_(count), scale_(_mm_set1_ps(scale)) {}

    void AddRow(const uint8_t* row) { Change<false>(row, nullptr); }
    void MoveDown(const uint8_t* entering, const uint8_t* leaving) { Change<true>(entering, leaving); }

    __m128 Column(int32_t i) const { return _mm_loadu_ps(columns_ + kLanes * i); }
    static __m128 Add(__m128 sum, __m128 column) { return _mm_add_ps(sum, column); }
    static __m128 Slide(__m128 sum, __m128 entering, __m128 leaving) {
        return _mm_sub_ps(_mm_add_ps(sum, entering), leaving);
    }
    __m128i Mean(__m128 sum) const {
        return _mm_cvttps_epi32(_mm_add_ps(_mm_mul_ps(scale_, sum), _mm_set1_ps(kMeanOffset)));
    }

private:
    // column = (float)(entering - leaving) + column, the difference taken as
    // an integer first.
    template <bool kLeaving>
    void Change(const uint8_t* entering, const uint8_t* leaving) {
        float* columns = columns_;
        ForEachColumnDifference<kLeaving>(
            entering, leaving, count_,
            [columns](int32_t j, const __m128i* d) {
                __m128i lanes[3];
                ColourLanes(d, lanes);
                float* at = columns + kLanes * j;
                for (int k = 0; k < 3; ++k)
                    _mm_storeu_ps(at + 4 * k, _mm_add_ps(_mm_cvtepi32_ps(lanes[k]), _mm_loadu_ps(at + 4 * k)));
            },
            [columns](int32_t j, __m128i d) {
                alignas(16) int32_t lanes[4];
                _mm_store_si128(reinterpret_cast<__m128i*>(lanes), d);
                for (int c = 0; c < kLanes; ++c)
                    columns[kLanes * j + c] = static_cast<float>(lanes[c]) + columns[kLanes * j + c];
            });
    }

    float* columns_;
    int32_t count_;
    __m128 scale_;
};

}  // namespace

PrimStatus ownBlurFloat_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                           PrimSize maskSize, PrimPoint anchor) {
    const int32_t area =
        static_cast<int32_t>(static_cast<uint32_t>(maskSize.width) * static_cast<uint32_t>(maskSize.height));
    const int32_t elements =
        static_cast<int32_t>((static_cast<uint32_t>(maskSize.width) + roiSize.width + 2) * kLanes);
    float* columns = primsMalloc_32f(elements);
    if (columns == nullptr) return PrimMemAllocErr;
    PRIM(primsSet_32f)(0.0f, columns, elements);
    FloatSums sums(columns, maskSize.width + roiSize.width - 1, 1.0f / static_cast<float>(area));
    RunningSumRows(sums, BoxWindowOrigin(src, srcStep, anchor), srcStep, dst, dstStep, roiSize, maskSize);
    PRIM(primsFree)(columns);
    return PrimOk;
}

}  // namespace PRIM_BUILD
