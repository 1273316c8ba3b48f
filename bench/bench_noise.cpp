// Noise and dither at 1080p: Gaussian noise, every dither method, uniform
// vectors, and the CReduceBits effect, beside OpenCV's nearest counterparts.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_support.h"
#include "effects/ReduceBits.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#endif

extern "C" {
#define PRIM_INTERNAL(result, name, params) result m7_##name params;
#include "primitives/frame/internal_entries.h"
#undef PRIM_INTERNAL
}

namespace {

const PrimSize kFrameSize = {kvbench::kWidth, kvbench::kHeight};
constexpr int32_t kStep = kvbench::kWidth * 4;

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

void BM_AddRandGauss(benchmark::State& state) {
    auto frame = kvbench::Frame();
    uint32_t seed = 1;
    for (auto _ : state) {
        primiAddRandGauss_Direct_8u_AC4IR(frame.data(), kStep, kFrameSize, 0, 8, &seed);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_AddRandGauss)->Unit(benchmark::kMillisecond);

// Arguments: dither code, noise; four levels throughout.
void BM_ReduceBits(benchmark::State& state) {
    auto source = kvbench::Frame();
    std::vector<uint8_t> destination(kvbench::kFrameBytes);
    for (auto _ : state) {
        primiReduceBits_8u_AC4R(source.data(), kStep, destination.data(), kStep, kFrameSize,
                                static_cast<int32_t>(state.range(1)), static_cast<int32_t>(state.range(0)), 4);
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_ReduceBits)
    ->ArgsProduct({{DitherNone, DitherFS, DitherJJN, DitherStucki, DitherBayer}, {0, 30}})
    ->ArgNames({"dither", "noise"})
    ->Unit(benchmark::kMillisecond);

void BM_RandUniform_32f(benchmark::State& state) {
    const int32_t length = 1 << 20;
    std::vector<float> values(length);
    PrimRandUniformState_32f* generator = nullptr;
    m7_primsRandUniformInitAlloc_32f(&generator, -1.0f, 1.0f, 0);
    for (auto _ : state) {
        m7_primsRandUniform_32f(values.data(), length, generator);
        benchmark::ClobberMemory();
    }
    m7_primsRandUniformFree_32f(generator);
    state.SetItemsProcessed(int64_t(state.iterations()) * length);
}
BENCHMARK(BM_RandUniform_32f)->Unit(benchmark::kMillisecond);

void BM_Effect_CReduceBits(benchmark::State& state) {
    auto frame = kvbench::Frame();
    Effect_Base* effect = CReduceBits::CreateInstance();
    EffectArgs args = {{DitherFS, 0, 4}};
    effect->SetArgs(&args);
    for (auto _ : state) {
        effect->Proc(frame.data(), kvbench::kWidth, kvbench::kHeight);
        benchmark::ClobberMemory();
    }
    delete effect;
    CountPixels(state);
}
BENCHMARK(BM_Effect_CReduceBits)->Unit(benchmark::kMillisecond);

#ifdef KV_WITH_OPENCV
// Normal values written over a 1080p four-channel frame (OpenCV has no
// added-noise call; this is the generation part).
void BM_AddRandGauss_OpenCV_randn(benchmark::State& state) {
    cv::Mat frame(kvbench::kHeight, kvbench::kWidth, CV_8UC4);
    cv::RNG rng(1);
    for (auto _ : state) {
        rng.fill(frame, cv::RNG::NORMAL, cv::Scalar::all(0), cv::Scalar::all(8));
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}
BENCHMARK(BM_AddRandGauss_OpenCV_randn)->Unit(benchmark::kMillisecond);

void BM_RandUniform_32f_OpenCV_randu(benchmark::State& state) {
    const int32_t length = 1 << 20;
    cv::Mat values(1, length, CV_32F);
    cv::RNG rng(0);
    for (auto _ : state) {
        rng.fill(values, cv::RNG::UNIFORM, -1.0f, 1.0f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * length);
}
BENCHMARK(BM_RandUniform_32f_OpenCV_randu)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
