// Saturating byte arithmetic with a scale factor, shared by
// primiAddC_8u_AC4IRSfs, primiSubC_8u_AC4IRSfs and primiSub_8u_AC4RSfs.
//
// A row is width * 4 consecutive bytes. Each colour byte a meets its operand
// byte b (a constant repeating every four bytes, or a second image) in an
// exact value v, which the scale factor k turns into the result:
//   k = 0     min(v, 255)
//   k > 0     v / 2^k, rounded to nearest with ties to even
//   k -1..-7  min(v * 2^-k, 255)
//   k <= -8   255 when v is not 0, else 0
// and from the first k at which every result would be 0 on, the image is
// simply cleared. The fourth byte of each pixel is never written.
#ifndef KV_PRIMITIVES_PIXEL_ARITH_SFS_H
#define KV_PRIMITIVES_PIXEL_ARITH_SFS_H

#include "primitives/frame/build.h"
#include "primitives/pixel/memory_loops.h"

namespace PRIM_BUILD {

// v = a + b, up to 510. 510 / 2^9 still rounds to 1, so 10 is the first k
// that clears.
struct Sum {
    static constexpr int32_t kZeroFrom = 10;
    static int Value(int a, int b) { return a + b; }
    static __m128i Saturated(__m128i a, __m128i b) { return _mm_adds_epu8(a, b); }
    static void Exact(__m128i a, __m128i b, __m128i* low, __m128i* high) {
        const __m128i zero = _mm_setzero_si128();
        *low = _mm_add_epi16(_mm_unpacklo_epi8(a, zero), _mm_unpacklo_epi8(b, zero));
        *high = _mm_add_epi16(_mm_unpackhi_epi8(a, zero), _mm_unpackhi_epi8(b, zero));
    }
};

// v = a - b, and 0 where b is larger: the difference saturates before it is
// scaled. 255 / 2^8 still rounds to 1, so 9 is the first k that clears.
struct Difference {
    static constexpr int32_t kZeroFrom = 9;
    static int Value(int a, int b) { return a > b ? a - b : 0; }
    static __m128i Saturated(__m128i a, __m128i b) { return _mm_subs_epu8(a, b); }
    static void Exact(__m128i a, __m128i b, __m128i* low, __m128i* high) {
        const __m128i v = _mm_subs_epu8(a, b);
        *low = _mm_unpacklo_epi8(v, _mm_setzero_si128());
        *high = _mm_unpackhi_epi8(v, _mm_setzero_si128());
    }
};

// Each scale path gives one byte (Byte) or 16 bytes (Wide) of result, and
// names the row length from which its wide loop pays.

// With a zero operand this gives back the byte itself, so the fourth byte
// of an in-place pixel may go through the arithmetic as it stands.
template <class V>
struct Unscaled {
    static constexpr size_t kWideFrom = 79;
    static constexpr bool kZeroKeepsByte = true;
    uint8_t Byte(int a, int b) const {
        int v = V::Value(a, b);
        return static_cast<uint8_t>(v > 255 ? 255 : v);
    }
    __m128i Wide(__m128i a, __m128i b) const { return V::Saturated(a, b); }
};

// (v + 2^(k-1) - 1 + the lowest bit of v >> k) >> k: a tie goes up only when
// that makes the result even.
template <class V>
struct ScaledDown {
    static constexpr size_t kWideFrom = 31;
    static constexpr bool kZeroKeepsByte = false;
    explicit ScaledDown(int32_t k)
        : shift(k),
          bias((1 << (k - 1)) - 1),
          shiftCount(_mm_cvtsi32_si128(k)),
          biasWide(_mm_set1_epi16(static_cast<int16_t>(bias))) {}
    uint8_t Byte(int a, int b) const {
        int v = V::Value(a, b);
        return static_cast<uint8_t>((v + bias + ((v >> shift) & 1)) >> shift);
    }
    __m128i Wide(__m128i a, __m128i b) const {
        __m128i low, high;
        V::Exact(a, b, &low, &high);
        return _mm_packus_epi16(Round(low), Round(high));
    }
    __m128i Round(__m128i v) const {
        __m128i odd = _mm_and_si128(_mm_srl_epi16(v, shiftCount), _mm_set1_epi16(1));
        return _mm_srl_epi16(_mm_add_epi16(_mm_add_epi16(v, biasWide), odd), shiftCount);
    }
    int shift;
    int bias;
    __m128i shiftCount;
    __m128i biasWide;
};

// Any v above 255 saturates whatever the shift, so the saturated byte is as
// good as v; shifted by up to 7 it still fits a signed 16-bit lane.
template <class V>
struct ScaledUp {
    static constexpr size_t kWideFrom = 31;
    static constexpr bool kZeroKeepsByte = false;
    explicit ScaledUp(int32_t k) : shift(-k), shiftCount(_mm_cvtsi32_si128(-k)) {}
    uint8_t Byte(int a, int b) const {
        int v = V::Value(a, b) << shift;
        return static_cast<uint8_t>(v > 255 ? 255 : v);
    }
    __m128i Wide(__m128i a, __m128i b) const {
        const __m128i v = V::Saturated(a, b);
        const __m128i zero = _mm_setzero_si128();
        return _mm_packus_epi16(_mm_sll_epi16(_mm_unpacklo_epi8(v, zero), shiftCount),
                                _mm_sll_epi16(_mm_unpackhi_epi8(v, zero), shiftCount));
    }
    int shift;
    __m128i shiftCount;
};

template <class V>
struct Bounded {
    static constexpr size_t kWideFrom = 47;
    static constexpr bool kZeroKeepsByte = false;
    uint8_t Byte(int a, int b) const { return V::Value(a, b) != 0 ? 255 : 0; }
    __m128i Wide(__m128i a, __m128i b) const {
        const __m128i isZero = _mm_cmpeq_epi8(V::Saturated(a, b), _mm_setzero_si128());
        return _mm_xor_si128(isZero, _mm_set1_epi8(-1));
    }
};

// The constant: three bytes and a zero, repeating every four.
class ConstantOperand {
public:
    static constexpr bool kFourthByteIsZero = true;
    explicit ConstantOperand(const uint8_t value[3]) : word_(ColourWord(value)) {}
    uint8_t Byte(size_t i) const { return static_cast<uint8_t>(word_ >> ((i & 3) * 8)); }
    void AlignTo(size_t offset) { wide_ = Broadcast(RotateBytes(word_, offset)); }
    __m128i Wide(size_t) const { return wide_; }
    void NextRow() {}

private:
    uint32_t word_;
    __m128i wide_ = _mm_setzero_si128();
};

class ImageOperand {
public:
    static constexpr bool kFourthByteIsZero = false;
    ImageOperand(const uint8_t* row, int32_t step) : row_(row), step_(step) {}
    uint8_t Byte(size_t i) const { return row_[i]; }
    void AlignTo(size_t) {}
    __m128i Wide(size_t i) const { return LoadUnaligned(row_ + i); }
    void NextRow() { row_ += step_; }

private:
    const uint8_t* row_;
    int32_t step_;
};

// The bytes up to the destination's 16-byte boundary one by one, then 16 at a
// time, then the rest one by one. The fourth byte of a pixel is merged back
// from the destination, unless the arithmetic gives it back unchanged: the
// constant's fourth byte is 0, and the constant forms work in place.
template <class Scale, class Operand>
void ArithRow(const uint8_t* a, Operand& b, uint8_t* dst, size_t bytes, const Scale& scale) {
    constexpr bool kAllFour = Scale::kZeroKeepsByte && Operand::kFourthByteIsZero;
    size_t i = 0;
    auto byteByByteUntil = [&](size_t end) {
        for (; i < end; ++i)
            if (kAllFour || (i & 3) != 3) dst[i] = scale.Byte(a[i], b.Byte(i));
    };
    if (bytes >= Scale::kWideFrom) {
        byteByByteUntil((16 - (reinterpret_cast<uintptr_t>(dst) & 15)) & 15);
        b.AlignTo(i);
        const __m128i mask = Broadcast(RotateBytes(kColourMask, i));
        for (; i + 16 <= bytes; i += 16) {
            const __m128i result = scale.Wide(LoadUnaligned(a + i), b.Wide(i));
            if constexpr (kAllFour) {
                PlainStores::Write(dst + i, result, mask);
            } else {
                MergedStores::Write(dst + i, result, mask);
            }
        }
    }
    byteByByteUntil(bytes);
}

template <class Scale, class Operand>
void ArithImage(const uint8_t* a, int32_t aStep, Operand b, uint8_t* dst, int32_t dstStep, PrimSize size,
                const Scale& scale) {
    const size_t rowBytes = 4 * static_cast<size_t>(size.width);
    for (int32_t y = 0; y < size.height; ++y) {
        ArithRow(a + static_cast<ptrdiff_t>(y) * aStep, b, dst + static_cast<ptrdiff_t>(y) * dstStep, rowBytes, scale);
        b.NextRow();
    }
}

// Runs the path of scale factor k on arguments that have passed their tests.
template <class V, class Operand>
PrimStatus ArithSfs(const uint8_t* a, int32_t aStep, Operand b, uint8_t* dst, int32_t dstStep, PrimSize size,
                    int32_t k) {
    if (k >= V::kZeroFrom) {
        const uint8_t zero[3] = {0, 0, 0};
        return PRIM(primiSet_8u_AC4R)(zero, dst, dstStep, size);
    }
    if (k == 0) {
        ArithImage(a, aStep, b, dst, dstStep, size, Unscaled<V>{});
    } else if (k > 0) {
        ArithImage(a, aStep, b, dst, dstStep, size, ScaledDown<V>(k));
    } else if (k > -8) {
        ArithImage(a, aStep, b, dst, dstStep, size, ScaledUp<V>(k));
    } else {
        ArithImage(a, aStep, b, dst, dstStep, size, Bounded<V>{});
    }
    return PrimOk;
}

}  // namespace PRIM_BUILD

#endif
