// Row functions of the 8u -> 16s pipeline: one source row into one ring row,
// with the columns outside the row made by the border rule.
//
// The middle of a row reads the source directly, eight outputs at a time.
// The r outputs at each end read a short extended line in the row scratch:
// the pixels up to 2r inside the row and r outside it, made by the border
// rule or read from memory when that side is real memory. A row narrower
// than 2r goes through the extended line whole.
#include "primitives/neighbourhood/filter_pipeline_8u16s.h"

namespace PRIM_BUILD {
namespace {

// s(x-2) + 4 s(x-1) + 6 s(x) + 4 s(x+1) + s(x+2)
struct Sobel5 {
    static constexpr int32_t kRadius = 2;
    static int16_t One(const uint8_t* s) {
        return static_cast<int16_t>(s[-2] + 4 * s[-1] + 6 * s[0] + 4 * s[1] + s[2]);
    }
    static __m128i Eight(const uint8_t* s) {
        __m128i outer = _mm_add_epi16(LoadBytes8(s - 2), LoadBytes8(s + 2));
        __m128i inner = _mm_add_epi16(LoadBytes8(s - 1), LoadBytes8(s + 1));
        __m128i centre = LoadBytes8(s);
        // outer + 4 (inner + centre) + 2 centre
        return _mm_add_epi16(_mm_add_epi16(outer, _mm_slli_epi16(_mm_add_epi16(inner, centre), 2)),
                             _mm_slli_epi16(centre, 1));
    }
};

// s(x-1) + 2 s(x) + s(x+1)
struct Sobel3 {
    static constexpr int32_t kRadius = 1;
    static int16_t One(const uint8_t* s) { return static_cast<int16_t>(s[-1] + 2 * s[0] + s[1]); }
    static __m128i Eight(const uint8_t* s) {
        __m128i outer = _mm_add_epi16(LoadBytes8(s - 1), LoadBytes8(s + 1));
        return _mm_add_epi16(outer, _mm_slli_epi16(LoadBytes8(s), 1));
    }
};

// s(x-2) + 2 s(x-1) - 2 s(x+1) - s(x+2): left minus right.
struct DxNeg5 {
    static constexpr int32_t kRadius = 2;
    static int16_t One(const uint8_t* s) { return static_cast<int16_t>(s[-2] + 2 * s[-1] - 2 * s[1] - s[2]); }
    static __m128i Eight(const uint8_t* s) {
        __m128i outer = _mm_sub_epi16(LoadBytes8(s - 2), LoadBytes8(s + 2));
        __m128i inner = _mm_sub_epi16(LoadBytes8(s - 1), LoadBytes8(s + 1));
        return _mm_add_epi16(outer, _mm_slli_epi16(inner, 1));
    }
};

// s(x-1) - s(x+1)
struct DxNeg3 {
    static constexpr int32_t kRadius = 1;
    static int16_t One(const uint8_t* s) { return static_cast<int16_t>(s[-1] - s[1]); }
    static __m128i Eight(const uint8_t* s) { return _mm_sub_epi16(LoadBytes8(s - 1), LoadBytes8(s + 1)); }
};

// Pixels from .. from + count - 1 of a row into line. Positions outside
// the row are real memory on a side whose flag says so, else the border
// value or the pixel that the border rule names.
void ExtendLine(const uint8_t* src, int32_t width, int32_t from, int32_t count, int32_t border, uint8_t value,
                uint8_t* line) {
    const int32_t kind = border & 15;
    for (int32_t i = 0; i < count; ++i) {
        int32_t x = from + i;
        bool inMemory = (x >= 0 && x < width) || (x < 0 && (border & BorderInMemLeft)) ||
                        (x >= width && (border & BorderInMemRight));
        if (inMemory)
            line[i] = src[x];
        else
            line[i] = kind == BorderConst ? value : src[BorderIndex(x, width, kind)];
    }
}

// count outputs whose centres are centre[0 .. count - 1].
template <class Kernel>
void FilterRun(const uint8_t* centre, int16_t* out, int32_t count) {
    ForEachGroupOf8(
        count,
        [&](int32_t x, bool) { _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x), Kernel::Eight(centre + x)); },
        [&](int32_t x) { out[x] = Kernel::One(centre + x); });
}

template <class Kernel>
void RowPass(const uint8_t* src, int16_t* const* rows, uint8_t* line, int32_t srcStep, PrimSize size, int32_t border,
             uint8_t value) {
    constexpr int32_t r = Kernel::kRadius;
    const int32_t width = size.width;
    for (int32_t y = 0; y < size.height; ++y, src += srcStep) {
        int16_t* out = rows[y];
        if (width < 2 * r) {
            ExtendLine(src, width, -r, width + 2 * r, border, value, line);
            FilterRun<Kernel>(line + r, out, width);
            continue;
        }
        ExtendLine(src, width, -r, 3 * r, border, value, line);
        FilterRun<Kernel>(line + r, out, r);
        FilterRun<Kernel>(src + r, out + r, width - 2 * r);
        ExtendLine(src, width, width - 2 * r, 3 * r, border, value, line);
        FilterRun<Kernel>(line + r, out + width - r, r);
    }
}

// The row functions of the table, by their names.
constexpr RowPipelineFunction ownFilterRowBorderPipeline_8u16s_C1R_3x3_kerDxNeg = RowPass<DxNeg3>;
constexpr RowPipelineFunction ownFilterRowBorderPipeline_8u16s_C1R_5x5_kerDxNeg = RowPass<DxNeg5>;
constexpr RowPipelineFunction ownFilterRowBorderPipeline_8u16s_C1R_3x3_kerSobel = RowPass<Sobel3>;
constexpr RowPipelineFunction ownFilterRowBorderPipeline_8u16s_C1R_5x5_kerSobel = RowPass<Sobel5>;

}  // namespace

const RowPipelineFunction owntabRow_8u16s[kRowSlots] = {
    nullptr,  // 3x3 kerDx
    nullptr,  // 3x3 kerScharr
    ownFilterRowBorderPipeline_8u16s_C1R_3x3_kerDxNeg,
    ownFilterRowBorderPipeline_8u16s_C1R_5x5_kerDxNeg,
    nullptr,  // 3x3 kerDx2
    nullptr,  // 5x5 kerDx2
    ownFilterRowBorderPipeline_8u16s_C1R_3x3_kerSobel,
    ownFilterRowBorderPipeline_8u16s_C1R_5x5_kerSobel,
    nullptr,  // 3x3 kerAvr
    nullptr,  // 5x5 kerAvr
    nullptr,  // 3x3 kerLaplacian
};

}  // namespace PRIM_BUILD
