// Processor identification and cache size, for the primitive code itself.
//
// None of this is exported: the library is built with hidden visibility, and
// hosts see only the prim... functions of kelvarine_prims.h.
#ifndef KV_PRIMITIVES_FRAME_CPU_H
#define KV_PRIMITIVES_FRAME_CPU_H

#include <array>
#include <cstdint>

#include "kelvarine_prims.h"

// Bits of the feature word built by ownGetMaskFeatures.
constexpr uint64_t kFeatureMmx = 0x1;
constexpr uint64_t kFeatureSse = 0x2;
constexpr uint64_t kFeatureSse2 = 0x4;
constexpr uint64_t kFeatureSse3 = 0x8;
constexpr uint64_t kFeatureSsse3 = 0x10;
constexpr uint64_t kFeatureMovbe = 0x20;
constexpr uint64_t kFeatureSse41 = 0x40;
constexpr uint64_t kFeatureSse42 = 0x80;
constexpr uint64_t kFeatureAvx = 0x100;
constexpr uint64_t kFeatureAvxUsable = 0x200;
constexpr uint64_t kFeatureAes = 0x400;
constexpr uint64_t kFeaturePclmulqdq = 0x800;
constexpr uint64_t kFeatureExtendedLeaf = 0x1000;
constexpr uint64_t kFeatureRdrand = 0x2000;
constexpr uint64_t kFeatureF16c = 0x4000;

// A leaf 2 cache descriptor and the size in bytes of the cache it names.
struct CacheDescriptor {
    uint32_t descriptor;
    uint32_t size;
};

// Pairs {descriptor, size code} for the caches of 512 KiB and up, then a 0.
constexpr int kPackedCacheRows = 43;
using PackedCacheTable = std::array<uint8_t, 2 * kPackedCacheRows + 1>;

extern "C" {

extern uint64_t ownFeatures;
extern int32_t ownFeaturesAreValid;
extern uint64_t ownFeaturesMask;

extern int32_t cacheSize;
extern int32_t ownStatus;

// Largest cache first, ended by a row with descriptor 0.
extern const CacheDescriptor tableCache[];
extern const PackedCacheTable TableCacheSize;

// Runs CPUID and stores EAX, EBX, ECX, EDX in that order.
void ownGetReg(uint32_t registers[4], int32_t leaf, int32_t subleaf);

int32_t ownGetMaskFeatures(uint64_t* features);
int32_t ownGetFeature(uint64_t bits);
int32_t ownSetFeatureMask(uint64_t mask);

// Size in bytes of the largest cache that leaf 2 names in the table, or -1.
int32_t ownGetCacheSize(const CacheDescriptor* table);
// The same on leaf 2 registers read beforehand.
int32_t ownLookupCacheSize(const uint32_t leaf2[4], const CacheDescriptor* table);
// The same over a packed table; 0 when nothing matches.
int32_t ownLookupPackedCacheSize(const uint32_t leaf2[4], const uint8_t* packed);

// The largest cache named by TableCacheSize, in bytes, for the copy, zero and
// set loops that choose streaming stores; 0 on another vendor or no match.
int32_t ownGetTableCacheSize(void);

// primGetMaxCacheSizeB's size, whatever its status: 0 when unknown.
int32_t owncvGetCacheSize(void);

}  // extern "C"

#endif
