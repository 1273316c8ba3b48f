// The jump index, and for every dispatched entry its table and its stub.
//
// A table <name>_arraddr holds four pointers, one per processor level:
// m7_ (below SSE3), m7_ (SSE3), u8_ (SSSE3), y8_ (SSE4.1). The stub under the
// plain name loads primJumpIndex and jumps through slot index of its table:
// no frame of its own, no argument touched, no range check. It uses only
// r10 and r11, which no argument travels in.
//
// Nothing in the library sets the index: at load it is 0 and every stub runs
// the baseline build until a host calls primInit or one of its siblings.
#include "kelvarine_prims.h"

extern "C" {

KV_API int32_t primJumpIndex = 0;
KV_API int32_t primJumpIndexLP = 0;

// A library-local name of the index, so that a stub reads it PC-relative.
extern int32_t kvJumpIndexLocal __attribute__((alias("primJumpIndex"), visibility("hidden")));

}  // extern "C"

#define PRIM_STUB_ASM(name)                                             \
    ".pushsection .data.rel." #name "_arraddr,\"aw\",@progbits\n"       \
    ".p2align 3\n"                                                      \
    ".globl " #name "_arraddr\n"                                        \
    ".type " #name "_arraddr,@object\n"                                 \
    ".size " #name "_arraddr,32\n"                                      \
    #name "_arraddr:\n"                                                 \
    ".Ltable_" #name ":\n"                                              \
    ".quad m7_" #name ", m7_" #name ", u8_" #name ", y8_" #name "\n"    \
    ".popsection\n"                                                     \
    ".pushsection .text." #name ",\"ax\",@progbits\n"                   \
    ".p2align 4\n"                                                      \
    ".globl " #name "\n"                                                \
    ".type " #name ",@function\n"                                       \
    #name ":\n"                                                         \
    "movslq kvJumpIndexLocal(%rip), %r11\n"                             \
    "leaq .Ltable_" #name "(%rip), %r10\n"                              \
    "jmp *(%r10,%r11,8)\n"                                              \
    ".size " #name ", .-" #name "\n"                                    \
    ".popsection\n"

#define PRIM_ENTRY(result, name, params) asm(PRIM_STUB_ASM(name));
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY
