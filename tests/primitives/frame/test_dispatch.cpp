// Every dispatched entry's table names its three builds, and every stub
// jumps through the slot the index picks.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "kelvarine_prims.h"

extern "C" {
#define PRIM_ENTRY(result, name, params) \
    extern void* name##_arraddr[4];      \
    result m7_##name params;             \
    result u8_##name params;             \
    result y8_##name params;
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY
}

namespace {

struct Entry {
    const char* name;
    void** table;
    void* builds[3];
};

const std::vector<Entry>& AllEntries() {
    static const std::vector<Entry> entries = {
#define PRIM_ENTRY(result, name, params)                                      \
    {#name, name##_arraddr,                                                   \
     {reinterpret_cast<void*>(m7_##name), reinterpret_cast<void*>(u8_##name), \
      reinterpret_cast<void*>(y8_##name)}},
#include "kelvarine_prim_entries.h"
#undef PRIM_ENTRY
    };
    return entries;
}

TEST(Dispatch, TablesHoldBaselineTwiceThenSsse3ThenSse41) {
    for (const Entry& e : AllEntries()) {
        EXPECT_EQ(e.table[0], e.builds[0]) << e.name;
        EXPECT_EQ(e.table[1], e.builds[0]) << e.name;
        EXPECT_EQ(e.table[2], e.builds[1]) << e.name;
        EXPECT_EQ(e.table[3], e.builds[2]) << e.name;
        EXPECT_NE(e.builds[0], e.builds[1]) << e.name;
        EXPECT_NE(e.builds[1], e.builds[2]) << e.name;
    }
}

// Spies put into the table of primsFree record which slot the stub took and
// the argument it arrived with.
int gSlotTaken = -1;
void* gArgumentSeen = nullptr;
template <int Slot>
void Spy(void* p) {
    gSlotTaken = Slot;
    gArgumentSeen = p;
}

TEST(Dispatch, StubJumpsThroughTheSlotOfTheIndex) {
    void* saved[4];
    memcpy(saved, primsFree_arraddr, sizeof saved);
    void* spies[4] = {reinterpret_cast<void*>(Spy<0>), reinterpret_cast<void*>(Spy<1>),
                      reinterpret_cast<void*>(Spy<2>), reinterpret_cast<void*>(Spy<3>)};
    memcpy(primsFree_arraddr, spies, sizeof spies);
    int token = 0;
    for (int index = 0; index < 4; ++index) {
        primJumpIndex = index;
        primsFree(&token);
        EXPECT_EQ(gSlotTaken, index);
        EXPECT_EQ(gArgumentSeen, &token);
    }
    primJumpIndex = 0;
    memcpy(primsFree_arraddr, saved, sizeof saved);
}

TEST(Dispatch, FreshlyLoadedLibraryRunsTheBaseline) {
    void* library = dlopen(KV_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    auto* index = static_cast<int32_t*>(dlsym(library, "primJumpIndex"));
    auto* indexLP = static_cast<int32_t*>(dlsym(library, "primJumpIndexLP"));
    ASSERT_NE(index, nullptr);
    ASSERT_NE(indexLP, nullptr);
    EXPECT_EQ(*index, 0);
    EXPECT_EQ(*indexLP, 0);

    // The stub of the loaded library, at index 0, runs its own first slot.
    void** table = static_cast<void**>(dlsym(library, "primsFree_arraddr"));
    auto stub = reinterpret_cast<void (*)(void*)>(dlsym(library, "primsFree"));
    ASSERT_NE(table, nullptr);
    ASSERT_NE(stub, nullptr);
    void* saved = table[0];
    table[0] = reinterpret_cast<void*>(Spy<0>);
    gSlotTaken = -1;
    stub(nullptr);
    EXPECT_EQ(gSlotTaken, 0);
    table[0] = saved;
    dlclose(library);
}

}  // namespace
