// The 5x5 Sobel pair with replicated borders and the Canny detector on the
// gray of a 1080p frame, each beside OpenCV's cv::Sobel (CV_16S, ksize 5,
// BORDER_REPLICATE) and cv::Canny on the same gradients. bench_effects runs
// the "Canny" effect; its OpenCV counterpart is here.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

const PrimSize kSize = {kvbench::kWidth, kvbench::kHeight};

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

std::vector<uint8_t> GrayFrame() {
    auto frame = kvbench::Frame();
    std::vector<uint8_t> gray(size_t(kvbench::kWidth) * kvbench::kHeight);
    primiRGBToGray_8u_AC4C1R(frame.data(), kvbench::kWidth * 4, gray.data(), kvbench::kWidth, kSize);
    return gray;
}

// A gradient image as the effect allocates it: rows on 32 bytes.
struct Gradient {
    Gradient() : data(primiMalloc_16s_C1(kvbench::kWidth, kvbench::kHeight, &step)) {}
    ~Gradient() { primsFree(data); }
    int32_t step = 0;
    int16_t* data;
};

using SobelBorder = PrimStatus (*)(const uint8_t*, int32_t, int16_t*, int32_t, PrimSize, int32_t, int32_t, uint8_t,
                                   uint8_t*);
using SobelBufferSize = PrimStatus (*)(PrimSize, int32_t, int32_t*);

void RunSobel(benchmark::State& state, SobelBorder filter, SobelBufferSize bufferSize) {
    const auto gray = GrayFrame();
    Gradient out;
    int32_t bytes = 0;
    bufferSize(kSize, MaskSize5x5, &bytes);
    std::vector<uint8_t> work(static_cast<size_t>(bytes));
    for (auto _ : state) {
        filter(gray.data(), kvbench::kWidth, out.data, out.step, kSize, MaskSize5x5, BorderRepl, 0, work.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void BM_SobelHorizBorder5x5(benchmark::State& state) {
    RunSobel(state, primiFilterSobelHorizBorder_8u16s_C1R, primiFilterSobelHorizGetBufferSize_8u16s_C1R);
}
BENCHMARK(BM_SobelHorizBorder5x5)->Unit(benchmark::kMicrosecond);

void BM_SobelNegVertBorder5x5(benchmark::State& state) {
    RunSobel(state, primiFilterSobelNegVertBorder_8u16s_C1R, primiFilterSobelNegVertGetBufferSize_8u16s_C1R);
}
BENCHMARK(BM_SobelNegVertBorder5x5)->Unit(benchmark::kMicrosecond);

// The detector alone, on the gradients that the effect would compute.
void BM_Canny(benchmark::State& state) {
    const auto gray = GrayFrame();
    Gradient dx, dy;
    int32_t sobelBytes = 0, cannyBytes = 0;
    primiFilterSobelHorizGetBufferSize_8u16s_C1R(kSize, MaskSize5x5, &sobelBytes);
    primiCannyGetSize(kSize, &cannyBytes);
    std::vector<uint8_t> work(static_cast<size_t>(sobelBytes > cannyBytes ? sobelBytes : cannyBytes));
    primiFilterSobelNegVertBorder_8u16s_C1R(gray.data(), kvbench::kWidth, dx.data, dx.step, kSize, MaskSize5x5,
                                            BorderRepl, 0, work.data());
    primiFilterSobelHorizBorder_8u16s_C1R(gray.data(), kvbench::kWidth, dy.data, dy.step, kSize, MaskSize5x5,
                                          BorderRepl, 0, work.data());
    std::vector<uint8_t> edges(gray.size());
    for (auto _ : state) {
        primiCanny_16s8u_C1R(dx.data, dx.step, dy.data, dy.step, edges.data(), kvbench::kWidth, kSize, 600.0f, 800.0f,
                             work.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_Canny)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void RunOpenCVSobel(benchmark::State& state, int xOrder, int yOrder) {
    auto grayBytes = GrayFrame();
    cv::Mat gray(kvbench::kHeight, kvbench::kWidth, CV_8UC1, grayBytes.data());
    cv::Mat out;
    for (auto _ : state) {
        cv::Sobel(gray, out, CV_16S, xOrder, yOrder, 5, 1.0, 0.0, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void BM_SobelHorizBorder5x5_OpenCV(benchmark::State& state) { RunOpenCVSobel(state, 0, 1); }
BENCHMARK(BM_SobelHorizBorder5x5_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_SobelNegVertBorder5x5_OpenCV(benchmark::State& state) { RunOpenCVSobel(state, 1, 0); }
BENCHMARK(BM_SobelNegVertBorder5x5_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Canny_OpenCV(benchmark::State& state) {
    auto grayBytes = GrayFrame();
    cv::Mat gray(kvbench::kHeight, kvbench::kWidth, CV_8UC1, grayBytes.data());
    cv::Mat dx, dy, edges;
    cv::Sobel(gray, dx, CV_16S, 1, 0, 5, 1.0, 0.0, cv::BORDER_REPLICATE);
    cv::Sobel(gray, dy, CV_16S, 0, 1, 5, 1.0, 0.0, cv::BORDER_REPLICATE);
    for (auto _ : state) {
        cv::Canny(dx, dy, edges, 600.0, 800.0, false);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_Canny_OpenCV)->Unit(benchmark::kMicrosecond);

// Gray, the 5x5 gradients, Canny with the L1 magnitude at the default
// thresholds, and the edges back into the colour bytes.
void BM_Effect_Canny_OpenCV(benchmark::State& state) {
    auto frameBytes = kvbench::Frame();
    cv::Mat frame(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frameBytes.data());
    cv::Mat gray, dx, dy, edges;
    const int fromTo[] = {0, 0, 0, 1, 0, 2};
    for (auto _ : state) {
        cv::cvtColor(frame, gray, cv::COLOR_BGRA2GRAY);
        cv::Sobel(gray, dx, CV_16S, 1, 0, 5, 1.0, 0.0, cv::BORDER_REPLICATE);
        cv::Sobel(gray, dy, CV_16S, 0, 1, 5, 1.0, 0.0, cv::BORDER_REPLICATE);
        cv::Canny(dx, dy, edges, 600.0, 800.0, false);
        cv::mixChannels(&edges, 1, &frame, 1, fromTo, 3);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_Effect_Canny_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
