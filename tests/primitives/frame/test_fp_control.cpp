// The SSE and x87 control words, read and written through the library and
// checked with the instructions themselves. Every test puts both words back.
#include <gtest/gtest.h>
#include <xmmintrin.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "kelvarine_prims.h"

namespace {

uint32_t X87Control() {
    uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

uint32_t X87Status() {
    uint16_t word;
    asm volatile("fnstsw %0" : "=m"(word));
    return word;
}

void SetX87Control(uint32_t word) {
    uint16_t control = static_cast<uint16_t>(word);
    asm volatile("fnclex\n\tfldcw %0" : : "m"(control));
}

// Raises the x87 division-by-zero flag (masked, so nothing traps).
void DivideByZeroOnX87() {
    volatile long double one = 1.0L, zero = 0.0L;
    volatile long double quotient = one / zero;
    (void)quotient;
}

class FpControl : public ::testing::Test {
protected:
    void SetUp() override {
        savedSse_ = _mm_getcsr();
        savedX87_ = X87Control();
        SetX87Control(kX87Default);
    }
    void TearDown() override {
        _mm_setcsr(savedSse_);
        SetX87Control(savedX87_);
    }

    // All exceptions masked, extended precision, round to nearest.
    static constexpr uint32_t kX87Default = 0x037F;

private:
    uint32_t savedSse_ = 0;
    uint32_t savedX87_ = 0;
};

TEST_F(FpControl, SseControlWordChangesAndReturnsTheOldWord) {
    prim_set_cw_ssx(0x1F80);
    EXPECT_EQ(ps_get_ssx(), 0x1F80u);
    EXPECT_EQ(ps_set_ssx(0xFFFF, 0x6000), 0x1F80u);
    EXPECT_EQ(_mm_getcsr(), 0x7F80u);

    // Only the two rounding bits of the argument count.
    EXPECT_EQ(prim_set_rc_ssx(0x2000 | 0x8040), 0x7F80u);
    EXPECT_EQ(_mm_getcsr(), 0x3F80u);
    EXPECT_EQ(prim_set_rc_ssx(0), 0x3F80u);
    EXPECT_EQ(_mm_getcsr(), 0x1F80u);

    prim_set_cw_ssx(0x7F80 | 0x3F);
    EXPECT_EQ(prim_clear_ssx(), 0x7FBFu);
    EXPECT_EQ(_mm_getcsr(), 0x1F80u);
}

TEST_F(FpControl, DenormalsAreZeroSupportComesFromTheSavedState) {
    alignas(16) uint8_t area[512] = {};
    asm volatile("fxsave %0" : "=m"(area));
    uint32_t supported;
    std::memcpy(&supported, area + 28, sizeof supported);
    EXPECT_EQ(prim_tst_daz_ssx(), (supported & 0x40) ? 1 : 0);
}

TEST_F(FpControl, X87ControlWordRoundTrips) {
    EXPECT_EQ(ps_get_cw_fpu(), kX87Default);
    EXPECT_EQ(ps_set_cw_fpu(0x0C00, 0x0C00), kX87Default);
    EXPECT_EQ(X87Control(), kX87Default | 0x0C00);

    // Equal masked bits leave the word alone; different ones are replaced.
    EXPECT_EQ(prim_set_rcpc_fpu(0x0C00, 0x0C00), kX87Default | 0x0C00);
    EXPECT_EQ(X87Control(), kX87Default | 0x0C00);
    EXPECT_EQ(prim_set_rcpc_fpu(0x0400 | 0x0200, 0x0F00), kX87Default | 0x0C00);
    EXPECT_EQ(X87Control(), 0x067Fu);

    prim_set_cw_fpu(kX87Default);
    EXPECT_EQ(X87Control(), kX87Default);
}

TEST_F(FpControl, X87StatusReadsAndClears) {
    DivideByZeroOnX87();
    EXPECT_NE(ps_get_sw_fpu() & 0x4, 0u);
    EXPECT_NE(prim_status87() & 0x8, 0u);
    EXPECT_NE(ps_clear_fpu() & 0x4, 0u);
    EXPECT_EQ(X87Status() & 0x3F, 0u);
    EXPECT_EQ(prim_status87(), 0u);

    DivideByZeroOnX87();
    EXPECT_EQ(prim_clear87(), 0x8u);
    EXPECT_EQ(X87Status() & 0x3F, 0u);
}

TEST_F(FpControl, NeutralControlWordReadsEveryField) {
    // Six exception masks: invalid 0x10, denormal 0x80000, zero 0x8,
    // overflow 0x4, underflow 0x2, inexact 0x1.
    EXPECT_EQ(prim_control87(0, 0), 0x8001Fu);
    SetX87Control(0x027F);  // double precision
    EXPECT_EQ(prim_control87(0, 0), 0x9001Fu);
    SetX87Control(0x1F7F);  // infinity control, rounding toward zero
    EXPECT_EQ(prim_control87(0, 0), 0xC001Fu | 0x30u);
    SetX87Control(0x0340 | 0x02);  // only the denormal exception masked
    EXPECT_EQ(prim_control87(0, 0), 0x80000u);
}

TEST_F(FpControl, NeutralControlWordWritesEveryField) {
    prim_control87(0x300, 0x300);
    EXPECT_EQ(X87Control() & 0x0C00, 0x0C00u);
    prim_control87(0x100, 0x300);
    EXPECT_EQ(X87Control() & 0x0C00, 0x0400u);

    EXPECT_EQ(prim_control87(0, 0x8) & 0x8, 0u);
    EXPECT_EQ(X87Control() & 0x3F, 0x3Bu);
    prim_control87(0, 0x80000);
    EXPECT_EQ(X87Control() & 0x3F, 0x39u);

    EXPECT_NE(prim_control87(0x10000, 0x10000) & 0x10000, 0u);
    EXPECT_EQ(X87Control() & 0x300, 0x200u);
    prim_control87(0, 0x10000);
    EXPECT_EQ(X87Control() & 0x300, 0x300u);

    prim_control87(0x40000, 0x40000);
    EXPECT_NE(X87Control() & 0x1000, 0u);
}

TEST_F(FpControl, RoundingReadBackDoesNotWriteTheSameMode) {
    SetX87Control(kX87Default | 0x0C00);
    uint32_t read = prim_control87(0, 0);
    EXPECT_EQ(read & 0x330, 0x30u);
    prim_control87(read, 0x300);
    EXPECT_EQ(X87Control() & 0x0C00, 0u);
}

TEST(DoubleBits, NanAndFinite) {
    using limits = std::numeric_limits<double>;
    for (double v : {0.0, -0.0, 1.5, limits::denorm_min(), limits::max(), -limits::max()})
        EXPECT_TRUE(prim_isnan(v) == 0 && prim_finite(v) == 1) << v;
    for (double v : {limits::infinity(), -limits::infinity()}) EXPECT_TRUE(prim_isnan(v) == 0 && prim_finite(v) == 0);
    for (double v : {limits::quiet_NaN(), -limits::quiet_NaN(), limits::signaling_NaN()})
        EXPECT_TRUE(prim_isnan(v) == 1 && prim_finite(v) == 0) << v;
}

}  // namespace
