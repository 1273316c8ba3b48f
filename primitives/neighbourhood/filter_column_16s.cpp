// Column functions of the 8u -> 16s pipeline: ring rows into destination
// rows. window[i] is the ring row i rows below the top of the first output
// row's neighbourhood; output row y reads window[y .. y + kernel height - 1].
//
// The sums are 16-bit and wrap, but for the 3x3 derivative, which saturates;
// with 8-bit sources no sum comes near the limits.
#include "primitives/neighbourhood/filter_pipeline_8u16s.h"

namespace PRIM_BUILD {
namespace {

inline int16_t Wrap16(int32_t value) { return static_cast<int16_t>(static_cast<uint16_t>(value)); }

// R(y+1) - R(y-1), saturated
struct Dx3 {
    static int16_t One(int16_t* const* w, int32_t x) {
        int32_t d = w[2][x] - w[0][x];
        return static_cast<int16_t>(d < -32768 ? -32768 : (d > 32767 ? 32767 : d));
    }
    static __m128i Eight(int16_t* const* w, int32_t x) {
        return _mm_subs_epi16(LoadWords8(w[2] + x), LoadWords8(w[0] + x));
    }
};

// 2 (R(y+1) - R(y-1)) + R(y+2) - R(y-2)
struct Dx5 {
    static int16_t One(int16_t* const* w, int32_t x) { return Wrap16(2 * (w[3][x] - w[1][x]) + w[4][x] - w[0][x]); }
    static __m128i Eight(int16_t* const* w, int32_t x) {
        __m128i inner = _mm_sub_epi16(LoadWords8(w[3] + x), LoadWords8(w[1] + x));
        __m128i outer = _mm_sub_epi16(LoadWords8(w[4] + x), LoadWords8(w[0] + x));
        return _mm_add_epi16(_mm_slli_epi16(inner, 1), outer);
    }
};

// -(R(y-1) + 2 R(y) + R(y+1))
struct SobelNeg3 {
    static int16_t One(int16_t* const* w, int32_t x) { return Wrap16(-(w[0][x] + 2 * w[1][x] + w[2][x])); }
    static __m128i Eight(int16_t* const* w, int32_t x) {
        __m128i sum = _mm_add_epi16(_mm_add_epi16(LoadWords8(w[0] + x), LoadWords8(w[2] + x)),
                                    _mm_slli_epi16(LoadWords8(w[1] + x), 1));
        return _mm_sub_epi16(_mm_setzero_si128(), sum);
    }
};

// -(R(y-2) + 4 R(y-1) + 6 R(y) + 4 R(y+1) + R(y+2))
struct SobelNeg5 {
    static int16_t One(int16_t* const* w, int32_t x) {
        return Wrap16(-(w[0][x] + 4 * w[1][x] + 6 * w[2][x] + 4 * w[3][x] + w[4][x]));
    }
    // The sum over rows a..e, negated.
    static __m128i Sum(__m128i a, __m128i b, __m128i c, __m128i d, __m128i e) {
        // a + e + 4 (b + c + d) + 2 c
        __m128i sum = _mm_add_epi16(_mm_add_epi16(a, e), _mm_slli_epi16(_mm_add_epi16(_mm_add_epi16(b, c), d), 2));
        return _mm_sub_epi16(_mm_setzero_si128(), _mm_add_epi16(sum, _mm_slli_epi16(c, 1)));
    }
    static __m128i Eight(int16_t* const* w, int32_t x) {
        return Sum(LoadWords8(w[0] + x), LoadWords8(w[1] + x), LoadWords8(w[2] + x), LoadWords8(w[3] + x),
                   LoadWords8(w[4] + x));
    }
    // Two output rows from the six ring rows they span, each loaded once.
    static void EightPair(int16_t* const* w, int32_t x, __m128i& first, __m128i& second) {
        __m128i r0 = LoadWords8(w[0] + x), r1 = LoadWords8(w[1] + x), r2 = LoadWords8(w[2] + x);
        __m128i r3 = LoadWords8(w[3] + x), r4 = LoadWords8(w[4] + x), r5 = LoadWords8(w[5] + x);
        first = Sum(r0, r1, r2, r3, r4);
        second = Sum(r1, r2, r3, r4, r5);
    }
};

// Groups on the eight-value grid of a row that starts on 16 bytes can stream;
// the overlapping last group of a row is unaligned and goes plainly.
inline void StoreGroup(int16_t* at, __m128i value, bool streaming, bool onGrid) {
    if (streaming && onGrid)
        _mm_stream_si128(reinterpret_cast<__m128i*>(at), value);
    else
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), value);
}

