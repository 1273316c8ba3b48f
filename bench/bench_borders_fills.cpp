// Borders, mirror, copies and fills on a 1080p frame, beside OpenCV's
// copyMakeBorder, flip, copyTo, mixChannels, setTo, max and min.
#include <benchmark/benchmark.h>

#include <cstring>

#include "bench_support.h"
#include "frame_loop.h"
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
using kvbench::RunPerFrame;
using kvbench::kStep;
constexpr int32_t kBytes = int32_t(kvbench::kFrameBytes);
using kvbench::kSize;
constexpr int32_t kBorder = 5;
constexpr PrimSize kPadded = {kWidth + 2 * kBorder, kHeight + 2 * kBorder};
constexpr int32_t kPaddedStep = kPadded.width * 4;

// A source frame, a destination frame, and a destination with a border.
struct Frames {
    std::vector<uint8_t> source = kvbench::Frame(1);
    std::vector<uint8_t> destination = kvbench::Frame(2);
    std::vector<uint8_t> padded = std::vector<uint8_t>(size_t(kPaddedStep) * kPadded.height);
    uint8_t* inner() { return padded.data() + kBorder * kPaddedStep + 4 * kBorder; }
};

void BM_Mirror(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { primiMirror_8u_AC4IR(f.source.data(), kStep, kSize, int32_t(state.range(0))); });
}
BENCHMARK(BM_Mirror)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_CopyReplicateBorder_AC4(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] {
        primiCopyReplicateBorder_8u_AC4R(f.source.data(), kStep, kSize, f.padded.data(), kPaddedStep, kPadded, kBorder,
                                         kBorder);
    });
}
BENCHMARK(BM_CopyReplicateBorder_AC4)->Unit(benchmark::kMicrosecond);

void BM_CopyReplicateBorder_C4(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] {
        m7_primiCopyReplicateBorder_8u_C4R(f.source.data(), kStep, kSize, f.padded.data(), kPaddedStep, kPadded,
                                           kBorder, kBorder);
    });
}
BENCHMARK(BM_CopyReplicateBorder_C4)->Unit(benchmark::kMicrosecond);

// Only the border is written: the inner frame is already in place.
void BM_CopyReplicateBorder_C4InPlace(benchmark::State& state) {
    Frames f;
    RunPerFrame(state,
                [&] { m7_primiCopyReplicateBorder_8u_C4IR(f.inner(), kPaddedStep, kSize, kPadded, kBorder, kBorder); });
}
BENCHMARK(BM_CopyReplicateBorder_C4InPlace)->Unit(benchmark::kMicrosecond);

void BM_Copy_AC4(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primiCopy_8u_AC4R(f.source.data(), kStep, f.destination.data(), kStep, kSize); });
}
BENCHMARK(BM_Copy_AC4)->Unit(benchmark::kMicrosecond);

// Streams its stores: the frame is above 1 MiB.
void BM_Copy_C4(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primiCopy_8u_C4R(f.source.data(), kStep, f.destination.data(), kStep, kSize); });
}
BENCHMARK(BM_Copy_C4)->Unit(benchmark::kMicrosecond);

void BM_CopyVector(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsCopy_8u(f.source.data(), f.destination.data(), kBytes); });
}
BENCHMARK(BM_CopyVector)->Unit(benchmark::kMicrosecond);

void BM_Set_AC4(benchmark::State& state) {
    Frames f;
    const uint8_t value[3] = {1, 2, 3};
    RunPerFrame(state, [&] { m7_primiSet_8u_AC4R(value, f.source.data(), kStep, kSize); });
}
BENCHMARK(BM_Set_AC4)->Unit(benchmark::kMicrosecond);

// The frame's bytes as a one-byte-a-pixel image four times as wide.
void BM_Set_C1(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primiSet_8u_C1R(9, f.source.data(), kStep, {kStep, kHeight}); });
}
BENCHMARK(BM_Set_C1)->Unit(benchmark::kMicrosecond);

void BM_ZeroVector(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsZero_8u(f.source.data(), kBytes); });
}
BENCHMARK(BM_ZeroVector)->Unit(benchmark::kMicrosecond);

