// Processor identification: the feature word, the choice of build behind the
// jump stubs, and the identification tests that a host may call.
//
// Nothing in the library calls the init functions. A host that wants the
// SSSE3 or SSE4.1 build calls primInit or primInitCpu itself; otherwise the
// index stays 0 and every stub runs the baseline build.
#include <cpuid.h>
#include <x86intrin.h>

#include "cpu.h"

namespace {

enum Register { kEax, kEbx, kEcx, kEdx };

// One bit of a register of CPUID leaf 1.
struct CpuidBit {
    Register reg;
    int bit;
};

constexpr CpuidBit kRdtscBit{kEdx, 4};
constexpr CpuidBit kMmxBit{kEdx, 23};
constexpr CpuidBit kSseBit{kEdx, 25};
constexpr CpuidBit kSse2Bit{kEdx, 26};
constexpr CpuidBit kHttBit{kEdx, 28};
constexpr CpuidBit kSse3Bit{kEcx, 0};
constexpr CpuidBit kPclmulqdqBit{kEcx, 1};
constexpr CpuidBit kSsse3Bit{kEcx, 9};
constexpr CpuidBit kSse41Bit{kEcx, 19};
constexpr CpuidBit kSse42Bit{kEcx, 20};
constexpr CpuidBit kMovbeBit{kEcx, 22};
constexpr CpuidBit kAesBit{kEcx, 25};
constexpr CpuidBit kOsxsaveBit{kEcx, 27};
constexpr CpuidBit kAvxBit{kEcx, 28};
constexpr CpuidBit kF16cBit{kEcx, 29};
constexpr CpuidBit kRdrandBit{kEcx, 30};

// The feature bits that leaf 1 gives directly; the AVX-usable and the
// extended-leaf bits need more than one bit and are added apart.
constexpr struct {
    uint64_t feature;
    CpuidBit source;
} kLeaf1Features[] = {
    {kFeatureMmx, kMmxBit},       {kFeatureSse, kSseBit},     {kFeatureSse2, kSse2Bit},
    {kFeatureSse3, kSse3Bit},     {kFeatureSsse3, kSsse3Bit}, {kFeatureMovbe, kMovbeBit},
    {kFeatureSse41, kSse41Bit},   {kFeatureSse42, kSse42Bit}, {kFeatureAvx, kAvxBit},
    {kFeatureAes, kAesBit},       {kFeaturePclmulqdq, kPclmulqdqBit},
    {kFeatureRdrand, kRdrandBit}, {kFeatureF16c, kF16cBit},
};

// Family 11 processors report one more bit in a leaf of their own.
constexpr uint32_t kExtendedFamily = 11;
constexpr uint32_t kExtendedFeatureLeaf = 0x20000001;
constexpr int kExtendedFeatureEdxBit = 1;

// The enabled-feature masks that go with each build. MOVBE is never
// enabled: it only tells the low-power SSSE3 processors apart.
constexpr uint64_t kBaselineMask = kFeatureMmx | kFeatureSse | kFeatureSse2;
constexpr uint64_t kSse3Mask = kBaselineMask | kFeatureSse3;
constexpr uint64_t kSsse3Mask = kSse3Mask | kFeatureSsse3;
constexpr uint64_t kSse41Mask = kSsse3Mask | kFeatureSse41;
constexpr uint64_t kSse42Mask = kSse41Mask | kFeatureSse42;
constexpr uint64_t kSse42AesMask = kSse42Mask | kFeatureAes | kFeaturePclmulqdq;
static_assert(kBaselineMask == 0x7 && kSse41Mask == 0x5F && kSse42AesMask == 0xCDF);

// Long mode (x86-64) is bit 29 of EDX in the first extended leaf.
constexpr uint32_t kExtendedLeafBase = 0x80000000;
constexpr uint32_t kExtendedSignatureLeaf = 0x80000001;
constexpr int kLongModeEdxBit = 29;

// "getinfoa" in memory order: the caller's features word asks for a chosen
// leaf instead of leaf 1.
constexpr uint64_t kChosenLeafRequest = 0x616F666E69746567;

uint32_t cpuidRegister(uint32_t leaf, Register reg) {
    uint32_t registers[4];
    ownGetReg(registers, static_cast<int32_t>(leaf), 0);
    return registers[reg];
}

bool hasBit(const uint32_t registers[4], CpuidBit bit) { return (registers[bit.reg] >> bit.bit) & 1; }

int32_t leaf1Has(CpuidBit bit) {
    uint32_t registers[4];
    ownGetReg(registers, 1, 0);
    return hasBit(registers, bit);
}

// XCR0: which register states the operating system saves. Only valid to
// read when leaf 1 reports OSXSAVE.
uint64_t readXcr0() {
    uint32_t low, high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (static_cast<uint64_t>(high) << 32) | low;
}

void selectBuild(int32_t index, int32_t lowPowerIndex, uint64_t mask) {
    primJumpIndex = index;
    primJumpIndexLP = lowPowerIndex;
    primSetCpuFeaturesMask(mask);
}

}  // namespace

