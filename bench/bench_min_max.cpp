// Min and max filters, dilation and erosion on a 1080p frame, beside
// OpenCV's erode and dilate with the same structuring element, replicated
// borders, four channels.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kvbench::kHeight;
using kvbench::kWidth;
using kvbench::kStep;
using kvbench::kSize;

void Finish(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight);
}

// Square masks of edge state.range(0), anchored in the middle.
template <bool Max>
void BM_FilterMinMax(benchmark::State& state) {
    const int32_t edge = int32_t(state.range(0));
    auto src = kvbench::Frame(1), dst = kvbench::Frame(2);
    int32_t bytes = 0;
    primiFilterMaxGetBufferSize_8u_C4R(kWidth, {edge, edge}, &bytes);
    std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
    auto filter = Max ? primiFilterMaxBorderReplicate_8u_C4R : primiFilterMinBorderReplicate_8u_C4R;
    for (auto _ : state) {
        filter(src.data(), kStep, dst.data(), kStep, kSize, {edge, edge}, {edge / 2, edge / 2}, buffer.data());
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK_TEMPLATE(BM_FilterMinMax, true)->Arg(3)->Arg(15)->Arg(101)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FilterMinMax, false)->Arg(3)->Arg(15)->Arg(101)->Unit(benchmark::kMillisecond);

// The structuring elements: 0 a full square, 1 a plus, 2 random with about
// half the elements set; all 5 x 5 with the anchor in the middle.
constexpr int32_t kEdge = 5;
std::vector<uint8_t> Element(int64_t shape) {
    std::vector<uint8_t> mask(kEdge * kEdge, 1);
    std::mt19937 random(5);
    for (int32_t j = 0; j < kEdge; ++j)
        for (int32_t i = 0; i < kEdge; ++i) {
            if (shape == 1) mask[j * kEdge + i] = (i == kEdge / 2 || j == kEdge / 2) ? 1 : 0;
            if (shape == 2) mask[j * kEdge + i] = random() % 2;
        }
    mask[(kEdge / 2) * kEdge + kEdge / 2] = 1;
    return mask;
}

template <bool Dilate>
void BM_Morphology(benchmark::State& state) {
    auto src = kvbench::Frame(1), dst = kvbench::Frame(2);
    const std::vector<uint8_t> mask = Element(state.range(0));
    MorphologyState* morphology = nullptr;
    primiMorphologyInitAlloc_8u_C4R(kWidth, mask.data(), {kEdge, kEdge}, {kEdge / 2, kEdge / 2}, &morphology);
    auto filter = Dilate ? primiDilateBorderReplicate_8u_C4R : primiErodeBorderReplicate_8u_C4R;
    for (auto _ : state) {
        filter(src.data(), kStep, dst.data(), kStep, kSize, BorderRepl, morphology);
        benchmark::ClobberMemory();
    }
    primiMorphologyFree(morphology);
    Finish(state);
}
BENCHMARK_TEMPLATE(BM_Morphology, true)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Morphology, false)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

#ifdef KV_WITH_OPENCV
// On one thread, as the library runs.
void RunOpenCV(benchmark::State& state, bool dilate, const cv::Mat& element) {
    const int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    auto src = kvbench::Frame(1), dst = kvbench::Frame(2);
    cv::Mat in(kHeight, kWidth, CV_8UC4, src.data()), out(kHeight, kWidth, CV_8UC4, dst.data());
    for (auto _ : state) {
        if (dilate) {
            cv::dilate(in, out, element, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        } else {
            cv::erode(in, out, element, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        }
        benchmark::ClobberMemory();
    }
    cv::setNumThreads(threads);
    Finish(state);
}

template <bool Max>
void BM_FilterMinMax_OpenCV(benchmark::State& state) {
    const int edge = int(state.range(0));
    RunOpenCV(state, Max, cv::getStructuringElement(cv::MORPH_RECT, cv::Size(edge, edge)));
}
BENCHMARK_TEMPLATE(BM_FilterMinMax_OpenCV, true)->Arg(3)->Arg(15)->Arg(101)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FilterMinMax_OpenCV, false)->Arg(3)->Arg(15)->Arg(101)->Unit(benchmark::kMillisecond);

template <bool Dilate>
void BM_Morphology_OpenCV(benchmark::State& state) {
    std::vector<uint8_t> mask = Element(state.range(0));
    RunOpenCV(state, Dilate, cv::Mat(kEdge, kEdge, CV_8UC1, mask.data()).clone());
}
BENCHMARK_TEMPLATE(BM_Morphology_OpenCV, true)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_Morphology_OpenCV, false)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
