/* Kelvarine primitives: image functions on 8-bit pixels.
 *
 * A two-dimensional primitive takes a pointer to the first pixel of its
 * region, a step in bytes between rows and a PrimSize; it returns a
 * PrimStatus: 0 for success, negative for an error (nothing was written),
 * positive for a warning. Each dispatched entry is a jump stub that runs the
 * build picked by primJumpIndex (0 and 1: SSE3, 2: SSSE3, 3: SSE4.1).
 */
#ifndef KELVARINE_PRIMS_H
#define KELVARINE_PRIMS_H

#include <stddef.h>
#include <stdint.h>

#include "kelvarine.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t PrimStatus;

enum {
    PrimOk = 0,
    PrimCacheUnknownWrn = 37,
    PrimCpuOldWrn = 36,
    PrimNoResultWrn = 30,
    PrimNoOverlapWrn = 29,
    PrimCpuCodeWrn = 21,
    PrimCpuVendorWrn = 20,
    PrimBadArgErr = -5,
    PrimSizeErr = -6,
    PrimNullPtrErr = -8,
    PrimMemAllocErr = -9,
    PrimStepErr = -14,
    PrimContextErr = -17,
    PrimMirrorAxisErr = -21,
    PrimInterpolationErr = -22,
    PrimMaskSizeErr = -33,
    PrimAnchorErr = -34,
    PrimDivisorErr = -51,
    PrimChannelsErr = -53,
    PrimDitherLevelsErr = -54,
    PrimDitherNoiseErr = -55,
    PrimCoeffErr = -56,
    PrimRectErr = -57,
    PrimQuadErr = -58,
    PrimStepNotEvenErr = -108,
    PrimNoiseRangeErr = -125
};

typedef struct PrimSize {
    int32_t width;
    int32_t height;
} PrimSize;

typedef struct PrimPoint {
    int32_t x;
    int32_t y;
} PrimPoint;

typedef struct PrimRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} PrimRect;

/* Mask codes: first digit the width, second the height. */
typedef enum PrimMaskSize {
    MaskSize1x3 = 13,
    MaskSize1x5 = 15,
    MaskSize3x1 = 31,
    MaskSize3x3 = 33,
    MaskSize5x1 = 51,
    MaskSize5x5 = 55
} PrimMaskSize;

/* Border word: the kind in the low four bits, side flags above. */
typedef enum PrimBorderType {
    BorderConst = 0,
    BorderRepl = 1,
    BorderWrap = 2,
    BorderMirror = 3,
    BorderMirrorEdge = 4,
    BorderInMem = 6,
    BorderInMemTop = 16,
    BorderInMemBottom = 32,
    BorderInMemLeft = 64,
    BorderInMemRight = 128
} PrimBorderType;

/* Interpolation word: the kernel code, with InterpSmoothEdge as a flag. */
enum {
    InterpNearest = 1,
    InterpLinear = 2,
    InterpCubic = 4,
    InterpCatmullRom = 6,
    InterpLanczos3 = 16
};
#define InterpSmoothEdge ((int32_t)0x80000000u)

/* The record that primiMorphologyInitAlloc_8u_C4R builds: a mask analysed
 * for dilation and erosion, with its working memory. Opaque to callers. */
typedef struct MorphologyState MorphologyState;

/* Dither methods of primiReduceBits_8u_AC4R. */
typedef enum PrimDitherType {
    DitherNone = 0,
    DitherFS = 1,
    DitherJJN = 2,
    DitherStucki = 3,
    DitherBayer = 4
} PrimDitherType;

/* ---- Memory: 32-byte-aligned blocks; any of them goes to primFree. ---- */
KV_API extern void* (*i_malloc)(size_t);
KV_API extern void* (*i_calloc)(size_t, size_t);
KV_API extern void* (*i_realloc)(void*, size_t);
KV_API extern void (*i_free)(void*);

