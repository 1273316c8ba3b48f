// The size of the largest data or unified cache, for the code that chooses
// between plain and streaming stores.
//
// primGetMaxCacheSizeB asks the processor once and keeps the answer and its
// status for the life of the process. The memory loops ask leaf 2 on their
// own through ownGetTableCacheSize, over the packed TableCacheSize.
#include "cpu.h"

namespace {

// ownStatus before the first query has run.
constexpr int32_t kQueryNotRun = 1;

// A register of leaf 2 with bit 31 set holds no descriptors.
constexpr uint32_t kNoDescriptors = 0x80000000u;

// Leaf 4 cache types.
constexpr uint32_t kNoMoreCaches = 0;
constexpr uint32_t kInstructionCache = 2;
constexpr int kLeaf4MaxSubleaf = 31;

constexpr uint32_t kSmallestPackedSize = 524288;
constexpr int kPackedSizeUnitShift = 18;
constexpr int kPackedCodeMaxShift = 3;

// The descriptor bytes of leaf 2, laid out as the processor gave them.
struct Leaf2Descriptors {
    uint8_t bytes[16];
    int count;
};

// Lays the registers that carry descriptors side by side. EAX gives 3 bytes
// after its count byte AL, the others 4 each; the bytes are later read from
// index count down to 1, so AL is never taken for a descriptor. When EAX
// carries none, this leaves the first byte of EBX unread and reads one
// zero byte past the last register, which names no cache.
// Returns false when leaf 2 must be run more than once (AL other than 1).
bool layDescriptors(const uint32_t leaf2[4], Leaf2Descriptors* out) {
    *out = {};
    if ((leaf2[0] & 0xFF) != 1) return false;
    int length = 0;
    for (int reg = 0; reg < 4; ++reg) {
        uint32_t value = leaf2[reg];
        if (value == 0 || (value & kNoDescriptors)) continue;
        for (int shift = 0; shift < 32; shift += 8) out->bytes[length++] = static_cast<uint8_t>(value >> shift);
        out->count += reg == 0 ? 3 : 4;
    }
    return true;
}

bool namesDescriptor(const Leaf2Descriptors& laid, uint32_t descriptor) {
    for (int i = laid.count; i >= 1; --i) {
        if (laid.bytes[i] == static_cast<uint8_t>(descriptor)) return true;
    }
    return false;
}

// A size code holds a multiplier in the high four bits and a shift in the
// low four: size = multiplier << (shift + 18). The shift is the largest one
// up to 3 that leaves a whole multiplier: 24 MiB is 0xC3, 512 KiB is 0x11.
constexpr uint8_t packSize(uint32_t size) {
    uint32_t units = size >> kPackedSizeUnitShift;
    int shift = 0;
    while (shift < kPackedCodeMaxShift && (units >> shift) % 2 == 0) ++shift;
    return static_cast<uint8_t>((units >> shift) << 4 | shift);
}

constexpr uint32_t unpackSize(uint8_t code) {
    return static_cast<uint32_t>(code >> 4) << ((code & 0xF) + kPackedSizeUnitShift);
}

// The largest cache that holds data, from the leaf 4 subleaves.
uint64_t largestLeaf4Cache() {
    uint64_t largest = 0;
    for (int subleaf = 0; subleaf <= kLeaf4MaxSubleaf; ++subleaf) {
        uint32_t regs[4];
        ownGetReg(regs, 4, subleaf);
        uint32_t type = regs[0] & 0x1F;
        if (type == kNoMoreCaches) break;
        if (type == kInstructionCache) continue;
        uint64_t ways = (regs[1] >> 22) + 1;
        uint64_t partitions = ((regs[1] >> 12) & 0x3FF) + 1;
        uint64_t lineSize = (regs[1] & 0xFFF) + 1;
        uint64_t sets = static_cast<uint64_t>(regs[2]) + 1;
        uint64_t size = ways * partitions * lineSize * sets;
        if (size > largest) largest = size;
    }
    return largest;
}

PrimStatus keepCacheSize(int64_t size, int32_t* out) {
    if (size <= 0) {
        cacheSize = 0;
        ownStatus = PrimCacheUnknownWrn;
    } else {
        cacheSize = static_cast<int32_t>(size);
        ownStatus = PrimOk;
    }
    *out = cacheSize;
    return ownStatus;
}

}  // namespace

