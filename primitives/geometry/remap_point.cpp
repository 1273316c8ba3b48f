// The remap row drivers that sample pixel by pixel: nearest, cubic (fixed
// point, a row at a time), Catmull-Rom and Lanczos-3 (double precision).
#include "primitives/frame/build.h"
#include "primitives/geometry/interpolation.h"
#include "primitives/geometry/remap_rows.h"

namespace PRIM_BUILD {
namespace {

// Each pixel inside the source rectangle from sample(job, x, y, dstPixel).
template <class Sample>
void RemapInside(const RemapJob& job, Sample sample) {
    const RoiBounds roi(job);
    ForEachMapPosition(job, [&](float x, float y, uint8_t* dst) {
        if (!roi.Outside(x, y)) sample(job, x, y, dst);
    });
}


// The pixels at trunc(x + 0.5), trunc(y + 0.5), four at a time.
struct NearestFour {
    explicit NearestFour(const RemapJob& job) : job(job) {}
    __m128i operator()(__m128 x, __m128 y) const {
        const __m128 half = _mm_set1_ps(0.5f);
        alignas(16) int32_t col[4], row[4];
        _mm_store_si128(reinterpret_cast<__m128i*>(col), _mm_cvttps_epi32(_mm_add_ps(x, half)));
        _mm_store_si128(reinterpret_cast<__m128i*>(row), _mm_cvttps_epi32(_mm_add_ps(y, half)));
        auto word = [&](int k) { return static_cast<int32_t>(LoadWord(PixelAt(job, col[k], row[k]))); };
        return _mm_setr_epi32(word(0), word(1), word(2), word(3));
    }
    const RemapJob& job;
};

}  // namespace

void ownpi_Remap_NN_8_AC4(const RemapJob& job) { RemapFourAtATime(job, NearestFour(job)); }

void ownpi_Remap_C_8u_AC4(const RemapJob& job) {
    for (int32_t y = 0; y < job.height; ++y)
        ownpi_dInterVectorClip_C_8u_AC4(job.src, job.srcStep, RowOf(job.dst, job.dstStep, y),
                                        RowOf(job.xMap, job.xMapStep, y), RowOf(job.yMap, job.yMapStep, y),
                                        job.width, job.xMin, job.yMin, job.xMax, job.yMax, job.lastCol, job.lastRow);
}

void ownpi_Remap_CR_8u_AC4(const RemapJob& job) { RemapInside(job, SamplePoint<CatmullRomKernel>); }

void ownpi_Remap_L3_8u_AC4(const RemapJob& job) { RemapInside(job, SamplePoint<Lanczos3Kernel>); }

}  // namespace PRIM_BUILD