KV_API void* primMalloc(int32_t length);
KV_API void primFree(void* ptr);

/* ---- Processor dispatch and identification. ---- */
KV_API extern int32_t primJumpIndex;
KV_API extern int32_t primJumpIndexLP;
KV_API extern int32_t i_version;
KV_API extern int32_t i_min_version;

KV_API PrimStatus primInit(void);
KV_API PrimStatus primStaticInit(void);
KV_API PrimStatus primInitCpu(int32_t code);
KV_API PrimStatus primStaticInitCpu(int32_t code);
KV_API PrimStatus primGetCpuFeatures(uint64_t* features, uint32_t registers[4]);
KV_API uint64_t primGetEnabledCpuFeatures(void);
KV_API PrimStatus primSetCpuFeaturesMask(uint64_t mask);
KV_API PrimStatus primGetMaxCacheSizeB(int32_t* size);

/* What prim_get_cpu_ident reports. */
typedef struct PrimCpuIdent {
    int32_t stepping;
    int32_t model;
    int32_t family;
    int32_t type;
    int32_t extendedModel;
    int32_t extendedFamily;
    int32_t hasCpuid;
    int32_t hasRdtsc;
    int32_t mmx;
    int32_t sse;
    int32_t sse2;
    int32_t sse3;
    int32_t ssse3;
    int32_t sse41;
    int32_t sse42;
    int32_t movbe;
    int32_t htt;
    int32_t x64;
    int32_t avx;
    int32_t nativeVendor;
} PrimCpuIdent;

KV_API int32_t prim_has_cpuid(void);
KV_API int32_t prim_max_cpuid_input(void);
KV_API int32_t prim_is_native_vendor(void);
KV_API int32_t prim_has_rdtsc(void);
KV_API int32_t prim_is_mmx_extension(void);
KV_API int32_t prim_is_sse_extension(void);
KV_API int32_t prim_is_sse2_extension(void);
KV_API int32_t prim_is_sse3_extension(void);
KV_API int32_t prim_is_ssse3_extension(void);
KV_API int32_t prim_is_sse41_extension(void);
KV_API int32_t prim_is_sse42_extension(void);
KV_API int32_t prim_is_movbe(void);
KV_API int32_t prim_is_htt_extension(void);
KV_API int32_t prim_is_x64_extension(void);
KV_API int32_t prim_is_avx_extension(void);
KV_API int32_t prim_get_cores_on_die(void);
KV_API uint64_t prim_get_cpu_counter(void);
KV_API void prim_get_cpu_ident(PrimCpuIdent* ident);

/* ---- Floating-point control words. ---- */
KV_API uint32_t ps_get_ssx(void);
KV_API uint32_t ps_set_ssx(uint32_t value, uint32_t mask);
KV_API uint32_t prim_set_rc_ssx(uint32_t rounding);
KV_API void prim_set_cw_ssx(uint32_t word);
KV_API uint32_t prim_clear_ssx(void);
KV_API int32_t prim_tst_daz_ssx(void);
KV_API uint32_t ps_get_cw_fpu(void);
KV_API uint32_t ps_get_sw_fpu(void);
KV_API uint32_t ps_clear_fpu(void);
KV_API uint32_t ps_set_cw_fpu(uint32_t value, uint32_t mask);
KV_API uint32_t prim_set_rcpc_fpu(uint32_t value, uint32_t mask);
KV_API void prim_set_cw_fpu(uint32_t word);
KV_API uint32_t prim_control87(uint32_t value, uint32_t mask);
KV_API uint32_t prim_status87(void);
KV_API uint32_t prim_clear87(void);
KV_API int32_t prim_isnan(double value);
KV_API int32_t prim_finite(double value);

/* ---- The dispatched entries, each a jump stub over <name>_arraddr. ---- */
#define PRIM_ENTRY(result, name, params) KV_API result name params;
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KELVARINE_PRIMS_H */