template <class Kernel>
void WriteRow(int16_t* const* window, int16_t* dst, int32_t width, bool streaming) {
    ForEachGroupOf8(
        width, [&](int32_t x, bool onGrid) { StoreGroup(dst + x, Kernel::Eight(window, x), streaming, onGrid); },
        [&](int32_t x) { dst[x] = Kernel::One(window, x); });
}

template <class Kernel>
void ColumnPass(int16_t* const* window, int16_t* dst, int32_t dstStepElements, PrimSize size, bool streaming) {
    for (int32_t y = 0; y < size.height; ++y, dst += dstStepElements)
        WriteRow<Kernel>(window + y, dst, size.width, streaming);
    if (streaming) _mm_sfence();
}

constexpr ColumnPipelineFunction ownFilterColumnPipeline_16s_C1R_3x3_kerDx_W7cn = ColumnPass<Dx3>;
constexpr ColumnPipelineFunction ownFilterColumnPipeline_16s_C1R_5x5_kerDx_W7cn = ColumnPass<Dx5>;
constexpr ColumnPipelineFunction ownFilterColumnPipeline_16s_C1R_3x3_kerSobelNeg_W7cn = ColumnPass<SobelNeg3>;

// Output rows go in pairs that share their loads; an odd last row alone.
void ownFilterColumnPipeline_16s_C1R_5x5_kerSobelNeg_W7cn(int16_t* const* window, int16_t* dst, int32_t dstStepElements,
                                                          PrimSize size, bool streaming) {
    int32_t y = 0;
    for (; y + 2 <= size.height; y += 2, dst += 2 * dstStepElements) {
        int16_t* const* w = window + y;
        int16_t* below = dst + dstStepElements;
        ForEachGroupOf8(
            size.width,
            [&](int32_t x, bool onGrid) {
                __m128i first, second;
                SobelNeg5::EightPair(w, x, first, second);
                StoreGroup(dst + x, first, streaming, onGrid);
                StoreGroup(below + x, second, streaming, onGrid);
            },
            [&](int32_t x) {
                dst[x] = SobelNeg5::One(w, x);
                below[x] = SobelNeg5::One(w + 1, x);
            });
    }
    if (y < size.height) WriteRow<SobelNeg5>(window + y, dst, size.width, streaming);
    if (streaming) _mm_sfence();
}

}  // namespace

const ColumnPipelineFunction owntabColumn_8u16s[kColumnSlots] = {
    nullptr,  // 3x3 kerScharr
    ownFilterColumnPipeline_16s_C1R_3x3_kerDx_W7cn,
    nullptr,  // 3x3 kerSobel
    nullptr,  // 5x5 kerSobel
    ownFilterColumnPipeline_16s_C1R_5x5_kerDx_W7cn,
    nullptr,  // 3x3 kerDx2
    nullptr,  // 5x5 kerDx2
    nullptr,  // 3x3 kerLaplacian
    nullptr,  // 5x5 kerLaplacian
    nullptr,  // 3x3 kerSobelNeg
    nullptr,  // 5x5 kerSobelNeg
    ownFilterColumnPipeline_16s_C1R_3x3_kerSobelNeg_W7cn,
    ownFilterColumnPipeline_16s_C1R_5x5_kerSobelNeg_W7cn,
};

}  // namespace PRIM_BUILD
