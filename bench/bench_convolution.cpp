// The box filter, the general convolution and the fixed-kernel filters on a
// 1080p frame, each beside its closest OpenCV counterpart. Our primitives
// read a padded copy; OpenCV makes its own border (replicated), and runs on
// one thread here so that both sides use one core.
#include <benchmark/benchmark.h>

#include <utility>
#include <vector>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

const PrimSize kSize = {kvbench::kWidth, kvbench::kHeight};
constexpr int32_t kStep = kvbench::kWidth * 4;
// Enough border for the largest mask here, 91 by 91.
constexpr int kBorder = 45;

// The frame inside a border of random pixels.
struct PaddedFrame {
    PaddedFrame()
        : step((kvbench::kWidth + 2 * kBorder) * 4),
          bytes(size_t(step) * (kvbench::kHeight + 2 * kBorder)) {
        auto noise = kvbench::Frame(7);
        for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = noise[i % noise.size()];
    }
    const uint8_t* inner() const { return bytes.data() + size_t(kBorder) * step + 4 * kBorder; }
    int32_t step;
    std::vector<uint8_t> bytes;
};

void CountPixels(benchmark::State& state) {
    state.SetItemsProcessed(int64_t(state.iterations()) * kvbench::kWidth * kvbench::kHeight);
}

template <class Filter>
void RunFromPadded(benchmark::State& state, Filter filter) {
    const PaddedFrame src;
    auto dst = kvbench::Frame(2);
    for (auto _ : state) {
        filter(src.inner(), src.step, dst.data());
        benchmark::ClobberMemory();
    }
    CountPixels(state);
}

void BM_FilterBox(benchmark::State& state) {
    const int32_t edge = int32_t(state.range(0));
    RunFromPadded(state, [edge](const uint8_t* src, int32_t srcStep, uint8_t* dst) {
        primiFilterBox_8u_AC4R(src, srcStep, dst, kStep, kSize, {edge, edge}, {edge / 2, edge / 2});
    });
}
BENCHMARK(BM_FilterBox)->Arg(3)->Arg(10)->Arg(91)->Unit(benchmark::kMicrosecond);

// 3x3: the Gaussian weights over 16 (a shift); 7x7: ones over 49 (a float
// reciprocal).
void BM_Filter(benchmark::State& state) {
    const int32_t edge = int32_t(state.range(0));
    std::vector<int32_t> kernel = edge == 3 ? std::vector<int32_t>{1, 2, 1, 2, 4, 2, 1, 2, 1}
                                            : std::vector<int32_t>(size_t(edge) * edge, 1);
    const int32_t divisor = edge == 3 ? 16 : edge * edge;
    RunFromPadded(state, [&](const uint8_t* src, int32_t srcStep, uint8_t* dst) {
        primiFilter_8u_AC4R(src, srcStep, dst, kStep, kSize, kernel.data(), {edge, edge}, {edge / 2, edge / 2},
                            divisor);
    });
}
BENCHMARK(BM_Filter)->Arg(3)->Arg(7)->Unit(benchmark::kMicrosecond);

using FixedFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize);

template <int32_t kMask, PrimStatus (*kFilter)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t)>
PrimStatus WithMask(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep, PrimSize size) {
    return kFilter(src, srcStep, dst, dstStep, size, kMask);
}

