// Every available effect of the catalog on a 1080p frame, through the host
// interface, in steady state (the instance has seen a frame of this size).
#include <benchmark/benchmark.h>

#include <string>

#include "bench_support.h"
#include "kelvarine.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

void RunEffect(benchmark::State& state, int32_t id) {
    auto frame = kvbench::Frame();
    Effect_Base* effect = Kelvarine_NewInstance(id);
    Kelvarine_Proc(effect, frame.data(), kvbench::kWidth, kvbench::kHeight);
    for (auto _ : state) {
        Kelvarine_Proc(effect, frame.data(), kvbench::kWidth, kvbench::kHeight);
        benchmark::ClobberMemory();
    }
    Kelvarine_Destory(effect);
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

const bool kRegistered = [] {
    for (int32_t i = 0; i < Kelvarine_AllEffectCount(); ++i) {
        int32_t id = Kelvarine_EffectID(i);
        Effect_Base* probe = Kelvarine_NewInstance(id);
        if (probe == nullptr) continue;
        Kelvarine_Destory(probe);
        std::string name = std::string("BM_Effect/") + Kelvarine_EffectName(id);
        benchmark::RegisterBenchmark(name.c_str(), RunEffect, id)->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

#ifdef KV_WITH_OPENCV
// The closest OpenCV counterpart of "Gray": the mean of three channels by a
// 4x4 colour matrix.
void BM_Effect_Gray_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    const float third = 1.0f / 3.0f;
    cv::Matx44f mean(third, third, third, 0, third, third, third, 0, third, third, third, 0, 0, 0, 0, 1);
    for (auto _ : state) {
        cv::transform(image, image, mean);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}
BENCHMARK(BM_Effect_Gray_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