void BM_Zero16Vector(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsZero_16s(reinterpret_cast<int16_t*>(f.source.data()), kBytes / 2); });
}
BENCHMARK(BM_Zero16Vector)->Unit(benchmark::kMicrosecond);

void BM_Set32fVector(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsSet_32f(0.5f, reinterpret_cast<float*>(f.source.data()), kBytes / 4); });
}
BENCHMARK(BM_Set32fVector)->Unit(benchmark::kMicrosecond);

void BM_MaxEvery(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsMaxEvery_8u_I(f.source.data(), f.destination.data(), kBytes); });
}
BENCHMARK(BM_MaxEvery)->Unit(benchmark::kMicrosecond);

void BM_MinEvery(benchmark::State& state) {
    Frames f;
    RunPerFrame(state, [&] { m7_primsMinEvery_8u_I(f.source.data(), f.destination.data(), kBytes); });
}
BENCHMARK(BM_MinEvery)->Unit(benchmark::kMicrosecond);

#ifdef KV_WITH_OPENCV
// OpenCV's images over the same buffers.
struct Mats : Frames {
    cv::Mat source{kHeight, kWidth, CV_8UC4, Frames::source.data()};
    cv::Mat destination{kHeight, kWidth, CV_8UC4, Frames::destination.data()};
    cv::Mat padded{kPadded.height, kPadded.width, CV_8UC4, Frames::padded.data()};
};

// Out of place: flip has no in-place form for every code.
void BM_Mirror_OpenCV(benchmark::State& state) {
    Mats m;
    const int code = state.range(0) == 0 ? 0 : (state.range(0) == 1 ? 1 : -1);
    RunPerFrame(state, [&] { cv::flip(m.source, m.destination, code); });
}
BENCHMARK(BM_Mirror_OpenCV)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

void BM_CopyReplicateBorder_OpenCV(benchmark::State& state) {
    Mats m;
    RunPerFrame(state, [&] {
        cv::copyMakeBorder(m.source, m.padded, kBorder, kBorder, kBorder, kBorder, cv::BORDER_REPLICATE);
    });
}
BENCHMARK(BM_CopyReplicateBorder_OpenCV)->Unit(benchmark::kMicrosecond);

// Three channels into a four-channel image whose fourth stays.
void BM_Copy_AC4_OpenCV(benchmark::State& state) {
    Mats m;
    const int pairs[] = {0, 0, 1, 1, 2, 2};
    RunPerFrame(state, [&] { cv::mixChannels(&m.source, 1, &m.destination, 1, pairs, 3); });
}
BENCHMARK(BM_Copy_AC4_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Copy_C4_OpenCV(benchmark::State& state) {
    Mats m;
    RunPerFrame(state, [&] { m.source.copyTo(m.destination); });
}
BENCHMARK(BM_Copy_C4_OpenCV)->Unit(benchmark::kMicrosecond);

// setTo writes all four channels; there is no three-of-four form.
void BM_Set_C4_OpenCV(benchmark::State& state) {
    Mats m;
    RunPerFrame(state, [&] { m.source.setTo(cv::Scalar(1, 2, 3, 4)); });
}
BENCHMARK(BM_Set_C4_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_Set_C1_OpenCV(benchmark::State& state) {
    Mats m;
    cv::Mat bytes(kHeight, kStep, CV_8UC1, m.Frames::source.data());
    RunPerFrame(state, [&] { bytes.setTo(cv::Scalar(9)); });
}
BENCHMARK(BM_Set_C1_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_MaxEvery_OpenCV(benchmark::State& state) {
    Mats m;
    RunPerFrame(state, [&] { cv::max(m.source, m.destination, m.destination); });
}
BENCHMARK(BM_MaxEvery_OpenCV)->Unit(benchmark::kMicrosecond);

void BM_MinEvery_OpenCV(benchmark::State& state) {
    Mats m;
    RunPerFrame(state, [&] { cv::min(m.source, m.destination, m.destination); });
}
BENCHMARK(BM_MinEvery_OpenCV)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
