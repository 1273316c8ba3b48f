// Processor identification, the choice of build, and the cache-size queries,
// checked against CPUID read here independently.
#include <cpuid.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <tuple>
#include <vector>

#include "kelvarine_prims.h"
#include "primitives/frame/cpu.h"

namespace {

struct Registers {
    uint32_t eax, ebx, ecx, edx;
};

Registers Cpuid(uint32_t leaf, uint32_t subleaf = 0) {
    Registers r;
    __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

bool Bit(uint32_t word, int bit) { return (word >> bit) & 1; }

bool IsGenuineIntel() {
    Registers r = Cpuid(0);
    return r.ebx == 0x756E6547 && r.edx == 0x49656E69 && r.ecx == 0x6C65746E;
}

bool AvxUsable() {
    Registers r = Cpuid(1);
    if (!Bit(r.ecx, 27) || !Bit(r.ecx, 28)) return false;
    uint32_t low, high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (low & 6) == 6;
}

// The feature word, bit by bit from the processor's own description.
uint64_t ExpectedFeatureWord() {
    Registers r = Cpuid(1);
    const struct {
        uint64_t feature;
        uint32_t word;
        int bit;
    } sources[] = {
        {0x1, r.edx, 23},   {0x2, r.edx, 25},   {0x4, r.edx, 26},    {0x8, r.ecx, 0},
        {0x10, r.ecx, 9},   {0x20, r.ecx, 22},  {0x40, r.ecx, 19},   {0x80, r.ecx, 20},
        {0x100, r.ecx, 28}, {0x400, r.ecx, 25}, {0x800, r.ecx, 1},   {0x2000, r.ecx, 30},
        {0x4000, r.ecx, 29},
    };
    uint64_t word = 0;
    for (const auto& s : sources) word |= Bit(s.word, s.bit) ? s.feature : 0;
    if (AvxUsable()) word |= 0x200;
    if (((r.eax >> 8) & 0xF) == 11 && Bit(Cpuid(0x20000001).edx, 1)) word |= 0x1000;
    return word;
}

// Every test leaves the library as it was at load: index 0, mask 7.
class Cpu : public ::testing::Test {
protected:
    void TearDown() override {
        primJumpIndex = 0;
        primJumpIndexLP = 0;
        ownFeaturesMask = 7;
    }

    // Jump index, low-power index and enabled features.
    using Choice = std::tuple<int32_t, int32_t, uint64_t>;
    static Choice Current() { return {primJumpIndex, primJumpIndexLP, primGetEnabledCpuFeatures()}; }
};

TEST_F(Cpu, CodeTableSetsIndexAndMask) {
    const struct {
        int32_t code;
        Choice choice;
    } rows[] = {
        {0, {1, 0, 0xF}},    {32, {1, 0, 0xF}},   {66, {1, 0, 0xF}},    {33, {2, 0, 0x1F}},
        {34, {2, 0, 0x1F}},  {67, {2, 0, 0x1F}},  {36, {2, 1, 0x1F}},   {35, {3, 0, 0x5F}},
        {68, {3, 0, 0x5F}},  {37, {3, 0, 0xDF}},  {69, {3, 0, 0xDF}},   {38, {3, 0, 0xCDF}},
        {71, {3, 0, 0xCDF}},
    };
    for (const auto& row : rows) {
        primJumpIndex = 0;
        primJumpIndexLP = 0;
        ownFeaturesMask = 7;
        EXPECT_EQ(primInitCpu(row.code), PrimOk) << row.code;
        EXPECT_EQ(Current(), row.choice) << row.code;
    }
}

TEST_F(Cpu, CodesOutsideTheTableChangeNothing) {
    ASSERT_EQ(primStaticInitCpu(36), PrimOk);
    const Choice before = Current();
    const std::pair<PrimStatus, std::vector<int32_t>> groups[] = {
        {PrimCpuOldWrn, {1, 5, 11, 64, 65, 96}},
        {PrimCpuCodeWrn, {12, 31, 39, 63, 70, 72, 95, 97, 255, -2, INT_MIN, INT_MAX}}};
    for (const auto& [warning, codes] : groups)
        for (int32_t code : codes) {
            EXPECT_EQ(primStaticInitCpu(code), warning) << code;
            EXPECT_EQ(Current(), before) << code;
        }
}

// Code -1 detects, as primInit and primStaticInit do.
TEST_F(Cpu, StaticInitPicksTheHighestBuildTheFeaturesAllow) {
    uint64_t f = ExpectedFeatureWord();
    const Choice want = (f & 0x40)   ? Choice{3, 0, f & 0xCDF}
                        : (f & 0x10) ? Choice{2, (f & 0x20) ? 1 : 0, f & 0x1F}
                        : (f & 0x8)  ? Choice{1, 0, f & 0xF}
                                     : Choice{0, 0, f & 0x7};
    const PrimStatus expected = !IsGenuineIntel() ? PrimCpuVendorWrn : (f & 0x8) ? PrimOk : PrimCpuOldWrn;
    for (auto init : {+[] { return primStaticInit(); }, +[] { return primInit(); },
                      +[] { return primStaticInitCpu(-1); }}) {
        TearDown();
        EXPECT_EQ(init(), expected);
        EXPECT_EQ(Current(), want);
    }
}

TEST_F(Cpu, DetectionRunsOnceEvenForANullPointer) {
    ownFeaturesAreValid = 0;
    ownFeatures = 0;
    EXPECT_EQ(primGetCpuFeatures(nullptr, nullptr), PrimNullPtrErr);
    EXPECT_EQ(ownFeaturesAreValid, 1);
    EXPECT_EQ(ownFeatures, ExpectedFeatureWord());

    // Once valid, the kept word is handed out without asking again.
    ownFeatures = 0x1234;
    uint64_t word = 0;
    EXPECT_EQ(ownGetMaskFeatures(&word), 1);
    EXPECT_EQ(word, 0x1234u);
    ownFeaturesAreValid = 0;
}

// The magic old value "getinfoa" runs the leaf and subleaf the registers
// name; any other reads leaf 1 (whose APIC id byte may change between reads).
TEST_F(Cpu, OldValueChoosesTheLeafReadIntoTheRegisters) {
    const uint64_t kGetInfoA = 0x616F666E69746567;
    struct Request {
        uint64_t old;
        uint32_t leaf, subleaf, readLeaf, readSubleaf, ebxMask;
    };
    std::vector<Request> requests = {{kGetInfoA, 4, 0, 4, 0, ~0u},         {kGetInfoA, 0, 0, 0, 0, ~0u},
                                     {0, 4, 0, 1, 0, 0x00FFFFFF},          {kGetInfoA + 1, 4, 0, 1, 0, 0x00FFFFFF},
                                     {~uint64_t{0}, 4, 0, 1, 0, 0x00FFFFFF}};
    if (Cpuid(0).eax >= 0xD) requests.push_back({kGetInfoA, 0xD, 1, 0xD, 1, ~0u});
    for (const Request& r : requests) {
        uint64_t features = r.old;
        uint32_t got[4] = {r.leaf, 0xDEADBEEF, r.subleaf, 0xDEADBEEF};
        EXPECT_EQ(primGetCpuFeatures(&features, got), PrimOk);
        EXPECT_EQ(features, ExpectedFeatureWord());
        const Registers want = Cpuid(r.readLeaf, r.readSubleaf);
        EXPECT_TRUE(got[0] == want.eax && (got[1] & r.ebxMask) == (want.ebx & r.ebxMask) && got[2] == want.ecx &&
                    got[3] == want.edx)
            << "leaf " << r.leaf << " old " << std::hex << r.old;
    }
    uint64_t features = 0;
    EXPECT_EQ(primGetCpuFeatures(&features, nullptr), PrimOk);
    EXPECT_EQ(features, ExpectedFeatureWord());
}

TEST_F(Cpu, FeatureMaskTests) {
    EXPECT_EQ(primSetCpuFeaturesMask(0), PrimOk);
    EXPECT_EQ(ownGetFeature(0), 1);
    EXPECT_EQ(ownGetFeature(1), 0);
    EXPECT_EQ(ownSetFeatureMask(0x1F), 1);
    EXPECT_EQ(primGetEnabledCpuFeatures(), 0x1Fu);
    EXPECT_EQ(ownGetFeature(0x18), 1);
    EXPECT_EQ(ownGetFeature(0x28), 0);
    EXPECT_EQ(primSetCpuFeaturesMask(~uint64_t{0}), PrimOk);
    EXPECT_EQ(primGetEnabledCpuFeatures(), ~uint64_t{0});
}

// The tests that the library itself relies on.
TEST_F(Cpu, IdentificationTestsMatchTheProcessor) {
    Registers r0 = Cpuid(0);
    EXPECT_EQ(prim_has_cpuid(), 1);
    EXPECT_EQ(prim_max_cpuid_input(), static_cast<int32_t>(r0.eax));
    EXPECT_EQ(prim_is_native_vendor(), IsGenuineIntel() ? 1 : 0);
    EXPECT_EQ(prim_is_avx_extension(), AvxUsable() ? 1 : 0);
    EXPECT_EQ(prim_get_cores_on_die(), r0.eax >= 4 ? static_cast<int32_t>(Cpuid(4).eax >> 26) + 1 : 1);
}

// The one-time cache query, put back to "not run" and restored after.
TEST(CacheQuery, FirstRunDependsOnTheVendorAndLaterRunsReturnWhatItKept) {
    const int32_t savedStatus = ownStatus, savedSize = cacheSize;
    ownStatus = 1;
    cacheSize = 0;
    EXPECT_EQ(primGetMaxCacheSizeB(nullptr), PrimNullPtrErr);
    EXPECT_EQ(ownStatus, 1);
    int32_t size = -1;
    PrimStatus status = primGetMaxCacheSizeB(&size);
    if (!IsGenuineIntel()) {
        EXPECT_EQ(status, PrimCpuOldWrn);
        EXPECT_EQ(size, 0);
    } else {
        EXPECT_TRUE(status == PrimOk || status == PrimCacheUnknownWrn);
        EXPECT_EQ(size > 0, status == PrimOk);
    }
    EXPECT_EQ(ownStatus, status);
    EXPECT_EQ(cacheSize, size);
    // Were the processor asked again, these could not come back.
    ownStatus = PrimCacheUnknownWrn;
    cacheSize = 4242;
    EXPECT_EQ(primGetMaxCacheSizeB(&size), PrimCacheUnknownWrn);
    EXPECT_EQ(size, 4242);
    EXPECT_EQ(owncvGetCacheSize(), 4242);
    ownStatus = savedStatus;
    cacheSize = savedSize;
}

TEST(CacheTables, PackedTableHoldsTheCachesFromHalfAMegabyteUp) {
    ASSERT_EQ(TableCacheSize.size(), 87u);
    EXPECT_EQ(TableCacheSize[86], 0);
    for (int pair = 0; pair < 43; ++pair) {
        uint32_t code = TableCacheSize[2 * pair + 1];
        EXPECT_EQ(TableCacheSize[2 * pair], tableCache[pair].descriptor) << pair;
        EXPECT_EQ((code >> 4) << ((code & 0xF) + 18), tableCache[pair].size) << pair;
    }
}

// Leaf 2 registers as a processor might give them, and what they name.
struct Leaf2Case {
    const char* what;
    uint32_t registers[4];
    int32_t fullTable;
    int32_t packedTable;
};

TEST(CacheTables, LeafTwoDescriptorsNameTheLargestCache) {
    const Leaf2Case cases[] = {
        {"largest wins wherever it stands", {0x00220001, 0x0000007A, 0, 0x0000004D}, 16777216, 16777216},
        {"only small caches", {0x003D0001, 0x00000021, 0, 0}, 393216, 0},
        {"count byte other than 1", {0x004D0002, 0, 0, 0}, -1, 0},
        {"count byte itself is no descriptor", {0x00000001, 0, 0, 0}, -1, 0},
        {"nothing known", {0x00FF0001, 0x00F0B5FF, 0, 0}, -1, 0},
        {"register with bit 31 holds nothing", {0x00000001, 0x800000EC, 0, 0x00000043}, 524288, 524288},
        {"all registers empty", {0x80000001, 0x80000000, 0x80EC0000, 0x80000000}, -1, 0},
        // EAX holds nothing: EBX's first byte goes unread.
        {"first byte of EBX unread", {0x80000001, 0x000000EC, 0x00000049, 0}, 4194304, 4194304},
        {"rest of EBX is read", {0x80000001, 0x0000EC00, 0x00000049, 0}, 25165824, 25165824},
        {"descriptor in the top byte of EDX", {0x00000001, 0, 0, 0x4D000000}, 16777216, 16777216},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ownLookupCacheSize(c.registers, tableCache), c.fullTable) << c.what;
        EXPECT_EQ(ownLookupPackedCacheSize(c.registers, TableCacheSize.data()), c.packedTable) << c.what;
    }
    const CacheDescriptor ownTable[] = {{0x7A, 7}, {0x22, 9}, {0, 0}};
    EXPECT_EQ(ownLookupCacheSize(cases[0].registers, ownTable), 7);
}

TEST(CacheTables, ThisProcessorsLeafTwo) {
    Registers r = Cpuid(2);
    const uint32_t registers[4] = {r.eax, r.ebx, r.ecx, r.edx};
    EXPECT_EQ(ownGetCacheSize(tableCache), ownLookupCacheSize(registers, tableCache));
    int32_t expectedPacked = IsGenuineIntel() ? ownLookupPackedCacheSize(registers, TableCacheSize.data()) : 0;
    EXPECT_EQ(ownGetTableCacheSize(), expectedPacked);
}

}  // namespace
