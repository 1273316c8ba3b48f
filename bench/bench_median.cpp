// Median filters on a 1080p frame, read from a copy with a replicated edge
// of four pixels, beside OpenCV's medianBlur (which replicates the edge by
// itself). The colour median has no OpenCV counterpart; it runs under the
// baseline build and under the SSE4.1 build, whose distance sums differ.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench_support.h"
#include "kelvarine_prims.h"
#ifdef KV_WITH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

using kvbench::kHeight;
using kvbench::kWidth;
constexpr int32_t kBorder = 4;
using kvbench::kStep;
using kvbench::kSize;
constexpr PrimSize kPadded = {kWidth + 2 * kBorder, kHeight + 2 * kBorder};
constexpr int32_t kPaddedStep = kPadded.width * 4;

struct PaddedFrame {
    PaddedFrame() : padded(size_t(kPaddedStep) * kPadded.height), frame(kvbench::Frame(2)) {
        auto source = kvbench::Frame(1);
        primiCopyReplicateBorder_8u_AC4R(source.data(), kStep, kSize, padded.data(), kPaddedStep, kPadded, kBorder,
                                         kBorder);
    }
    const uint8_t* inner() const { return padded.data() + kBorder * kPaddedStep + kBorder * 4; }

    std::vector<uint8_t> padded;
    std::vector<uint8_t> frame;
};

void Finish(benchmark::State& state) { state.SetItemsProcessed(int64_t(state.iterations()) * kWidth * kHeight); }

// Arguments: mask width, mask height.
void BM_FilterMedian(benchmark::State& state) {
    PaddedFrame images;
    const PrimSize mask = {int32_t(state.range(0)), int32_t(state.range(1))};
    const PrimPoint anchor = {mask.width / 2, mask.height / 2};
    for (auto _ : state) {
        primiFilterMedian_8u_AC4R(images.inner(), kPaddedStep, images.frame.data(), kStep, kSize, mask, anchor);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_FilterMedian)->Args({3, 3})->Args({5, 5})->Args({7, 7})->Args({1, 9})->Unit(benchmark::kMicrosecond);

using FixedShapeFilter = PrimStatus (*)(const uint8_t*, int32_t, uint8_t*, int32_t, PrimSize, int32_t);

template <FixedShapeFilter filter>
void BM_FixedShape(benchmark::State& state) {
    PaddedFrame images;
    for (auto _ : state) {
        filter(images.inner(), kPaddedStep, images.frame.data(), kStep, kSize, int32_t(state.range(0)));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK_TEMPLATE(BM_FixedShape, primiFilterMedianHoriz_8u_AC4R)
    ->Arg(MaskSize3x1)
    ->Arg(MaskSize5x1)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_FixedShape, primiFilterMedianVert_8u_AC4R)
    ->Arg(MaskSize1x3)
    ->Arg(MaskSize1x5)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_FixedShape, primiFilterMedianCross_8u_AC4R)
    ->Arg(MaskSize3x3)
    ->Arg(MaskSize5x5)
    ->Unit(benchmark::kMicrosecond);

// Arguments: mask code, jump index.
void BM_FilterMedianColor(benchmark::State& state) {
    PaddedFrame images;
    primJumpIndex = int32_t(state.range(1));
    for (auto _ : state) {
        primiFilterMedianColor_8u_AC4R(images.inner(), kPaddedStep, images.frame.data(), kStep, kSize,
                                       int32_t(state.range(0)));
        benchmark::ClobberMemory();
    }
    primJumpIndex = 0;
    Finish(state);
}
BENCHMARK(BM_FilterMedianColor)
    ->Args({MaskSize3x3, 0})
    ->Args({MaskSize3x3, 3})
    ->Args({MaskSize5x5, 0})
    ->Args({MaskSize5x5, 3})
    ->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
// Argument: the aperture, 3, 5 or 7.
void BM_FilterMedian_OpenCV(benchmark::State& state) {
    auto source = kvbench::Frame(1), result = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, source.data()), filtered(kHeight, kWidth, CV_8UC4, result.data());
    for (auto _ : state) {
        cv::medianBlur(image, filtered, int(state.range(0)));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_FilterMedian_OpenCV)->Arg(3)->Arg(5)->Arg(7)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