extern "C" {

int32_t cacheSize = 0;
int32_t ownStatus = kQueryNotRun;

// Largest first, so that the largest cache the processor names wins.
constexpr CacheDescriptor tableCache[] = {
    {0xEC, 25165824}, {0xEB, 18874368}, {0x4D, 16777216}, {0xEA, 12582912}, {0x4C, 12582912},
    {0xE4, 8388608},  {0xDE, 8388608},  {0x4B, 8388608},  {0x47, 8388608},  {0x4E, 6291456},
    {0x4A, 6291456},  {0xE3, 4194304},  {0xDD, 4194304},  {0xD8, 4194304},  {0x49, 4194304},
    {0x29, 4194304},  {0x46, 4194304},  {0x48, 3145728},  {0xE2, 2097152},  {0xDC, 2097152},
    {0xD7, 2097152},  {0xD2, 2097152},  {0x25, 2097152},  {0x7D, 2097152},  {0x85, 2097152},
    {0x45, 2097152},  {0xD6, 1048576},  {0xD1, 1048576},  {0x23, 1048576},  {0x87, 1048576},
    {0x7C, 1048576},  {0x78, 1048576},  {0x84, 1048576},  {0x44, 1048576},  {0xD0, 524288},
    {0x22, 524288},   {0x7B, 524288},   {0x80, 524288},   {0x86, 524288},   {0x3E, 524288},
    {0x7F, 524288},   {0x83, 524288},   {0x43, 524288},   {0x3D, 393216},   {0x21, 262144},
    {0x7A, 262144},   {0x82, 262144},   {0x3C, 262144},   {0x3F, 262144},   {0x42, 262144},
    {0x3A, 196608},   {0x79, 131072},   {0x39, 131072},   {0x3B, 131072},   {0x41, 131072},
    {0, 0},
};

}  // extern "C"

namespace {

// The rows of tableCache down to the smallest packed size, as byte pairs.
constexpr PackedCacheTable packTableCache() {
    PackedCacheTable packed{};
    int length = 0;
    for (const CacheDescriptor* row = tableCache; row->size >= kSmallestPackedSize; ++row) {
        packed[length++] = static_cast<uint8_t>(row->descriptor);
        packed[length++] = packSize(row->size);
    }
    return packed;
}

constexpr bool packedTableIsExact() {
    for (int row = 0; row < kPackedCacheRows; ++row) {
        if (tableCache[row].size < kSmallestPackedSize) return false;
        if (unpackSize(packTableCache()[2 * row + 1]) != tableCache[row].size) return false;
    }
    return tableCache[kPackedCacheRows].size < kSmallestPackedSize;
}
static_assert(packedTableIsExact(), "every packed row must give back its size, 43 rows in all");

}  // namespace

extern "C" {

constexpr PackedCacheTable TableCacheSize = packTableCache();

int32_t ownLookupCacheSize(const uint32_t leaf2[4], const CacheDescriptor* table) {
    Leaf2Descriptors laid;
    if (!layDescriptors(leaf2, &laid) || laid.count == 0) return -1;
    for (const CacheDescriptor* row = table; row->descriptor != 0; ++row) {
        if (namesDescriptor(laid, row->descriptor)) return static_cast<int32_t>(row->size);
    }
    return -1;
}

int32_t ownLookupPackedCacheSize(const uint32_t leaf2[4], const uint8_t* packed) {
    Leaf2Descriptors laid;
    if (!layDescriptors(leaf2, &laid)) return 0;
    for (const uint8_t* pair = packed; pair[0] != 0; pair += 2) {
        if (namesDescriptor(laid, pair[0])) return static_cast<int32_t>(unpackSize(pair[1]));
    }
    return 0;
}

int32_t ownGetCacheSize(const CacheDescriptor* table) {
    uint32_t leaf2[4];
    ownGetReg(leaf2, 2, 0);
    return ownLookupCacheSize(leaf2, table);
}

int32_t ownGetTableCacheSize(void) {
    if (!prim_is_native_vendor() || prim_max_cpuid_input() < 2) return 0;
    uint32_t leaf2[4];
    ownGetReg(leaf2, 2, 0);
    return ownLookupPackedCacheSize(leaf2, TableCacheSize.data());
}

KV_API PrimStatus primGetMaxCacheSizeB(int32_t* size) {
    if (size == nullptr) return PrimNullPtrErr;
    if (ownStatus != kQueryNotRun) {
        *size = cacheSize;
        return ownStatus;
    }
    int32_t maxLeaf = prim_max_cpuid_input();
    if (!prim_has_cpuid() || maxLeaf < 2 || !prim_is_native_vendor()) {
        ownStatus = PrimCpuOldWrn;
        *size = cacheSize;
        return ownStatus;
    }
    if (maxLeaf < 4) return keepCacheSize(ownGetCacheSize(tableCache), size);
    return keepCacheSize(static_cast<int64_t>(largestLeaf4Cache()), size);
}

int32_t owncvGetCacheSize(void) {
    int32_t size = 0;
    primGetMaxCacheSizeB(&size);
    return size;
}

}  // extern "C"
