// primiColorTwist32f_8u_AC4IR: a 3x4 matrix of floats applied in place to the
// three colour bytes of every pixel, rounded to nearest even and saturated.
//
// A pixel lives in one __m128 (s0, s1, s2, s3) and the matrix is kept by
// columns, so that one multiply weighs an input channel into all three
// outputs at once. Lane 3 of every column is 0, which makes the fourth lane
// of the result 0; the fourth byte is taken from the image instead.
#include <emmintrin.h>

#include <cstring>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {
namespace {

// Column k holds twist[0][k], twist[1][k], twist[2][k] and 0.
struct TwistColumns {
    __m128 weight0, weight1, weight2, offset;
};

constexpr uint32_t kRoundingBits = 0x6000;
constexpr uint32_t kRoundToNearestEven = 0;
const uint32_t kAlphaByte = 0xFF000000u;

inline __m128 column(const float twist[3][4], int k) { return _mm_setr_ps(twist[0][k], twist[1][k], twist[2][k], 0.0f); }

// One pixel word's bytes as four floats.
inline __m128 pixelToFloats(__m128i word) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(word, zero), zero));
}

// The three outputs of one pixel as int32 lanes (lane 3 is 0). The sums run
// in the order a = offset + s0*w0, b = s2*w2 + s1*w1, a + b, since each is
// rounded to single precision. The minimum comes first and returns 255 when
// the sum is not a number; the conversion uses the current rounding mode.
inline __m128i twistPixel(__m128 s, const TwistColumns& t) {
    __m128 s0 = _mm_shuffle_ps(s, s, 0x00);
    __m128 s1 = _mm_shuffle_ps(s, s, 0x55);
    __m128 s2 = _mm_shuffle_ps(s, s, 0xAA);
    __m128 a = _mm_add_ps(t.offset, _mm_mul_ps(s0, t.weight0));
    __m128 b = _mm_add_ps(_mm_mul_ps(s2, t.weight2), _mm_mul_ps(s1, t.weight1));
    __m128 v = _mm_min_ps(_mm_add_ps(a, b), _mm_set1_ps(255.0f));
    v = _mm_max_ps(v, _mm_setzero_ps());
    return _mm_cvtps_epi32(v);
}

// Four pixels at once: all of them are read before any byte is written.
inline void twistFourPixels(uint8_t* pixels, const TwistColumns& t) {
    const __m128i zero = _mm_setzero_si128();
    __m128i old = _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels));
    __m128i low = _mm_unpacklo_epi8(old, zero);
    __m128i high = _mm_unpackhi_epi8(old, zero);
    __m128i p0 = twistPixel(_mm_cvtepi32_ps(_mm_unpacklo_epi16(low, zero)), t);
    __m128i p1 = twistPixel(_mm_cvtepi32_ps(_mm_unpackhi_epi16(low, zero)), t);
    __m128i p2 = twistPixel(_mm_cvtepi32_ps(_mm_unpacklo_epi16(high, zero)), t);
    __m128i p3 = twistPixel(_mm_cvtepi32_ps(_mm_unpackhi_epi16(high, zero)), t);
    __m128i bytes = _mm_packus_epi16(_mm_packs_epi32(p0, p1), _mm_packs_epi32(p2, p3));
    __m128i alpha = _mm_and_si128(old, _mm_set1_epi32(static_cast<int32_t>(kAlphaByte)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), _mm_or_si128(bytes, alpha));
}

inline void twistOnePixel(uint8_t* pixel, const TwistColumns& t) {
    uint32_t old;
    memcpy(&old, pixel, 4);
    __m128i out = twistPixel(pixelToFloats(_mm_cvtsi32_si128(static_cast<int32_t>(old))), t);
    out = _mm_packus_epi16(_mm_packs_epi32(out, out), out);
    uint32_t word = static_cast<uint32_t>(_mm_cvtsi128_si32(out)) | (old & kAlphaByte);
    memcpy(pixel, &word, 4);
}

void owniTwist32f_8u_AC4_M7(uint8_t* image, int32_t step, PrimSize size, const TwistColumns& t) {
    for (int32_t y = 0; y < size.height; ++y) {
        uint8_t* row = image + static_cast<ptrdiff_t>(y) * step;
        int32_t x = 0;
        for (; x + 4 <= size.width; x += 4) twistFourPixels(row + 4 * x, t);
        for (; x < size.width; ++x) twistOnePixel(row + 4 * x, t);
    }
}

}  // namespace
}  // namespace PRIM_BUILD

extern "C" PrimStatus PRIM(primiColorTwist32f_8u_AC4IR)(uint8_t* image, int32_t step, PrimSize size,
                                                        const float twist[3][4]) {
    if (image == nullptr || twist == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    if (step < 1) return PrimStepErr;

    const PRIM_BUILD::TwistColumns columns = {PRIM_BUILD::column(twist, 0), PRIM_BUILD::column(twist, 1),
                                              PRIM_BUILD::column(twist, 2), PRIM_BUILD::column(twist, 3)};
    uint32_t callerWord = prim_set_rc_ssx(PRIM_BUILD::kRoundToNearestEven);
    PRIM_BUILD::owniTwist32f_8u_AC4_M7(image, step, size, columns);
    // The caller's word comes back only when it asked for another rounding;
    // otherwise the flags raised here stay set.
    if (callerWord & PRIM_BUILD::kRoundingBits) prim_set_cw_ssx(callerWord);
    return PrimOk;
}