extern "C" {

uint64_t ownFeatures = 0;
int32_t ownFeaturesAreValid = 0;
uint64_t ownFeaturesMask = kBaselineMask;

KV_API int32_t i_version = 1;
KV_API int32_t i_min_version = 0;

void ownGetReg(uint32_t registers[4], int32_t leaf, int32_t subleaf) {
    __cpuid_count(static_cast<uint32_t>(leaf), static_cast<uint32_t>(subleaf), registers[0], registers[1],
                  registers[2], registers[3]);
}

// Detection runs once; later calls hand out the kept word. A processor
// without leaf 1 cannot be identified, and the result then says so.
int32_t ownGetMaskFeatures(uint64_t* features) {
    if (ownFeaturesAreValid) {
        *features = ownFeatures;
        return 1;
    }
    if (prim_max_cpuid_input() < 1) return ownFeaturesAreValid;

    uint32_t leaf1[4];
    ownGetReg(leaf1, 1, 0);
    uint64_t word = 0;
    for (const auto& entry : kLeaf1Features) {
        if (hasBit(leaf1, entry.source)) word |= entry.feature;
    }
    if (prim_is_avx_extension()) word |= kFeatureAvxUsable;
    if (((leaf1[kEax] >> 8) & 0xF) == kExtendedFamily &&
        ((cpuidRegister(kExtendedFeatureLeaf, kEdx) >> kExtendedFeatureEdxBit) & 1)) {
        word |= kFeatureExtendedLeaf;
    }

    ownFeatures = word;
    ownFeaturesAreValid = 1;
    *features = word;
    return 1;
}

int32_t ownGetFeature(uint64_t bits) { return (ownFeaturesMask & bits) == bits; }

int32_t ownSetFeatureMask(uint64_t mask) {
    ownFeaturesMask = mask;
    return 1;
}

KV_API PrimStatus primGetCpuFeatures(uint64_t* features, uint32_t registers[4]) {
    uint64_t detected;
    if (!ownGetMaskFeatures(&detected)) return PrimCpuOldWrn;
    if (features == nullptr) return PrimNullPtrErr;

    uint64_t request = *features;
    *features = detected;
    if (registers == nullptr) return PrimOk;
    if (request == kChosenLeafRequest) {
        ownGetReg(registers, static_cast<int32_t>(registers[0]), static_cast<int32_t>(registers[2]));
    } else {
        ownGetReg(registers, 1, 0);
    }
    return PrimOk;
}

KV_API uint64_t primGetEnabledCpuFeatures(void) { return ownFeaturesMask; }

KV_API PrimStatus primSetCpuFeaturesMask(uint64_t mask) {
    ownSetFeatureMask(mask);
    return PrimOk;
}

// The highest build that the features allow. A processor of another vendor
// still gets that build; only the status tells it apart.
KV_API PrimStatus primStaticInit(void) {
    uint64_t features = 0;
    PrimStatus status = primGetCpuFeatures(&features, nullptr);
    if (status != PrimOk) {
        selectBuild(0, 0, kBaselineMask);
    } else if (features & kFeatureSse41) {
        selectBuild(3, 0, features & kSse42AesMask);
    } else if ((features & kFeatureSsse3) && (features & kFeatureMovbe)) {
        selectBuild(2, 1, features & kSsse3Mask);
    } else if (features & kFeatureSsse3) {
        selectBuild(2, 0, features & kSsse3Mask);
    } else if (features & kFeatureSse3) {
        selectBuild(1, 0, features & kSse3Mask);
    } else {
        selectBuild(0, 0, features & kBaselineMask);
        status = PrimCpuOldWrn;
    }
    if (!prim_has_cpuid() || !prim_is_native_vendor()) status = PrimCpuVendorWrn;
    return status;
}

KV_API PrimStatus primInit(void) { return primStaticInit(); }

// The caller names the processor generation by a code and is trusted: the
// processor is not asked whether it has what the code names.
KV_API PrimStatus primStaticInitCpu(int32_t code) {
    switch (code) {
    case -1:
        return primInit();
    case 0: case 32: case 66:
        selectBuild(1, 0, kSse3Mask);
        return PrimOk;
    case 33: case 34: case 67:
        selectBuild(2, 0, kSsse3Mask);
        return PrimOk;
    case 36:
        selectBuild(2, 1, kSsse3Mask);
        return PrimOk;
    case 35: case 68:
        selectBuild(3, 0, kSse41Mask);
        return PrimOk;
    case 37: case 69:
        selectBuild(3, 0, kSse42Mask);
        return PrimOk;
    case 38: case 71:
        selectBuild(3, 0, kSse42AesMask);
        return PrimOk;
    case 1: case 2: case 3: case 4: case 5: case 6: case 7: case 8: case 9: case 10: case 11:
    case 64: case 65: case 96:
        return PrimCpuOldWrn;
    default:
        return PrimCpuCodeWrn;
    }
}

KV_API PrimStatus primInitCpu(int32_t code) { return primStaticInitCpu(code); }

// Every 64-bit x86 processor has CPUID.
KV_API int32_t prim_has_cpuid(void) { return 1; }

KV_API int32_t prim_max_cpuid_input(void) { return static_cast<int32_t>(cpuidRegister(0, kEax)); }

// "GenuineIntel" in EBX, EDX, ECX.
KV_API int32_t prim_is_native_vendor(void) {
    uint32_t leaf0[4];
    ownGetReg(leaf0, 0, 0);
    return leaf0[kEbx] == 0x756E6547 && leaf0[kEdx] == 0x49656E69 && leaf0[kEcx] == 0x6C65746E;
}

KV_API int32_t prim_has_rdtsc(void) { return leaf1Has(kRdtscBit); }
KV_API int32_t prim_is_mmx_extension(void) { return leaf1Has(kMmxBit); }
KV_API int32_t prim_is_sse_extension(void) { return leaf1Has(kSseBit); }
KV_API int32_t prim_is_sse2_extension(void) { return leaf1Has(kSse2Bit); }
KV_API int32_t prim_is_sse3_extension(void) { return leaf1Has(kSse3Bit); }
KV_API int32_t prim_is_ssse3_extension(void) { return leaf1Has(kSsse3Bit); }
KV_API int32_t prim_is_sse41_extension(void) { return leaf1Has(kSse41Bit); }
KV_API int32_t prim_is_sse42_extension(void) { return leaf1Has(kSse42Bit); }
KV_API int32_t prim_is_movbe(void) { return leaf1Has(kMovbeBit); }

// Hyper-threading counts only with more than one logical processor a package.
KV_API int32_t prim_is_htt_extension(void) {
    return leaf1Has(kHttBit) && ((cpuidRegister(1, kEbx) >> 16) & 0xFF) > 1;
}

KV_API int32_t prim_is_x64_extension(void) {
    return cpuidRegister(kExtendedLeafBase, kEax) >= kExtendedSignatureLeaf &&
           ((cpuidRegister(kExtendedSignatureLeaf, kEdx) >> kLongModeEdxBit) & 1);
}

// AVX needs the instructions and an operating system that saves the SSE and
// AVX register state (XCR0 bits 1 and 2).
KV_API int32_t prim_is_avx_extension(void) {
    uint32_t leaf1[4];
    ownGetReg(leaf1, 1, 0);
    return hasBit(leaf1, kOsxsaveBit) && hasBit(leaf1, kAvxBit) && (readXcr0() & 0x6) == 0x6;
}

KV_API int32_t prim_get_cores_on_die(void) {
    return prim_max_cpuid_input() >= 4 ? static_cast<int32_t>(cpuidRegister(4, kEax) >> 26) + 1 : 1;
}

KV_API uint64_t prim_get_cpu_counter(void) { return __rdtsc(); }

KV_API void prim_get_cpu_ident(PrimCpuIdent* ident) {
    uint32_t signature = cpuidRegister(1, kEax);
    ident->stepping = signature & 0xF;
    ident->model = (signature >> 4) & 0xF;
    ident->family = (signature >> 8) & 0xF;
    ident->type = (signature >> 12) & 0x3;
    ident->extendedModel = (signature >> 16) & 0xF;
    ident->extendedFamily = (signature >> 20) & 0xFF;
    ident->hasCpuid = prim_has_cpuid();
    ident->hasRdtsc = prim_has_rdtsc();
    ident->mmx = prim_is_mmx_extension();
    ident->sse = prim_is_sse_extension();
    ident->sse2 = prim_is_sse2_extension();
    ident->sse3 = prim_is_sse3_extension();
    ident->ssse3 = prim_is_ssse3_extension();
    ident->sse41 = prim_is_sse41_extension();
    ident->sse42 = prim_is_sse42_extension();
    ident->movbe = prim_is_movbe();
    ident->htt = prim_is_htt_extension();
    ident->x64 = prim_is_x64_extension();
    ident->avx = prim_is_avx_extension();
    ident->nativeVendor = prim_is_native_vendor();
}

}  // extern "C"