const bool kFixedFiltersRegistered = [] {
    const std::pair<const char*, FixedFilter> filters[] = {
        {"BM_FilterPrewittVert", primiFilterPrewittVert_8u_AC4R},
        {"BM_FilterPrewittHoriz", primiFilterPrewittHoriz_8u_AC4R},
        {"BM_FilterSobelVert", primiFilterSobelVert_8u_AC4R},
        {"BM_FilterSobelHoriz", primiFilterSobelHoriz_8u_AC4R},
        {"BM_FilterRobertsUp", primiFilterRobertsUp_8u_AC4R},
        {"BM_FilterRobertsDown", primiFilterRobertsDown_8u_AC4R},
        {"BM_FilterLaplace/3", WithMask<MaskSize3x3, primiFilterLaplace_8u_AC4R>},
        {"BM_FilterLaplace/5", WithMask<MaskSize5x5, primiFilterLaplace_8u_AC4R>},
        {"BM_FilterGauss/3", WithMask<MaskSize3x3, primiFilterGauss_8u_AC4R>},
        {"BM_FilterGauss/5", WithMask<MaskSize5x5, primiFilterGauss_8u_AC4R>},
        {"BM_FilterHipass/3", WithMask<MaskSize3x3, primiFilterHipass_8u_AC4R>},
        {"BM_FilterHipass/5", WithMask<MaskSize5x5, primiFilterHipass_8u_AC4R>},
        {"BM_FilterLowpass/3", WithMask<MaskSize3x3, primiFilterLowpass_8u_AC4R>},
        {"BM_FilterLowpass/5", WithMask<MaskSize5x5, primiFilterLowpass_8u_AC4R>},
    };
    for (const auto& [name, filter] : filters) {
        benchmark::RegisterBenchmark(name, [filter = filter](benchmark::State& state) {
            RunFromPadded(state, [filter](const uint8_t* src, int32_t srcStep, uint8_t* dst) {
                filter(src, srcStep, dst, kStep, kSize);
            });
        })->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

#ifdef KV_WITH_OPENCV
// Runs op(source, destination) on 1080p CV_8UC4 images, on one thread.
template <class Op>
void RunOpenCV(benchmark::State& state, Op op) {
    const int threads = cv::getNumThreads();
    cv::setNumThreads(1);
    auto frame = kvbench::Frame(7);
    cv::Mat src(kvbench::kHeight, kvbench::kWidth, CV_8UC4, frame.data());
    cv::Mat dst(kvbench::kHeight, kvbench::kWidth, CV_8UC4);
    for (auto _ : state) {
        op(src, dst);
        benchmark::ClobberMemory();
    }
    cv::setNumThreads(threads);
    CountPixels(state);
}

void BM_FilterBox_OpenCV(benchmark::State& state) {
    const int edge = int(state.range(0));
    RunOpenCV(state, [edge](const cv::Mat& src, cv::Mat& dst) {
        cv::boxFilter(src, dst, -1, cv::Size(edge, edge), cv::Point(-1, -1), true, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_FilterBox_OpenCV)->Arg(3)->Arg(10)->Arg(91)->Unit(benchmark::kMicrosecond);

void BM_Filter_OpenCV(benchmark::State& state) {
    const int edge = int(state.range(0));
    cv::Mat kernel = edge == 3 ? (cv::Mat_<float>(3, 3) << 1, 2, 1, 2, 4, 2, 1, 2, 1) / 16.0f
                               : cv::Mat(edge, edge, CV_32F, cv::Scalar(1.0f / float(edge * edge)));
    RunOpenCV(state, [&kernel](const cv::Mat& src, cv::Mat& dst) {
        cv::filter2D(src, dst, -1, kernel, cv::Point(-1, -1), 0, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_Filter_OpenCV)->Arg(3)->Arg(7)->Unit(benchmark::kMicrosecond);

// dx = 1 (the vertical-edge filters) or dy = 1 (the horizontal ones).
void BM_Sobel_OpenCV(benchmark::State& state) {
    const bool vertical = state.range(0) == 0;
    RunOpenCV(state, [vertical](const cv::Mat& src, cv::Mat& dst) {
        cv::Sobel(src, dst, -1, vertical ? 1 : 0, vertical ? 0 : 1, 3, 1, 0, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_Sobel_OpenCV)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void BM_Laplacian_OpenCV(benchmark::State& state) {
    const int edge = int(state.range(0));
    RunOpenCV(state, [edge](const cv::Mat& src, cv::Mat& dst) {
        cv::Laplacian(src, dst, -1, edge, 1, 0, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_Laplacian_OpenCV)->Arg(3)->Arg(5)->Unit(benchmark::kMicrosecond);

void BM_GaussianBlur_OpenCV(benchmark::State& state) {
    const int edge = int(state.range(0));
    RunOpenCV(state, [edge](const cv::Mat& src, cv::Mat& dst) {
        cv::GaussianBlur(src, dst, cv::Size(edge, edge), 0, 0, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_GaussianBlur_OpenCV)->Arg(3)->Arg(5)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
