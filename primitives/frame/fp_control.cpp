// The SSE and x87 floating-point control and status words, and tests on the
// bits of a double.
//
// Primitives that convert floats take the SSE rounding mode in hand through
// these, so that their results do not depend on the caller's mode.
#include <xmmintrin.h>

#include <cstring>

#include "kelvarine_prims.h"

namespace {

constexpr uint32_t kSseRounding = 0x6000;
// All exceptions masked, round to nearest, no flags raised.
constexpr uint32_t kSseDefaultWord = 0x1F80;

// The FXSAVE area keeps MXCSR_MASK, the MXCSR bits the processor supports;
// bit 6 there is denormals-are-zero.
constexpr int kFxsaveAreaSize = 512;
constexpr int kMxcsrMaskOffset = 28;
constexpr uint32_t kMxcsrDaz = 0x40;

// x87 control word fields.
constexpr uint32_t kX87Rounding = 0xC00;
constexpr uint32_t kX87Precision = 0x300;
constexpr uint32_t kX87DoublePrecision = 0x200;
constexpr uint32_t kX87ExtendedPrecision = 0x300;

// One bit of an x87 word and its place in the machine-neutral encoding.
struct NeutralBit {
    uint32_t x87;
    uint32_t neutral;
};

// The exceptions sit at the same places in the control word (masks) and the
// status word (flags).
constexpr NeutralBit kExceptionBits[] = {
    {0x01, 0x10},     // invalid operation
    {0x02, 0x80000},  // denormal operand
    {0x04, 0x08},     // division by zero
    {0x08, 0x04},     // overflow
    {0x10, 0x02},     // underflow
    {0x20, 0x01},     // inexact result
};
constexpr NeutralBit kInfinityBit{0x1000, 0x40000};

// The neutral precision bit means double (53-bit) precision; without it the
// x87 unit runs at extended precision.
constexpr uint32_t kNeutralDoublePrecision = 0x10000;

// Rounding is read into 0x30 but written from 0x300: a caller that writes
// back what it read does not get its rounding back. Both places are kept as
// they are, since hosts were written against them.
constexpr int kNeutralRoundingReadShift = 6;
constexpr int kNeutralRoundingWriteShift = 2;
constexpr uint32_t kNeutralRoundingWrite = kX87Rounding >> kNeutralRoundingWriteShift;

uint32_t replaceBits(uint32_t word, uint32_t value, uint32_t mask) { return (word & ~mask) | (value & mask); }

uint32_t readX87Control() {
    uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void writeX87Control(uint32_t word) {
    uint16_t control = static_cast<uint16_t>(word);
    asm volatile("fldcw %0" : : "m"(control));
}

uint32_t readX87Status() {
    uint16_t word;
    asm volatile("fnstsw %0" : "=m"(word));
    return word;
}

void clearX87Exceptions() { asm volatile("fnclex"); }

uint32_t setOrClear(uint32_t word, uint32_t bits, bool set) { return set ? word | bits : word & ~bits; }

uint32_t exceptionsToNeutral(uint32_t x87Word) {
    uint32_t neutral = 0;
    for (const auto& bit : kExceptionBits) {
        if (x87Word & bit.x87) neutral |= bit.neutral;
    }
    return neutral;
}

uint32_t controlToNeutral(uint32_t control) {
    uint32_t neutral = exceptionsToNeutral(control);
    if (control & kInfinityBit.x87) neutral |= kInfinityBit.neutral;
    if ((control & kX87Precision) == kX87DoublePrecision) neutral |= kNeutralDoublePrecision;
    return neutral | (control & kX87Rounding) >> kNeutralRoundingReadShift;
}

// The control word with the neutral bits of mask taken from value.
uint32_t applyNeutral(uint32_t control, uint32_t value, uint32_t mask) {
    for (const auto& bit : kExceptionBits) {
        if (mask & bit.neutral) control = setOrClear(control, bit.x87, value & bit.neutral);
    }
    if (mask & kInfinityBit.neutral) control = setOrClear(control, kInfinityBit.x87, value & kInfinityBit.neutral);
    if (mask & kNeutralDoublePrecision) {
        uint32_t precision = (value & kNeutralDoublePrecision) ? kX87DoublePrecision : kX87ExtendedPrecision;
        control = replaceBits(control, precision, kX87Precision);
    }
    return replaceBits(control, (value & kNeutralRoundingWrite) << kNeutralRoundingWriteShift,
                       (mask & kNeutralRoundingWrite) << kNeutralRoundingWriteShift);
}

uint64_t bitsOf(double value) {
    uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

constexpr uint64_t kExponentBits = 0x7FF0000000000000ull;
constexpr uint64_t kMantissaBits = 0x000FFFFFFFFFFFFFull;

}  // namespace

extern "C" {

KV_API uint32_t ps_get_ssx(void) { return _mm_getcsr(); }

KV_API uint32_t ps_set_ssx(uint32_t value, uint32_t mask) {
    uint32_t old = _mm_getcsr();
    _mm_setcsr(replaceBits(old, value, mask));
    return old;
}

// rounding holds the new mode in place, in bits 13 and 14.
KV_API uint32_t prim_set_rc_ssx(uint32_t rounding) {
    uint32_t old = _mm_getcsr();
    if ((old ^ rounding) & kSseRounding) _mm_setcsr(replaceBits(old, rounding, kSseRounding));
    return old;
}

KV_API void prim_set_cw_ssx(uint32_t word) { _mm_setcsr(word); }

KV_API uint32_t prim_clear_ssx(void) {
    uint32_t old = _mm_getcsr();
    _mm_setcsr(kSseDefaultWord);
    return old;
}

KV_API int32_t prim_tst_daz_ssx(void) {
    alignas(16) uint8_t area[kFxsaveAreaSize] = {};
    asm volatile("fxsave %0" : "=m"(area));
    uint32_t supported;
    std::memcpy(&supported, area + kMxcsrMaskOffset, sizeof supported);
    return supported != 0 && (supported & kMxcsrDaz) != 0;
}

KV_API uint32_t ps_get_cw_fpu(void) { return readX87Control(); }

KV_API uint32_t ps_get_sw_fpu(void) { return readX87Status(); }

KV_API uint32_t ps_clear_fpu(void) {
    uint32_t old = readX87Status();
    clearX87Exceptions();
    return old;
}

KV_API uint32_t ps_set_cw_fpu(uint32_t value, uint32_t mask) {
    uint32_t old = readX87Control();
    writeX87Control(replaceBits(old, value, mask));
    return old;
}

KV_API uint32_t prim_set_rcpc_fpu(uint32_t value, uint32_t mask) {
    uint32_t old = readX87Control();
    if ((old ^ value) & mask) writeX87Control(replaceBits(old, value, mask));
    return old;
}

KV_API void prim_set_cw_fpu(uint32_t word) { writeX87Control(word); }

// Returns the control word as it stands after the change.
KV_API uint32_t prim_control87(uint32_t value, uint32_t mask) {
    if (mask != 0) writeX87Control(applyNeutral(readX87Control(), value, mask));
    return controlToNeutral(readX87Control());
}

KV_API uint32_t prim_status87(void) { return exceptionsToNeutral(readX87Status()); }

KV_API uint32_t prim_clear87(void) {
    uint32_t old = prim_status87();
    clearX87Exceptions();
    return old;
}

KV_API int32_t prim_isnan(double value) {
    uint64_t bits = bitsOf(value);
    return (bits & kExponentBits) == kExponentBits && (bits & kMantissaBits) != 0;
}

KV_API int32_t prim_finite(double value) { return (bitsOf(value) & kExponentBits) != kExponentBits; }

}  // extern "C"
