// primiFilterWiener_8u_AC4R, an adaptive noise filter, and its buffer query
// primiFilterWienerGetBufferSize.
//
// Each colour byte is pulled towards the mean of its window the more, the
// nearer the window's variance lies to the channel's noise level. Noise
// levels are shares of full-scale power, in [0, 1); inside the filter they
// are in the unit of the window sums, area * (pixel value)^2. When any level
// is too small to use, the noise of all three channels is estimated first,
// as the mean local variance over the region, and reported back through the
// caller's array.
#include "primitives/pixel/wiener_rows.h"

namespace PRIM_BUILD {
namespace {

constexpr float kFullScale = 65025.0f;
// A rounded 1 / 65025: turns an estimate back into a share of full scale.
constexpr float kInvFullScale = 1.53787e-5f;
// Levels below the float epsilon ask for an estimate.
constexpr float kSmallestGivenLevel = 1.1920929e-7f;

// Floats in one row of the work buffer, which holds four such rows.
inline uint32_t RowFloats(int32_t width, int32_t channels, int32_t maskWidth) {
    const uint32_t count = channels > 1 ? static_cast<uint32_t>(width) * static_cast<uint32_t>(channels)
                                        : static_cast<uint32_t>(width) + static_cast<uint32_t>(maskWidth);
    return (count + 6u) & ~3u;
}

// One pass of window sums over the region. From the first 16-byte boundary
// of the work buffer lie two rows of means and then two rows of variances;
// image row y uses the pair's row y & 1.
class WindowPass {
public:
    WindowPass(const uint8_t* src, int32_t srcStep, PrimSize roi, PrimSize mask, PrimPoint anchor, uint8_t* buffer)
        : step_(srcStep),
          roi_(roi),
          mask_(mask),
          rowFloats_(static_cast<ptrdiff_t>(RowFloats(roi.width, 4, mask.width))),
          // The anchor counts from the window's far end: the window of a
          // pixel reaches mask - 1 - anchor to the left and above it.
          window_(src - static_cast<ptrdiff_t>(mask.height - 1 - anchor.y) * srcStep -
                  4 * static_cast<ptrdiff_t>(mask.width - 1 - anchor.x)),
          base_(reinterpret_cast<float*>((reinterpret_cast<uintptr_t>(buffer) + 15) & ~uintptr_t{15})),
          invArea_(1.0f / static_cast<float>(int64_t{mask.width} * mask.height)) {}

    float InvArea() const { return invArea_; }

    // Means and variances of each row, floored at lanes, go to rowDone(y,
    // meanRow, varRow) before the next row overwrites them.
    template <class RowDone>
    void Run(const float lanes[4], RowDone rowDone) const {
        for (int32_t y = 0; y < roi_.height; ++y) {
            const ptrdiff_t pair = y & 1;
            float* meanRow = base_ + pair * rowFloats_;
            float* varRow = base_ + (2 + pair) * rowFloats_;
            const int32_t toOther = static_cast<int32_t>((pair ? -4 : 4) * rowFloats_);
            owniLocalVarMean_8u32f_AC4L_M7(window_ + static_cast<ptrdiff_t>(y) * step_, step_, &mask_, meanRow, varRow,
                                           toOther, &roi_, y, &invArea_, lanes);
            rowDone(y, meanRow, varRow);
        }
    }

private:
    int32_t step_;
    PrimSize roi_;
    PrimSize mask_;
    ptrdiff_t rowFloats_;
    const uint8_t* window_;
    float* base_;
    float invArea_;
};

// The mean local variance of each channel over the region, in the unit of
// the window sums: row means summed in doubles, over the height.
void EstimateNoise(const WindowPass& pass, PrimSize roi, float scaled[3]) {
    const float noFloor[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    double total[3] = {0.0, 0.0, 0.0};
    const PrimSize row = {roi.width, 1};
    pass.Run(noFloor, [&](int32_t, const float*, const float* varRow) {
        double rowMean[3];
        PRIM(primiMean_32f_AC4R)(varRow, 16 * roi.width, row, rowMean, 1);
        for (int c = 0; c < 3; ++c) total[c] += rowMean[c];
    });
    for (int c = 0; c < 3; ++c) scaled[c] = static_cast<float>(total[c] / static_cast<double>(roi.height));
}

}  // namespace
}  // namespace PRIM_BUILD

using namespace PRIM_BUILD;

extern "C" PrimStatus PRIM(primiFilterWienerGetBufferSize)(PrimSize roi, PrimSize mask, int32_t channels,
                                                           int32_t* size) {
    if (size == nullptr) return PrimNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return PrimSizeErr;
    if (channels != 1 && channels != 3 && channels != 4) return PrimChannelsErr;
    if (mask.width < 2 || mask.height < 2) return PrimMaskSizeErr;
    *size = static_cast<int32_t>(RowFloats(roi.width, channels, mask.width) * 16u + 15u);
    return PrimOk;
}

extern "C" PrimStatus PRIM(primiFilterWiener_8u_AC4R)(const uint8_t* src, int32_t srcStep, uint8_t* dst,
                                                      int32_t dstStep, PrimSize roi, PrimSize mask, PrimPoint anchor,
                                                      float* noise, uint8_t* buffer) {
    if (src == nullptr || dst == nullptr || noise == nullptr || buffer == nullptr) return PrimNullPtrErr;
    if (roi.width < 1 || roi.height < 1) return PrimSizeErr;
    if (mask.width < 2 || mask.height < 2) return PrimMaskSizeErr;
    if (anchor.x < 0 || anchor.x >= mask.width || anchor.y < 0 || anchor.y >= mask.height) return PrimAnchorErr;
    if (srcStep < 1 || dstStep < 1) return PrimStepErr;
    for (int c = 0; c < 3; ++c)
        if (noise[c] < 0.0f || noise[c] >= 1.0f) return PrimNoiseRangeErr;

    const WindowPass pass(src, srcStep, roi, mask, anchor, buffer);
    const float n = pass.InvArea();
    // The fourth lane's noise stays 0; its results are never written.
    float lanes[4] = {0.0f, 0.0f, 0.0f, 0.0f};
    // Levels are at least 0 here, so this is the test of their magnitude
    // (-0 and not-a-number ask for an estimate too).
    if (noise[0] >= kSmallestGivenLevel && noise[1] >= kSmallestGivenLevel && noise[2] >= kSmallestGivenLevel) {
        const float width = static_cast<float>(mask.width);
        const float height = static_cast<float>(mask.height);
        lanes[0] = kFullScale * width * height * noise[0];
        lanes[1] = noise[1] * kFullScale * width * height;
        lanes[2] = noise[2] * kFullScale * width * height;
    } else {
        EstimateNoise(pass, roi, lanes);
        noise[0] = (n * kInvFullScale) * lanes[0];
        noise[1] = (kInvFullScale * lanes[1]) * n;
        noise[2] = (kInvFullScale * lanes[2]) * n;
    }

    pass.Run(lanes, [&](int32_t y, const float* meanRow, const float* varRow) {
        owniWiener_8u32f_AC4R_M7(src + static_cast<ptrdiff_t>(y) * srcStep, meanRow, varRow,
                                 dst + static_cast<ptrdiff_t>(y) * dstStep, lanes, roi.width);
    });
    return PrimOk;
}
