// Colour twist, gamma lookups and gray conversion on a 1080p frame, each
// beside its closest OpenCV counterpart.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

const float kEmphase[3][4] = {{1.4f, -0.2f, -0.2f, -0.4f}, {-0.2f, 1.4f, -0.2f, -0.55f}, {-0.2f, -0.2f, 1.4f, -0.4f}};
const PrimSize kSize = {kvbench::kWidth, kvbench::kHeight};
constexpr int32_t kStep = kvbench::kWidth * 4;

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

// The frame is restored before every run so that repeated passes do not
// drive it to a constant.
template <typename Primitive>
void RunInPlace(benchmark::State& state, Primitive primitive) {
    const auto original = kvbench::Frame();
    auto frame = original;
    for (auto _ : state) {
        state.PauseTiming();
        frame = original;
        state.ResumeTiming();
        primitive(frame.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void BM_ColorTwist(benchmark::State& state) {
    RunInPlace(state, [](uint8_t* frame) { primiColorTwist32f_8u_AC4IR(frame, kStep, kSize, kEmphase); });
}
BENCHMARK(BM_ColorTwist)->Unit(benchmark::kMicrosecond);

void BM_GammaFwd(benchmark::State& state) {
    RunInPlace(state, [](uint8_t* frame) { primiGammaFwd_8u_AC4IR(frame, kStep, kSize); });
}
BENCHMARK(BM_GammaFwd)->Unit(benchmark::kMicrosecond);

void BM_GammaInv(benchmark::State& state) {
    RunInPlace(state, [](uint8_t* frame) { primiGammaInv_8u_AC4IR(frame, kStep, kSize); });
}
BENCHMARK(BM_GammaInv)->Unit(benchmark::kMicrosecond);

void BM_RGBToGray(benchmark::State& state) {
    auto frame = kvbench::Frame();
    std::vector<uint8_t> gray(size_t(kvbench::kWidth) * kvbench::kHeight);
    for (auto _ : state) {
        primiRGBToGray_8u_AC4C1R(frame.data(), kStep, gray.data(), kvbench::kWidth, kSize);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_RGBToGray)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void BM_ColorTwist_OpenCV(benchmark::State& state) {
    cv::Matx44f twist(kEmphase[0][0], kEmphase[0][1], kEmphase[0][2], kEmphase[0][3],
                      kEmphase[1][0], kEmphase[1][1], kEmphase[1][2], kEmphase[1][3],
                      kEmphase[2][0], kEmphase[2][1], kEmphase[2][2], kEmphase[2][3], 0, 0, 0, 1);
    RunInPlace(state, [&twist](uint8_t* frame) {
        cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame);
        cv::transform(image, image, twist);
    });
}
BENCHMARK(BM_ColorTwist_OpenCV)->Unit(benchmark::kMicrosecond);

// OpenCV's fast path: a 3x4 matrix on three-byte pixels, into another image.
void BM_ColorTwist_OpenCV_C3(benchmark::State& state) {
    cv::Matx34f twist(&kEmphase[0][0]);
    auto frame = kvbench::Frame();
    cv::Mat source(kvbench::kHeight, kvbench::kWidth, CV_8UC3, frame.data());
    cv::Mat destination(kvbench::kHeight, kvbench::kWidth, CV_8UC3);
    for (auto _ : state) {
        cv::transform(source, destination, twist);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_ColorTwist_OpenCV_C3)->Unit(benchmark::kMicrosecond);

// A 4-channel table that leaves the fourth byte as it is.
void BM_GammaFwd_OpenCV(benchmark::State& state) {
    cv::Mat table(1, 256, CV_8UC4);
    for (int i = 0; i < 256; ++i) table.at<cv::Vec4b>(i) = cv::Vec4b(255 - i, 255 - i, 255 - i, i);
    RunInPlace(state, [&table](uint8_t* frame) {
        cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame);
        cv::LUT(image, table, image);
    });
}
BENCHMARK(BM_GammaFwd_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_RGBToGray_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    cv::Mat gray(kvbench::kHeight, kvbench::kWidth, CV_8UC1);
    for (auto _ : state) {
        cv::cvtColor(image, gray, cv::COLOR_BGRA2GRAY);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_RGBToGray_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
