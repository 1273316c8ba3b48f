// Primitive tests run under every jump index, so that each build is checked.
#ifndef KV_TESTS_JUMP_INDEX_H
#define KV_TESTS_JUMP_INDEX_H

#include <gtest/gtest.h>

#include "kelvarine_prims.h"

// A test suite over the four dispatch slots: derive, then write
//   TEST_P(MySuite, Case) { ... }  and  KV_ALL_JUMP_INDICES(MySuite);
// Inside a test, primitives called by their plain names run the build of
// slot GetParam(); the index is put back to 0 afterwards.
class EveryJumpIndex : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { primJumpIndex = GetParam(); }
    void TearDown() override { primJumpIndex = 0; }
};

#define KV_ALL_JUMP_INDICES(suite)                                              \
    INSTANTIATE_TEST_SUITE_P(Index, suite, ::testing::Values(0, 1, 2, 3),       \
                             [](const ::testing::TestParamInfo<int>& info) {     \
                                 return "jump" + std::to_string(info.param);     \
                             })

// Build-internal primitives have no stub: a test picks the copy of the build
// that a jump index would run, with KV_BUILD(name, index).
extern "C" {
#define PRIM_INTERNAL(result, name, params) \
    result m7_##name params;                 \
    result u8_##name params;                 \
    result y8_##name params;
#include "primitives/frame/internal_entries.h"
#undef PRIM_INTERNAL
}

namespace kvtest {
template <typename Function>
Function PickBuild(int index, Function m7, Function u8, Function y8) {
    return index <= 1 ? m7 : (index == 2 ? u8 : y8);
}
}  // namespace kvtest

#define KV_BUILD(name, index) ::kvtest::PickBuild(index, m7_##name, u8_##name, y8_##name)

#endif
