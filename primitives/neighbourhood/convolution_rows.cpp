// The fast path of primiFilter_8u_AC4R: each kernel row adds one source row
// into a line of 32-bit accumulators, four lanes a pixel, and the line is
// then divided into the destination row.
//
// Coefficients are packed once per call as 16-bit pairs, so that one
// multiply-add forms two taps of a lane: the pair for source offsets m and
// m + 1 of a window holds (k[W-1-m], k[W-2-m]), the kernel reversed so that
// the source runs forward. An odd width ends in a pair with a zero second.
#include "primitives/neighbourhood/colour_stores.h"
#include "primitives/neighbourhood/convolution.h"

namespace PRIM_BUILD {
namespace {

constexpr int32_t kLowestCoefficient = -32767;
constexpr int32_t kHighestCoefficient = 32766;

int32_t PairsPerRow(int32_t kernelWidth) { return (kernelWidth + 1) / 2; }

// Adds taps m and m + 1 of four neighbouring pixels, from the pixel at
// `at` on, into their sums: the two source pixels of each output pixel are
// interleaved lane by lane and widened, then multiplied by the pair.
inline void AddTapPair(const uint8_t* at, __m128i pair, __m128i sums[4]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i first = LoadUnaligned(at);
    const __m128i second = LoadUnaligned(at + 4);
    const __m128i pixels01 = _mm_unpacklo_epi8(first, second);
    const __m128i pixels23 = _mm_unpackhi_epi8(first, second);
    sums[0] = _mm_add_epi32(sums[0], _mm_madd_epi16(_mm_unpacklo_epi8(pixels01, zero), pair));
    sums[1] = _mm_add_epi32(sums[1], _mm_madd_epi16(_mm_unpackhi_epi8(pixels01, zero), pair));
    sums[2] = _mm_add_epi32(sums[2], _mm_madd_epi16(_mm_unpacklo_epi8(pixels23, zero), pair));
    sums[3] = _mm_add_epi32(sums[3], _mm_madd_epi16(_mm_unpackhi_epi8(pixels23, zero), pair));
}

// The last tap of an odd width: its pixels are paired with zeros, so that
// nothing past the window is read.
inline void AddLastTap(const uint8_t* at, __m128i pair, __m128i sums[4]) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i pixels = LoadUnaligned(at);
    const __m128i low = _mm_unpacklo_epi8(pixels, zero);
    const __m128i high = _mm_unpackhi_epi8(pixels, zero);
    sums[0] = _mm_add_epi32(sums[0], _mm_madd_epi16(_mm_unpacklo_epi16(low, zero), pair));
    sums[1] = _mm_add_epi32(sums[1], _mm_madd_epi16(_mm_unpackhi_epi16(low, zero), pair));
    sums[2] = _mm_add_epi32(sums[2], _mm_madd_epi16(_mm_unpacklo_epi16(high, zero), pair));
    sums[3] = _mm_add_epi32(sums[3], _mm_madd_epi16(_mm_unpackhi_epi16(high, zero), pair));
}

// One kernel row's sums for the four pixels whose windows start at `row`.
inline void RowSumsOfFour(const uint8_t* row, const __m128i* pairs, int32_t kernelWidth, __m128i sums[4]) {
    sums[0] = sums[1] = sums[2] = sums[3] = _mm_setzero_si128();
    int32_t m = 0;
    for (; m + 2 <= kernelWidth; m += 2) AddTapPair(row + 4 * m, pairs[m / 2], sums);
    if (m < kernelWidth) AddLastTap(row + 4 * m, pairs[m / 2], sums);
}

// Stores the sums of the pixels from `first` on (index 0 stores, any other
// adds).
inline void Accumulate(int32_t* line, const __m128i sums[4], int32_t first, int32_t rowIndex) {
    for (int32_t k = first; k < 4; ++k) {
        __m128i* at = reinterpret_cast<__m128i*>(line + 4 * k);
        _mm_storeu_si128(at, rowIndex == 0 ? sums[k] : _mm_add_epi32(_mm_loadu_si128(at), sums[k]));
    }
}

// One kernel row into the accumulator line. The last one to three pixels
// are taken from the group of four that ends the line, so that no window
// reaches past the row.
void ownAFilterRow_8u_AC4R(const uint8_t* src, int32_t* line, int32_t width, const __m128i* pairs,
                           int32_t kernelWidth, int32_t rowIndex) {
    __m128i sums[4];
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        RowSumsOfFour(src + 4 * x, pairs, kernelWidth, sums);
        Accumulate(line + 4 * x, sums, 0, rowIndex);
    }
    if (x < width) {
        const int32_t last = width - 4;
        RowSumsOfFour(src + 4 * last, pairs, kernelWidth, sums);
        Accumulate(line + 4 * last, sums, x - last, rowIndex);
    }
}

