// Remap of a 1080p frame through identity and whirl maps, beside OpenCV's
// cv::remap on the same maps (one thread, transparent border: pixels mapped
// outside keep the destination, as ours do); and the map-warp effects on
// their first frame, when the maps are built.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "bench_support.h"
#include "kelvarine.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kvbench::kHeight;
using kvbench::kWidth;

struct Maps {
    std::vector<float> x, y;
};

Maps IdentityMaps() {
    Maps maps{std::vector<float>(size_t(kWidth) * kHeight), std::vector<float>(size_t(kWidth) * kHeight)};
    for (int j = 0; j < kHeight; ++j)
        for (int i = 0; i < kWidth; ++i) maps.x[size_t(j) * kWidth + i] = float(i), maps.y[size_t(j) * kWidth + i] = float(j);
    return maps;
}

// The spiral of "Whirl" at its preset: 50 / 3600 radians a pixel.
Maps WhirlMaps() {
    Maps maps = IdentityMaps();
    double cx = kWidth * 0.5, cy = kHeight * 0.5;
    for (int j = 0; j < kHeight; ++j)
        for (int i = 0; i < kWidth; ++i) {
            double dx = i - cx, dy = j - cy, a = 50 / 3600.0 * std::sqrt(dx * dx + dy * dy);
            maps.x[size_t(j) * kWidth + i] = float(dx * std::cos(a) - dy * std::sin(a) + cx);
            maps.y[size_t(j) * kWidth + i] = float(dx * std::sin(a) + dy * std::cos(a) + cy);
        }
    return maps;
}

const Maps& Identity() {
    static const Maps maps = IdentityMaps();
    return maps;
}
const Maps& Whirl() {
    static const Maps maps = WhirlMaps();
    return maps;
}

void Finish(benchmark::State& state) { state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight); }

void BM_Remap(benchmark::State& state, const Maps& (*maps)(), int32_t interpolation) {
    auto src = kvbench::Frame(1), dst = kvbench::Frame(2);
    const Maps& m = maps();
    const int32_t step = kWidth * 4;
    for (auto _ : state) {
        primiRemap_8u_AC4R(src.data(), {kWidth, kHeight}, step, {0, 0, kWidth, kHeight}, m.x.data(), step, m.y.data(),
                           step, dst.data(), step, {kWidth, kHeight}, interpolation);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK_CAPTURE(BM_Remap, Linear_Identity, Identity, InterpLinear)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, Linear_Whirl, Whirl, InterpLinear)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, Nearest_Whirl, Whirl, InterpNearest)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, Cubic_Whirl, Whirl, InterpCubic)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, CatmullRom_Whirl, Whirl, InterpCatmullRom)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, Lanczos3_Whirl, Whirl, InterpLanczos3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap, LinearSmooth_Whirl, Whirl, InterpLinear | InterpSmoothEdge)->Unit(benchmark::kMillisecond);

#ifdef KV_WITH_OPENCV
void BM_Remap_OpenCV(benchmark::State& state, const Maps& (*maps)(), int interpolation) {
    auto src = kvbench::Frame(1), dst = kvbench::Frame(2);
    const Maps& m = maps();
    cv::Mat source(kHeight, kWidth, CV_8UC4, src.data()), destination(kHeight, kWidth, CV_8UC4, dst.data());
    cv::Mat mapX(kHeight, kWidth, CV_32FC1, const_cast<float*>(m.x.data()));
    cv::Mat mapY(kHeight, kWidth, CV_32FC1, const_cast<float*>(m.y.data()));
    int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    for (auto _ : state) {
        cv::remap(source, destination, mapX, mapY, interpolation, cv::BORDER_TRANSPARENT);
        benchmark::ClobberMemory();
    }
    cv::setNumThreads(threads);
    Finish(state);
}
BENCHMARK_CAPTURE(BM_Remap_OpenCV, Linear_Identity, Identity, cv::INTER_LINEAR)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap_OpenCV, Linear_Whirl, Whirl, cv::INTER_LINEAR)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap_OpenCV, Nearest_Whirl, Whirl, cv::INTER_NEAREST)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap_OpenCV, Cubic_Whirl, Whirl, cv::INTER_CUBIC)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Remap_OpenCV, Lanczos4_Whirl, Whirl, cv::INTER_LANCZOS4)->Unit(benchmark::kMillisecond);
#endif

// A fresh instance on each frame: the maps and the buffer are built each
// time, which is what the first frame at a new size costs.
void BM_EffectFirstFrame(benchmark::State& state, int32_t id) {
    auto frame = kvbench::Frame();
    for (auto _ : state) {
        Effect_Base* effect = Kelvarine_NewInstance(id);
        Kelvarine_Proc(effect, frame.data(), kWidth, kHeight);
        Kelvarine_Destory(effect);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK_CAPTURE(BM_EffectFirstFrame, Explode, 1050)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_EffectFirstFrame, Faceted, 1051)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_EffectFirstFrame, Eye, 1052)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_EffectFirstFrame, Whirl, 1053)->Unit(benchmark::kMillisecond);

}  // namespace
