// Compiling one primitive source into one of the three builds.
//
// Every source under primitives/ (but the dispatch core) is compiled three
// times, with PRIM_BUILD set to m7 (SSE3), u8 (SSSE3) or y8 (SSE4.1) and the
// matching instruction set. PRIM(name) gives the build's own name of an entry,
// m7_name and so on, which the jump stubs reach through their tables.
//
// Code shared inside a build lives in namespace PRIM_BUILD, so that each build
// keeps its own copy of every inline helper: the linker must never fold an
// SSE4.1 copy into the SSE3 build. For the same reason build code does not
// instantiate standard-library templates on plain types.
#ifndef KV_PRIMITIVES_FRAME_BUILD_H
#define KV_PRIMITIVES_FRAME_BUILD_H

#include "kelvarine_prims.h"

#ifndef PRIM_BUILD
#error "primitive sources are compiled with PRIM_BUILD set to m7, u8 or y8"
#endif

#define PRIM_CONCAT2(a, b) a##b
#define PRIM_CONCAT(a, b) PRIM_CONCAT2(a, b)
#define PRIM(name) PRIM_CONCAT(PRIM_CONCAT(PRIM_BUILD, _), name)

// This build's entries, callable directly from code of the same build.
#define PRIM_ENTRY(result, name, params) extern "C" result PRIM(name) params;
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY

// This build's internal primitives, which have no stub.
#define PRIM_INTERNAL(result, name, params) extern "C" result PRIM(name) params;
#include "primitives/frame/internal_entries.h"
#undef PRIM_INTERNAL

#endif
