// The timing loop of a case that works on one 1080p frame per iteration.
#ifndef KV_BENCH_FRAME_LOOP_H
#define KV_BENCH_FRAME_LOOP_H

#include <benchmark/benchmark.h>

#include "bench_support.h"

namespace kvbench {

// Runs work once per iteration; a frame's bytes count as processed.
template <class Work>
void RunPerFrame(benchmark::State& state, Work work) {
    for (auto _ : state) {
        work();
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kFrameBytes));
}

}  // namespace kvbench

#endif
