// The box filter on integer running sums, for masks of area up to 8100.
//
// Each lane's mean is (multiplier * sum mod 2^32) >> shift, with the
// multiplier a reciprocal of the area biased upward and no rounding offset:
// the result is truncated. Up to area 8100 the product of the largest sum
// and its multiplier stays below 2^32.
#include "primitives/neighbourhood/box_filter.h"
#include "primitives/neighbourhood/box_running_sums.h"

namespace PRIM_BUILD {
namespace {

// The multiplier and shift for a reciprocal v of the area: 4096 and 12 for
// 1.0; otherwise v scaled to 32 bits, normalised so that its top bit is set
// (at most 24 steps), cut to its top 12 bits and raised by one.
void get_shift_int(float v, uint32_t* multiplier, uint32_t* shift) {
    if (v == 1.0f) {
        *multiplier = 4096;
        *shift = 12;
        return;
    }
    // A mask whose area wrapped to 0 or below in 32 bits gives a reciprocal
    // outside 0..1; the scaled value is held to the 32-bit range.
    const double scaled = static_cast<double>(v) * 4294967295.0;
    uint32_t n = scaled > 0.0 ? static_cast<uint32_t>(scaled < 4294967295.0 ? scaled : 4294967295.0) : 0u;
    uint32_t c = 0;
    while ((n & 0x80000000u) == 0 && c < 24) {
        n <<= 1;
        ++c;
    }
    *multiplier = (n >> 20) + 1;
    *shift = c + 12;
}

// The low 32 bits of each lane's product.
inline __m128i MultiplyLow32(__m128i a, __m128i b) {
#ifdef __SSE4_1__
    return _mm_mullo_epi32(a, b);
#else
    const __m128i even = _mm_mul_epu32(a, b);
    const __m128i odd = _mm_mul_epu32(_mm_srli_epi64(a, 32), _mm_srli_epi64(b, 32));
    return _mm_unpacklo_epi32(_mm_shuffle_epi32(even, _MM_SHUFFLE(0, 0, 2, 0)),
                              _mm_shuffle_epi32(odd, _MM_SHUFFLE(0, 0, 2, 0)));
#endif
}

// Column sums of four 32-bit lanes, wrapping: the fourth lane carries the
// fourth bytes along and never reaches the destination. Means stay below
// 2^20, so the store's saturation is the limit to 255.
class IntegerSums {
public:
    IntegerSums(__m128i* columns, int32_t count, uint32_t multiplier, uint32_t shift)
        : columns_(columns),
          count_(count),
          multiplier_(_mm_set1_epi32(static_cast<int32_t>(multiplier))),
          shift_(_mm_cvtsi32_si128(static_cast<int32_t>(shift))) {
        memset(columns, 0, sizeof(__m128i) * static_cast<size_t>(count));
    }

    void AddRow(const uint8_t* row) { Change<false>(row, nullptr); }
    void MoveDown(const uint8_t* entering, const uint8_t* leaving) { Change<true>(entering, leaving); }

    __m128i Column(int32_t i) const { return columns_[i]; }
    static __m128i Add(__m128i sum, __m128i column) { return _mm_add_epi32(sum, column); }
    static __m128i Slide(__m128i sum, __m128i entering, __m128i leaving) {
        return _mm_add_epi32(sum, _mm_sub_epi32(entering, leaving));
    }
    __m128i Mean(__m128i sum) const { return _mm_srl_epi32(MultiplyLow32(multiplier_, sum), shift_); }

private:
    template <bool kLeaving>
    void Change(const uint8_t* entering, const uint8_t* leaving) {
        __m128i* columns = columns_;
        ForEachColumnDifference<kLeaving>(
            entering, leaving, count_,
            [columns](int32_t j, const __m128i* d) {
                for (int k = 0; k < 4; ++k) columns[j + k] = _mm_add_epi32(columns[j + k], d[k]);
            },
            [columns](int32_t j, __m128i d) { columns[j] = _mm_add_epi32(columns[j], d); });
    }

    __m128i* columns_;
    int32_t count_;
    __m128i multiplier_;
    __m128i shift_;
};

}  // namespace

PrimStatus ownBlur_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize roiSize,
                      PrimSize maskSize, PrimPoint anchor) {
    uint32_t multiplier, shift;
    if (maskSize.width + maskSize.height == 3) {
        // 1x2 and 2x1: the truncated half.
        multiplier = 4096;
        shift = 13;
    } else {
        const int32_t area =
            static_cast<int32_t>(static_cast<uint32_t>(maskSize.width) * static_cast<uint32_t>(maskSize.height));
        get_shift_int(1.0f / static_cast<float>(area), &multiplier, &shift);
    }

    const uint32_t bytes = ((static_cast<uint32_t>(maskSize.width) + roiSize.width + 2) * 16 + 15) & ~15u;
    __m128i* columns = reinterpret_cast<__m128i*>(PRIM(primsMalloc_8u)(static_cast<int32_t>(bytes)));
    if (columns == nullptr) return PrimMemAllocErr;
    IntegerSums sums(columns, maskSize.width + roiSize.width - 1, multiplier, shift);
    RunningSumRows(sums, BoxWindowOrigin(src, srcStep, anchor), srcStep, dst, dstStep, roiSize, maskSize);
    PRIM(primsFree)(columns);
    return PrimOk;
}

}  // namespace PRIM_BUILD
