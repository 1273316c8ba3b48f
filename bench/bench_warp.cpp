// Rotations and the shear on a 1080p frame, as the effects call them, beside
// OpenCV's warpAffine (bilinear) and rotate.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kvbench::kHeight;
using kvbench::kWidth;
using kvbench::kStep;
using kvbench::kSize;
constexpr PrimRect kWhole = {0, 0, kWidth, kHeight};
constexpr int32_t kSmoothLinear = InterpLinear | InterpSmoothEdge;

void Finish(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight);
}

// Angle in degrees by the argument, about the centre pixel: 90 takes the
// exact path, 60 the bilinear warp with softened edges.
void BM_RotateCenter(benchmark::State& state) {
    auto frame = kvbench::Frame(1), result = kvbench::Frame(2);
    for (auto _ : state) {
        primiRotateCenter_8u_AC4R(frame.data(), kSize, kStep, kWhole, result.data(), kStep, kWhole,
                                  double(state.range(0)), kWidth / 2, kHeight / 2, kSmoothLinear);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_RotateCenter)->Arg(60)->Arg(90)->Arg(180)->Unit(benchmark::kMicrosecond);

// The shear of the "Shear" preset, -0.1 on both axes.
void BM_Shear(benchmark::State& state) {
    auto frame = kvbench::Frame(1), result = kvbench::Frame(2);
    for (auto _ : state) {
        primiShear_8u_AC4R(frame.data(), kSize, kStep, kWhole, result.data(), kStep, kWhole, -0.1, -0.1,
                           kHeight * 0.05, kWidth * 0.05, kSmoothLinear);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Shear)->Unit(benchmark::kMicrosecond);

// The rotation without the edge pass, and with the nearest kernel.
void BM_RotateCenter_Kernel(benchmark::State& state) {
    auto frame = kvbench::Frame(1), result = kvbench::Frame(2);
    for (auto _ : state) {
        primiRotateCenter_8u_AC4R(frame.data(), kSize, kStep, kWhole, result.data(), kStep, kWhole, 60.0, kWidth / 2,
                                  kHeight / 2, int32_t(state.range(0)));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_RotateCenter_Kernel)
    ->Arg(InterpNearest)
    ->Arg(InterpLinear)
    ->Arg(InterpCubic)
    ->Arg(InterpCatmullRom)
    ->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void WarpWithOpenCV(benchmark::State& state, const cv::Mat& matrix) {
    auto frame = kvbench::Frame(1), result = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data()), warped(kHeight, kWidth, CV_8UC4, result.data());
    for (auto _ : state) {
        cv::warpAffine(image, warped, matrix, image.size(), cv::INTER_LINEAR, cv::BORDER_TRANSPARENT);
        benchmark::ClobberMemory();
    }
    Finish(state);
}

// OpenCV's matrix maps source to destination like ours; its positive angle
// turns counter-clockwise on the screen too.
void BM_RotateCenter_OpenCV(benchmark::State& state) {
    WarpWithOpenCV(state, cv::getRotationMatrix2D(cv::Point2f(kWidth / 2, kHeight / 2), 60.0, 1.0));
}
BENCHMARK(BM_RotateCenter_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Shear_OpenCV(benchmark::State& state) {
    WarpWithOpenCV(state, (cv::Mat_<double>(2, 3) << 1.0, -0.1, kHeight * 0.05, -0.1, 1.0, kWidth * 0.05));
}
BENCHMARK(BM_Shear_OpenCV)->Unit(benchmark::kMicrosecond);

// cv::rotate turns the whole frame into a frame of the turned size.
void BM_Rotate90_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame(1), result = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data()), turned(kWidth, kHeight, CV_8UC4, result.data());
    for (auto _ : state) {
        cv::rotate(image, turned, cv::ROTATE_90_COUNTERCLOCKWISE);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Rotate90_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
