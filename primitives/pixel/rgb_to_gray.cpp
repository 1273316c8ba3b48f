// primiRGBToGray_8u_AC4C1R: one gray byte per pixel from weighted colour
// bytes, with 16-bit fixed-point weights that sum to 32769 by default.
//
// Pixels of a row go in blocks of eight, then one by one, and the two paths
// round differently: a block truncates each weighted byte to 16 bits before a
// saturating sum, a single pixel sums exactly and rounds once. Which result a
// pixel gets thus depends on its position in the row, and that is kept.
#include <emmintrin.h>

#include <cstring>

#include "primitives/frame/build.h"

namespace PRIM_BUILD {
namespace {

// 0.299, 0.587, 0.114 scaled by 32768.
constexpr uint16_t kDefaultWeights[3] = {9798, 19235, 3736};

// Four pixels, each in a 32-bit slot as bytes x0 x1 x2 (and a fourth byte),
// to four gray values in 32-bit lanes. With a byte in the high half of a
// 16-bit lane, the high half of the product with c is floor(x * c / 256):
// the even lanes weigh x0 and x1, the odd lanes x2, and the odd lane's
// product is then folded onto the even one.
inline __m128i blockGrayFour(__m128i pixels, __m128i firstAndThirdWeights, __m128i secondWeight) {
    __m128i firstAndThird = _mm_slli_epi16(pixels, 8);
    __m128i second = _mm_and_si128(pixels, _mm_set1_epi32(0xFF00));
    __m128i products = _mm_adds_epu16(_mm_mulhi_epu16(firstAndThird, firstAndThirdWeights),
                                      _mm_mulhi_epu16(second, secondWeight));
    __m128i sum = _mm_adds_epu16(products, _mm_srli_epi32(products, 16));
    sum = _mm_adds_epu16(sum, _mm_set1_epi32(64));
    return _mm_and_si128(_mm_srli_epi16(sum, 7), _mm_set1_epi32(0xFFFF));
}

// Four pixels of elementCount bytes each, moved into 32-bit slots.
inline __m128i loadFour(const uint8_t* source, int32_t elementCount) {
    if (elementCount == 4) return _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    uint8_t slots[16] = {};
    for (int i = 0; i < 4; ++i) memcpy(slots + 4 * i, source + 3 * i, 3);
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(slots));
}

inline uint8_t scalarGray(const uint8_t* pixel, uint16_t c0, uint16_t c1, uint16_t c2) {
    uint32_t sum = pixel[0] * uint32_t(c0) + pixel[1] * uint32_t(c1) + pixel[2] * uint32_t(c2) + 16384u;
    sum >>= 15;
    return static_cast<uint8_t>(sum > 255u ? 255u : sum);
}

// Gray values 0..511 of eight or four pixels, limited to 255 by the packs.
inline __m128i packGray(__m128i first, __m128i second) {
    __m128i words = _mm_packs_epi32(first, second);
    return _mm_packus_epi16(words, words);
}

// One row. In the three-byte layout a block of four follows the blocks of
// eight when width has bit 2 set; the four-byte layout goes straight to
// single pixels.
void innerRGBToGray_8u_C3C1R(const uint8_t* source, uint8_t* destination, int32_t width, int32_t elementCount,
                             uint16_t c0, uint16_t c1, uint16_t c2) {
    const __m128i firstAndThird = _mm_set1_epi32(static_cast<int32_t>(c0 | uint32_t(c2) << 16));
    const __m128i second = _mm_set1_epi32(c1);
    int32_t x = 0;
    for (; x + 8 <= width; x += 8) {
        __m128i low = blockGrayFour(loadFour(source + x * elementCount, elementCount), firstAndThird, second);
        __m128i high = blockGrayFour(loadFour(source + (x + 4) * elementCount, elementCount), firstAndThird, second);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(destination + x), packGray(low, high));
    }
    if (elementCount == 3 && (width & 4)) {
        __m128i four = blockGrayFour(loadFour(source + x * elementCount, elementCount), firstAndThird, second);
        int32_t bytes = _mm_cvtsi128_si32(packGray(four, four));
        memcpy(destination + x, &bytes, 4);
        x += 4;
    }
    for (; x < width; ++x) destination[x] = scalarGray(source + x * elementCount, c0, c1, c2);
}

}  // namespace
}  // namespace PRIM_BUILD

// Given weights become fixed point as weight * 32768 + 0.5, truncated; they
// are meant to lie within 0..2.
extern "C" void PRIM(myRGBToGray_8u_C3C1R)(const uint8_t* source, int32_t sourceStep, uint8_t* destination,
                                           int32_t destinationStep, PrimSize size, const float* weights,
                                           int32_t elementCount) {
    uint16_t c[3];
    for (int i = 0; i < 3; ++i)
        c[i] = weights == nullptr ? PRIM_BUILD::kDefaultWeights[i]
                                  : static_cast<uint16_t>(static_cast<int32_t>(double(weights[i]) * 32768.0 + 0.5));
    for (int32_t y = 0; y < size.height; ++y)
        PRIM_BUILD::innerRGBToGray_8u_C3C1R(source + static_cast<ptrdiff_t>(y) * sourceStep,
                                            destination + static_cast<ptrdiff_t>(y) * destinationStep, size.width,
                                            elementCount, c[0], c[1], c[2]);
}

extern "C" PrimStatus PRIM(primiRGBToGray_8u_AC4C1R)(const uint8_t* source, int32_t sourceStep, uint8_t* destination,
                                                     int32_t destinationStep, PrimSize size) {
    if (source == nullptr || destination == nullptr) return PrimNullPtrErr;
    if (size.width < 1 || size.height < 1) return PrimSizeErr;
    PRIM(myRGBToGray_8u_C3C1R)(source, sourceStep, destination, destinationStep, size, nullptr, 4);
    return PrimOk;
}
