// primiSum_32f_AC4R and primiMean_32f_AC4R: per-channel sum and mean of the
// three colour channels of a float image with four elements a pixel.
//
// With hint 2 every element goes into a double as it comes. Otherwise each
// row is summed in single precision, even and odd pixels in two separate
// accumulators that meet at the row's end, and the row totals go into
// doubles. The fourth element is never read into a result.
#include <emmintrin.h>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kAccurateHint = 2;

inline const float* Row(const float* image, int32_t step, int32_t y) {
    return reinterpret_cast<const float*>(reinterpret_cast<const uint8_t*>(image) + static_cast<ptrdiff_t>(y) * step);
}

void SumInDoubles(const float* image, int32_t step, PrimSize size, double sum[3]) {
    double total[3] = {0.0, 0.0, 0.0};
    for (int32_t y = 0; y < size.height; ++y) {
        const float* row = Row(image, step, y);
        for (int32_t x = 0; x < size.width; ++x)
            for (int c = 0; c < 3; ++c) total[c] += static_cast<double>(row[4 * x + c]);
    }
    for (int c = 0; c < 3; ++c) sum[c] = total[c];
}

void SumByRows(const float* image, int32_t step, PrimSize size, double sum[3]) {
    double total[3] = {0.0, 0.0, 0.0};
    for (int32_t y = 0; y < size.height; ++y) {
        const float* row = Row(image, step, y);
        __m128 even = _mm_setzero_ps();
        __m128 odd = _mm_setzero_ps();
        int32_t x = 0;
        for (; x + 2 <= size.width; x += 2) {
            even = _mm_add_ps(even, _mm_loadu_ps(row + 4 * x));
            odd = _mm_add_ps(odd, _mm_loadu_ps(row + 4 * x + 4));
        }
        if (x < size.width) even = _mm_add_ps(even, _mm_loadu_ps(row + 4 * x));
        float rowTotal[4];
        _mm_storeu_ps(rowTotal, _mm_add_ps(even, odd));
        for (int c = 0; c < 3; ++c) total[c] += static_cast<double>(rowTotal[c]);
    }
    for (int c = 0; c < 3; ++c) sum[c] = total[c];
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiSum_32f_AC4R)(const float* image, int32_t step, PrimSize size, double sum[3],
                                              int32_t hint) {
    if (image == nullptr || sum == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (hint == PRIM_BUILD::kAccurateHint)
        PRIM_BUILD::SumInDoubles(image, step, size, sum);
    else
        PRIM_BUILD::SumByRows(image, step, size, sum);
    return PrimOk;
}

extern "C" PrimStatus PRIM(primiMean_32f_AC4R)(const float* image, int32_t step, PrimSize size, double mean[3],
                                               int32_t hint) {
    if (mean == nullptr) return PrimNullPtrErr;
    const PrimStatus status = PRIM(primiSum_32f_AC4R)(image, step, size, mean, hint);
    if (status != PrimOk) return status;
    const double scale = 1.0 / static_cast<double>(int64_t{size.width} * size.height);
    for (int c = 0; c < 3; ++c) mean[c] *= scale;
    return PrimOk;
}
