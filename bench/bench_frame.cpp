// The memory-bandwidth yardstick: one 1080p frame copied.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_support.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

void BM_FrameCopy_memcpy(benchmark::State& state) {
    auto source = kvbench::Frame();
    std::vector<uint8_t> destination(kvbench::kFrameBytes);
    for (auto _ : state) {
        memcpy(destination.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kvbench::kFrameBytes));
}
BENCHMARK(BM_FrameCopy_memcpy);

#ifdef KV_WITH_OPENCV
void BM_FrameCopy_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat source(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    cv::Mat destination(kvbench::kHeight, kvbench::kWidth, CV_8UC4);
    for (auto _ : state) {
        source.copyTo(destination);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kvbench::kFrameBytes));
}
BENCHMARK(BM_FrameCopy_OpenCV);
#endif

}  // namespace
