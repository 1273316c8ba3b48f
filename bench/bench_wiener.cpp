// The Wiener filter on a 1080p frame with 3x3 and 7x7 windows. OpenCV has no
// Wiener filter; its box filter of the same window is the yardstick of what
// one local mean costs.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_support.h"
#include "frame_loop.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kvbench::kHeight;
using kvbench::kWidth;
using kvbench::kSize;

// Arguments: mask edge, jump index, and whether the noise is estimated.
void BM_Wiener(benchmark::State& state) {
    const int32_t edge = int32_t(state.range(0));
    const int32_t half = edge / 2;
    const PrimSize mask = {edge, edge};
    const int32_t paddedStep = (kWidth + edge - 1) * 4;
    std::vector<uint8_t> padded(size_t(paddedStep) * (kHeight + edge - 1));
    primiCopyReplicateBorder_8u_AC4R(kvbench::Frame(1).data(), kWidth * 4, kSize, padded.data(), paddedStep,
                                     {kWidth + edge - 1, kHeight + edge - 1}, half, half);
    auto frame = kvbench::Frame(2);
    int32_t bufferSize;
    primiFilterWienerGetBufferSize(kSize, mask, 4, &bufferSize);
    std::vector<uint8_t> buffer(bufferSize);
    const float level = state.range(2) ? 0.0f : 0.02f;
    primJumpIndex = int32_t(state.range(1));
    kvbench::RunPerFrame(state, [&] {
        float noise[3] = {level, level, level};
        primiFilterWiener_8u_AC4R(padded.data() + half * paddedStep + 4 * half, paddedStep, frame.data(), kWidth * 4,
                                  kSize, mask, {half, half}, noise, buffer.data());
    });
    primJumpIndex = 0;
}
BENCHMARK(BM_Wiener)
    ->ArgNames({"mask", "jump", "estimate"})
    ->Args({3, 0, 0})
    ->Args({3, 3, 0})
    ->Args({7, 0, 0})
    ->Args({7, 3, 0})
    ->Args({3, 0, 1})
    ->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void BM_Wiener_OpenCVBoxFilter(benchmark::State& state) {
    const int edge = int(state.range(0));
    auto source = kvbench::Frame(1);
    cv::Mat image(kHeight, kWidth, CV_8UC4, source.data());
    cv::Mat filtered(kHeight, kWidth, CV_8UC4);
    kvbench::RunPerFrame(state, [&] {
        cv::boxFilter(image, filtered, -1, cv::Size(edge, edge), cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_Wiener_OpenCVBoxFilter)->ArgName("mask")->Arg(3)->Arg(7)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
