// The methods without error rows: ordered (Bayer) dither and no dither. Both
// work four pixels at a time, all four bytes of a pixel in one vector of
// floats; the fourth bytes are computed and then dropped in favour of the
// destination's own.
#include <emmintrin.h>

#include <cstring>

#include "primitives/pixel/reduce_bits.h"

namespace PRIM_BUILD {
namespace {

// Sixteen bytes as four vectors of floats, one pixel each.
inline void WidenPixels(__m128i bytes, __m128 pixels[4]) {
    const __m128i zero = _mm_setzero_si128();
    __m128i low = _mm_unpacklo_epi8(bytes, zero);
    __m128i high = _mm_unpackhi_epi8(bytes, zero);
    pixels[0] = _mm_cvtepi32_ps(_mm_unpacklo_epi16(low, zero));
    pixels[1] = _mm_cvtepi32_ps(_mm_unpackhi_epi16(low, zero));
    pixels[2] = _mm_cvtepi32_ps(_mm_unpacklo_epi16(high, zero));
    pixels[3] = _mm_cvtepi32_ps(_mm_unpackhi_epi16(high, zero));
}

// Four vectors of truncated values back to sixteen bytes, held to 0..255.
inline __m128i NarrowPixels(const __m128 values[4]) {
    __m128i low = _mm_packs_epi32(_mm_cvttps_epi32(values[0]), _mm_cvttps_epi32(values[1]));
    __m128i high = _mm_packs_epi32(_mm_cvttps_epi32(values[2]), _mm_cvttps_epi32(values[3]));
    return _mm_packus_epi16(low, high);
}

// The quantising of reduce_bits.h, four lanes at once: a false comparison
// adds +0, which leaves q as it is.
inline __m128 QuantiseLanes(__m128 v, __m128 threshold, const QuantLevels& levels) {
    const __m128 step = _mm_set1_ps(levels.step);
    __m128 q = _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvttps_epi32(_mm_mul_ps(v, _mm_set1_ps(levels.inverse)))), step);
    return _mm_add_ps(q, _mm_and_ps(_mm_cmplt_ps(threshold, _mm_sub_ps(v, q)), step));
}

// Runs a block function over a row, four pixels at a time. The last width % 4
// pixels go through one padded block, told apart by its flag, and only their
// colour bytes are copied out.
template <typename Block>
void ForEachBlock(const uint8_t* src, uint8_t* dst, int32_t width, Block block) {
    const __m128i colour = _mm_set1_epi32(0x00FFFFFF);
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        __m128i* at = reinterpret_cast<__m128i*>(dst + 4 * x);
        __m128i result = block(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 4 * x)), x, false);
        __m128i kept = _mm_andnot_si128(colour, _mm_loadu_si128(at));
        _mm_storeu_si128(at, _mm_or_si128(_mm_and_si128(result, colour), kept));
    }
    if (x == width) return;
    const int32_t rest = width - x;
    alignas(16) uint8_t in[16] = {};
    alignas(16) uint8_t out[16];
    memcpy(in, src + 4 * x, 4 * static_cast<size_t>(rest));
    _mm_store_si128(reinterpret_cast<__m128i*>(out), block(_mm_load_si128(reinterpret_cast<__m128i*>(in)), x, true));
    for (int32_t p = 0; p < rest; ++p) memcpy(dst + 4 * (x + p), out + 4 * p, 3);
}

template <typename Thresholds>
void DitherOrdered(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                   const QuantLevels& levels, Thresholds thresholds) {
    for (int32_t y = 0; y < size.height; ++y) {
        auto block = [&](__m128i bytes, int32_t x, bool tail) {
            __m128 pixels[4];
            __m128 t[4];
            WidenPixels(bytes, pixels);
            thresholds(y, x, tail, t);
            for (int32_t p = 0; p < 4; ++p) pixels[p] = QuantiseLanes(pixels[p], t[p], levels);
            return NarrowPixels(pixels);
        };
        ForEachBlock(src + static_cast<ptrdiff_t>(y) * srcStep, dst + static_cast<ptrdiff_t>(y) * dstStep,
                     size.width, block);
    }
}

}  // namespace

// Pixel x of row y takes the threshold bayer[y % 4][x % 4] * step, the same
// for its three colour bytes. With noise, a random amount in
// -noise/100..noise/100 joins the matrix entry before the scaling; but the
// last width % 4 pixels of a row take the plain entry, unscaled and without
// noise.
PrimStatus ownReduceBits_bayer_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize size, int32_t noise, const QuantLevels& levels) {
    if (noise == 0) {
        float scaled[4][4];
        for (int32_t r = 0; r < 4; ++r)
            for (int32_t k = 0; k < 4; ++k) scaled[r][k] = kBayerThresholds[r][k] * levels.step;
        DitherOrdered(src, srcStep, dst, dstStep, size, levels, [&](int32_t y, int32_t, bool, __m128 t[4]) {
            for (int32_t p = 0; p < 4; ++p) t[p] = _mm_set1_ps(scaled[y & 3][p]);
        });
        return PrimOk;
    }
    NoiseTables tables;
    if (!AllocNoiseTables(tables)) return PrimMemAllocErr;
    const float amount = static_cast<float>(noise) / 100.0f;
    if (!FillNoiseTables(tables, -amount, amount)) {
        FreeNoiseTables(tables);
        return PrimMemAllocErr;
    }
    DitherOrdered(src, srcStep, dst, dstStep, size, levels, [&](int32_t y, int32_t x, bool tail, __m128 t[4]) {
        const float* bayer = kBayerThresholds[y & 3];
        for (int32_t p = 0; p < 4; ++p) {
            const uint32_t at = static_cast<uint32_t>(x + p);
            t[p] = _mm_set1_ps(tail ? bayer[p]
                                    : (tables.At(2u * static_cast<uint32_t>(y), at) + bayer[p]) * levels.step);
        }
    });
    FreeNoiseTables(tables);
    return PrimOk;
}

// No dither: each byte goes to the nearest of the n + 1 levels, worked on the
// 0..1 scale and brought back by 255.
PrimStatus ownNo_8u_PX(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                       int32_t n) {
    const float levels = static_cast<float>(n);
    const __m128 toUnit = _mm_set1_ps(1.0f / 255.0f);
    const __m128 scale = _mm_set1_ps(levels);
    const __m128 unit = _mm_set1_ps(1.0f / levels);
    const __m128 half = _mm_set1_ps(0.5f / levels);
    const __m128 toByte = _mm_set1_ps(255.0f);
    auto block = [&](__m128i bytes, int32_t, bool) {
        __m128 pixels[4];
        WidenPixels(bytes, pixels);
        for (int32_t p = 0; p < 4; ++p) {
            __m128 x = _mm_mul_ps(pixels[p], toUnit);
            __m128 q = _mm_mul_ps(_mm_cvtepi32_ps(_mm_cvttps_epi32(_mm_mul_ps(scale, x))), unit);
            q = _mm_add_ps(q, _mm_and_ps(_mm_cmplt_ps(half, _mm_sub_ps(x, q)), unit));
            pixels[p] = _mm_mul_ps(q, toByte);
        }
        return NarrowPixels(pixels);
    };
    for (int32_t y = 0; y < size.height; ++y)
        ForEachBlock(src + static_cast<ptrdiff_t>(y) * srcStep, dst + static_cast<ptrdiff_t>(y) * dstStep,
                     size.width, block);
    return PrimOk;
}

}  // namespace PRIM_BUILD
