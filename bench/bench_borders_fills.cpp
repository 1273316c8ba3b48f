// Borders, mirror, copies and fills on a 1080p frame, beside OpenCV's
// copyMakeBorder, flip, copyTo, mixChannels and setTo.
#include <benchmark/benchmark.h>

#include "bench_support.h"
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

using kvbench::kHeight;
using kvbench::kWidth;
constexpr int32_t kStep = kWidth * 4;
constexpr PrimSize kSize = {kWidth, kHeight};
constexpr int32_t kBorder = 5;
constexpr PrimSize kPadded = {kWidth + 2 * kBorder, kHeight + 2 * kBorder};
constexpr int32_t kPaddedStep = kPadded.width * 4;

void Finish(benchmark::State& state) {
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kvbench::kFrameBytes));
}

void BM_Mirror(benchmark::State& state) {
    auto frame = kvbench::Frame();
    for (auto _ : state) {
        primiMirror_8u_AC4IR(frame.data(), kStep, kSize, int32_t(state.range(0)));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Mirror)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_CopyReplicateBorder(benchmark::State& state) {
    auto frame = kvbench::Frame();
    std::vector<uint8_t> padded(size_t(kPaddedStep) * kPadded.height);
    for (auto _ : state) {
        primiCopyReplicateBorder_8u_AC4R(frame.data(), kStep, kSize, padded.data(), kPaddedStep, kPadded, kBorder,
                                         kBorder);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_CopyReplicateBorder)->Unit(benchmark::kMicrosecond);

void BM_Copy_AC4(benchmark::State& state) {
    auto frame = kvbench::Frame(1), copy = kvbench::Frame(2);
    for (auto _ : state) {
        m7_primiCopy_8u_AC4R(frame.data(), kStep, copy.data(), kStep, kSize);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Copy_AC4)->Unit(benchmark::kMicrosecond);

void BM_Copy_C4(benchmark::State& state) {
    auto frame = kvbench::Frame(1), copy = kvbench::Frame(2);
    for (auto _ : state) {
        m7_primiCopy_8u_C4R(frame.data(), kStep, copy.data(), kStep, kSize);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Copy_C4)->Unit(benchmark::kMicrosecond);

void BM_Set_AC4(benchmark::State& state) {
    auto frame = kvbench::Frame();
    const uint8_t value[3] = {1, 2, 3};
    for (auto _ : state) {
        m7_primiSet_8u_AC4R(value, frame.data(), kStep, kSize);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Set_AC4)->Unit(benchmark::kMicrosecond);

// The frame's bytes as a one-byte-a-pixel image four times as wide.
void BM_Set_C1(benchmark::State& state) {
    auto frame = kvbench::Frame();
    for (auto _ : state) {
        m7_primiSet_8u_C1R(9, frame.data(), kStep, {kStep, kHeight});
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Set_C1)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
void BM_Mirror_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame(), flipped = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data()), result(kHeight, kWidth, CV_8UC4, flipped.data());
    const int code = state.range(0) == 0 ? 0 : (state.range(0) == 1 ? 1 : -1);
    for (auto _ : state) {
        cv::flip(image, result, code);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Mirror_OpenCV)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_CopyReplicateBorder_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data());
    cv::Mat padded(kPadded.height, kPadded.width, CV_8UC4);
    for (auto _ : state) {
        cv::copyMakeBorder(image, padded, kBorder, kBorder, kBorder, kBorder, cv::BORDER_REPLICATE);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_CopyReplicateBorder_OpenCV)->Unit(benchmark::kMicrosecond);

// Three channels into a four-channel image whose fourth stays.
void BM_Copy_AC4_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame(1), copy = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data()), result(kHeight, kWidth, CV_8UC4, copy.data());
    const int pairs[] = {0, 0, 1, 1, 2, 2};
    for (auto _ : state) {
        cv::mixChannels(&image, 1, &result, 1, pairs, 3);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Copy_AC4_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Copy_C4_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame(1), copy = kvbench::Frame(2);
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data()), result(kHeight, kWidth, CV_8UC4, copy.data());
    for (auto _ : state) {
        image.copyTo(result);
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Copy_C4_OpenCV)->Unit(benchmark::kMicrosecond);

// setTo writes all four channels; there is no three-of-four form.
void BM_Set_C4_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kHeight, kWidth, CV_8UC4, frame.data());
    for (auto _ : state) {
        image.setTo(cv::Scalar(1, 2, 3, 4));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Set_C4_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Set_C1_OpenCV(benchmark::State& state) {
    auto frame = kvbench::Frame();
    cv::Mat image(kHeight, kStep, CV_8UC1, frame.data());
    for (auto _ : state) {
        image.setTo(cv::Scalar(9));
        benchmark::ClobberMemory();
    }
    Finish(state);
}
BENCHMARK(BM_Set_C1_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
