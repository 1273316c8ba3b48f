// The combined tone effect with all three stages at work (bench_effects runs
// it at its defaults, which do nothing), and OpenCV counterparts of the tone
// effects: a saturating subtract for "Brightness", a byte table for
// "Contrast" and a colour matrix for "Saturation".
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "kelvarine.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace {

void Finish(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

void BM_Effect_BrightnessAndContrastAndSaturation_AllStages(benchmark::State& state) {
    auto frame = kvbench::Frame();
    Effect_Base* effect = Kelvarine_NewInstance(1040);
    EffectArgs args = {{20, 30, 40, 0, 0, 0}};
    Kelvarine_SetEffectArgs(effect, &args);
    for (auto _ : state) {
        Kelvarine_Proc(effect, frame.data(), kvbench::kWidth, kvbench::kHeight);
        benchmark::ClobberMemory();
    }
    Kelvarine_Destory(effect);
    Finish(state);
}
BENCHMARK(BM_Effect_BrightnessAndContrastAndSaturation_AllStages)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV

void BM_Effect_Brightness_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    for (auto _ : state) {
        cv::subtract(image, cv::Scalar(50, 50, 50, 0), image);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Effect_Brightness_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Effect_Contrast_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    cv::Mat table(1, 256, CV_8UC4);
    for (int v = 0; v < 256; ++v) {
        int d = v > 127 ? v - 127 : 127 - v, q = d * 4 / 255, c = v > 127 ? v + q : v - q;
        uint8_t out = static_cast<uint8_t>(c < 0 ? 0 : (c > 255 ? 255 : c));
        table.at<cv::Vec4b>(v) = cv::Vec4b(out, out, out, static_cast<uint8_t>(v));
    }
    for (auto _ : state) {
        cv::LUT(image, table, image);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Effect_Contrast_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Effect_Saturation_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    const float keep = 259.0f / 256.0f, share = (1.0f - keep) / 3.0f;
    cv::Matx44f saturate(keep + share, share, share, 0, share, keep + share, share, 0, share, share, keep + share, 0,
                         0, 0, 0, 1);
    for (auto _ : state) {
        cv::transform(image, image, saturate);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Effect_Saturation_OpenCV)->Unit(benchmark::kMicrosecond);

#endif

}  // namespace
