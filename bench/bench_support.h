// A 1080p frame of deterministic noise, the size every case runs at.
#ifndef KV_BENCH_BENCH_SUPPORT_H
#define KV_BENCH_BENCH_SUPPORT_H

#include <cstdint>
#include <random>
#include <vector>

#include "kelvarine_prims.h"

namespace kvbench {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr size_t kFrameBytes = size_t(kWidth) * kHeight * 4;
constexpr int32_t kStep = kWidth * 4;
constexpr PrimSize kSize = {kWidth, kHeight};

inline std::vector<uint8_t> Frame(uint32_t seed = 1) {
    std::vector<uint8_t> frame(kFrameBytes);
    std::mt19937 generator(seed);
    for (auto& b : frame) b = static_cast<uint8_t>(generator());
    return frame;
}

}  // namespace kvbench

#endif
