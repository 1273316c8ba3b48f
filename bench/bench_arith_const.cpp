// Constant arithmetic on a 1080p frame: add and subtract a constant in place,
// and one frame from another, beside OpenCV's saturating add and subtract.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "frame_loop.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#endif

extern "C" PrimStatus m7_primiSub_8u_AC4RSfs(const uint8_t* src1, int32_t src1Step, const uint8_t* src2,
                                             int32_t src2Step, uint8_t* dst, int32_t dstStep, PrimSize size,
                                             int32_t scaleFactor);

namespace {

using kvbench::RunPerFrame;

constexpr int32_t kStep = kvbench::kWidth * 4;
constexpr PrimSize kSize = {kvbench::kWidth, kvbench::kHeight};
const uint8_t kConstant[3] = {12, 40, 3};

// Scale factor 0 saturates; 1 halves with rounding.
void BM_AddC(benchmark::State& state) {
    auto frame = kvbench::Frame();
    RunPerFrame(state, [&] { primiAddC_8u_AC4IRSfs(kConstant, frame.data(), kStep, kSize, int32_t(state.range(0))); });
}
BENCHMARK(BM_AddC)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_SubC(benchmark::State& state) {
    auto frame = kvbench::Frame();
    RunPerFrame(state, [&] { primiSubC_8u_AC4IRSfs(kConstant, frame.data(), kStep, kSize, int32_t(state.range(0))); });
}
BENCHMARK(BM_SubC)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Sub(benchmark::State& state) {
    auto first = kvbench::Frame(1), second = kvbench::Frame(2), result = kvbench::Frame(3);
    RunPerFrame(state, [&] {
        m7_primiSub_8u_AC4RSfs(first.data(), kStep, second.data(), kStep, result.data(), kStep, kSize,
                               int32_t(state.range(0)));
    });
}
BENCHMARK(BM_Sub)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void BM_AddC_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    RunPerFrame(state, [&] { cv::add(image, cv::Scalar(12, 40, 3, 0), image); });
}
BENCHMARK(BM_AddC_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_SubC_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    RunPerFrame(state, [&] { cv::subtract(image, cv::Scalar(12, 40, 3, 0), image); });
}
BENCHMARK(BM_SubC_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Sub_OpenCV(benchmark::State& state) {
    auto first = kvbench::Frame(1), second = kvbench::Frame(2), result = kvbench::Frame(3);
    cv::Mat a(kvbench::kHeight, kvbench::kWidth, CV_8UC4, first.data());
    cv::Mat b(kvbench::kHeight, kvbench::kWidth, CV_8UC4, second.data());
    cv::Mat c(kvbench::kHeight, kvbench::kWidth, CV_8UC4, result.data());
    RunPerFrame(state, [&] { cv::subtract(b, a, c); });
}
BENCHMARK(BM_Sub_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