// Mode kShift: the quotient of v by 2^s rounded to nearest, ties to even,
// formed from q = v >> s and the remainder so that no sum can overflow.
inline __m128i ShiftRounded(__m128i v, int32_t shift) {
    const __m128i count = _mm_cvtsi32_si128(shift);
    const __m128i quotient = _mm_sra_epi32(v, count);
    const __m128i remainder = _mm_and_si128(v, _mm_set1_epi32(static_cast<int32_t>((1u << shift) - 1)));
    const __m128i lifted = _mm_add_epi32(_mm_add_epi32(remainder, _mm_set1_epi32((1 << (shift - 1)) - 1)),
                                         _mm_and_si128(quotient, _mm_set1_epi32(1)));
    return _mm_add_epi32(quotient, _mm_srl_epi32(lifted, count));
}

// Modes kWhole and kScale: a float multiply and a conversion in the current
// rounding mode. The product is held to 0..255 first, which the result
// would be clamped to anyway, so that no conversion overflows.
inline __m128i ScaleRounded(__m128i v, __m128 scale) {
    const __m128 product = _mm_mul_ps(_mm_cvtepi32_ps(v), scale);
    return _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(product, _mm_setzero_ps()), _mm_set1_ps(255.0f)));
}

// The accumulator line, count elements, divided into the destination row;
// its fourth bytes stay.
void ownAConvert32s_8u_AC4R(const int32_t* line, int32_t count, uint8_t* dst, const float* scale, int32_t shift) {
    const __m128i* sums = reinterpret_cast<const __m128i*>(line);
    if (shift > 0) {
        StorePixelsFromLanes(dst, count / 4, [&] { return ShiftRounded(_mm_loadu_si128(sums++), shift); });
    } else {
        const __m128 scaleLanes = _mm_set1_ps(*scale);
        StorePixelsFromLanes(dst, count / 4, [&] { return ScaleRounded(_mm_loadu_si128(sums++), scaleLanes); });
    }
}

}  // namespace

bool PackCoefficients(const Kernel& kernel, int32_t* block) {
    const int32_t pairs = PairsPerRow(kernel.width);
    for (int32_t r = 0; r < kernel.height; ++r) {
        const int32_t* row = kernel.values + static_cast<ptrdiff_t>(kernel.height - 1 - r) * kernel.width;
        for (int32_t p = 0; p < pairs; ++p) {
            const int32_t n = kernel.width - 1 - 2 * p;
            const int32_t first = row[n];
            const int32_t second = n > 0 ? row[n - 1] : 0;
            if (first < kLowestCoefficient || first > kHighestCoefficient || second < kLowestCoefficient ||
                second > kHighestCoefficient)
                return false;
            const int32_t word = static_cast<int32_t>(static_cast<uint16_t>(first) |
                                                      static_cast<uint32_t>(static_cast<uint16_t>(second)) << 16);
            int32_t* lanes = block + 4 * (static_cast<ptrdiff_t>(r) * pairs + p);
            lanes[0] = lanes[1] = lanes[2] = lanes[3] = word;
        }
    }
    return true;
}

// Row by row: the kernel rows from the window's top each add their source
// row into the line, which is then divided into the destination.
void FilterByRows(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size,
                  const Kernel& kernel, const Division& division, int32_t* block) {
    const __m128i* pairs = reinterpret_cast<const __m128i*>(block);
    int32_t* line = block + static_cast<ptrdiff_t>(kernel.width) * 4 * kernel.height;
    const int32_t pairsPerRow = PairsPerRow(kernel.width);
    const int32_t shift = division.mode == Division::kShift ? division.shift : 0;
    const uint8_t* windowTop = src + static_cast<ptrdiff_t>(kernel.anchorY - (kernel.height - 1)) * srcStep +
                               4 * static_cast<ptrdiff_t>(kernel.anchorX - (kernel.width - 1));
    for (int32_t y = 0; y < size.height; ++y) {
        for (int32_t r = 0; r < kernel.height; ++r)
            ownAFilterRow_8u_AC4R(windowTop + static_cast<ptrdiff_t>(y + r) * srcStep, line, size.width,
                                  pairs + static_cast<ptrdiff_t>(r) * pairsPerRow, kernel.width, r);
        ownAConvert32s_8u_AC4R(line, size.width * 4, dst + static_cast<ptrdiff_t>(y) * dstStep, &division.scale,
                               shift);
    }
}

}  // namespace PRIM_BUILD
