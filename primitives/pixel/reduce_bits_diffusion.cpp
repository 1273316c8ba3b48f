// Error diffusion: Floyd-Steinberg, Jarvis-Judice-Ninke and Stucki.
//
// The three colour channels are dithered one after the other, each over the
// whole image, row by row from the top and pixel by pixel from the left. The
// error rows are not cleared between channels: the first row of a channel
// takes as its rows above the errors of the previous channel's last rows. So
// the work is one run of 3 * height rows, channel after channel.
#include <cstring>

#include "primitives/frame/memory.h"
#include "primitives/pixel/reduce_bits.h"

namespace PRIM_BUILD {
namespace {

// The samples of one channel in one row, and the row's number for the noise
// thresholds (2 * y, starting again at 0 in each channel).
struct ChannelRow {
    const uint8_t* src;
    uint8_t* dst;
    uint32_t noiseRow;
};

struct DiffusionImage {
    const uint8_t* src;
    int32_t srcStep;
    uint8_t* dst;
    int32_t dstStep;
    int32_t height;

    ChannelRow Row(int32_t run) const {
        int32_t channel = run / height;
        int32_t y = run % height;
        return {src + static_cast<ptrdiff_t>(y) * srcStep + channel,
                dst + static_cast<ptrdiff_t>(y) * dstStep + channel, 2u * static_cast<uint32_t>(y)};
    }
};

// v = the sample plus the diffused error. A saturated pixel passes on no
// error; any other passes on what quantising took away. Written as selects:
// saturation comes and goes with the image's content.
inline uint8_t DiffuseSample(float v, float threshold, const QuantLevels& levels, float* error) {
    const float q = Quantise(v, threshold, levels);
    const bool high = v >= 255.0f;
    const bool low = v < 0.0f;
    *error = high || low ? 0.0f : v - q;
    return high ? 255 : (low ? 0 : QuantisedByte(q));
}

// Without noise every pixel takes half a step as threshold.
struct FixedThreshold {
    float half;
    float operator()(uint32_t, uint32_t) const { return half; }
};

struct RandomThreshold {
    NoiseTables tables;
    float operator()(uint32_t noiseRow, uint32_t i) const { return tables.At(noiseRow, i); }
};

// Each row is a recurrence from left to right, but of the rows above it reads
// only the errors up to two pixels ahead. So kSkewRows rows run together, each
// three pixels behind the one above: the processor overlaps their chains, and
// every pixel still reads exactly the errors that row-by-row order gives it.
// Rows sharing an error buffer overwrite a position only after every reader
// of the older value has passed it.
constexpr int32_t kSkewRows = 4;
constexpr int32_t kSkewLag = 3;

template <typename Row, typename MakeRow, typename Pixel>
void DiffuseSkewed(int32_t runRows, int32_t width, MakeRow makeRow, Pixel pixel) {
    for (int32_t first = 0; first < runRows; first += kSkewRows) {
        const int32_t count = runRows - first < kSkewRows ? runRows - first : kSkewRows;
        Row rows[kSkewRows];
        for (int32_t k = 0; k < count; ++k) rows[k] = makeRow(first + k);
        const int32_t span = width + kSkewLag * (count - 1);
        for (int32_t j = 0; j < span; ++j) {
            for (int32_t k = 0; k < kSkewRows; ++k) {
                const int32_t i = j - kSkewLag * k;
                if (k < count && i >= 0 && i < width) pixel(rows[k], i);
            }
        }
    }
}

// Error rows, zeroed; the margins around each row are never written.
float* ZeroedErrorRows(int32_t count) {
    float* rows = primsMalloc_32f(count);
    if (rows != nullptr) memset(rows, 0, static_cast<size_t>(count) * sizeof(float));
    return rows;
}

// Runs a method with its error rows and its thresholds: half a step, or the
// noise tables spread around half a step by noise per cent of a step.
template <typename Method>
PrimStatus WithThresholds(int32_t rowFloats, int32_t noise, const QuantLevels& levels, Method method) {
    if (noise == 0) {
        float* rows = ZeroedErrorRows(rowFloats);
        if (rows == nullptr) return PrimMemAllocErr;
        method(rows, FixedThreshold{0.5f * levels.step});
        PRIM(primsFree)(rows);
        return PrimOk;
    }
    RandomThreshold threshold;
    if (!AllocNoiseTables(threshold.tables)) return PrimMemAllocErr;
    float* rows = ZeroedErrorRows(rowFloats);
    PrimStatus status = PrimMemAllocErr;
    const float low = static_cast<float>(50 - noise) * levels.step / 100.0f;
    const float high = static_cast<float>(50 + noise) * levels.step / 100.0f;
    if (rows != nullptr && FillNoiseTables(threshold.tables, low, high)) {
        method(rows, threshold);
        status = PrimOk;
    }
    PRIM(primsFree)(rows);
    FreeNoiseTables(threshold.tables);
    return status;
}

// Floyd-Steinberg: two error rows of width + 2, one margin on each side.
struct FsRow {
    ChannelRow pixels;
    const float* up;
    float* cur;
};

template <typename Threshold>
void DiffuseFs(const DiffusionImage& image, int32_t width, float* rows, const QuantLevels& levels,
               Threshold threshold) {
    float* const buffers[2] = {rows + 1, rows + 1 + (width + 2)};
    auto makeRow = [&](int32_t run) {
        return FsRow{image.Row(run), buffers[(run + 1) % 2], buffers[run % 2]};
    };
    auto pixel = [&](const FsRow& row, int32_t i) {
        const float* up = row.up;
        float* cur = row.cur;
        float a = ((up[i + 1] * 3.0f + up[i - 1]) + up[i] * 5.0f) + cur[i - 1] * 7.0f;
        float v = static_cast<float>(row.pixels.src[4 * i]) + a * 0.0625f;
        row.pixels.dst[4 * i] = DiffuseSample(v, threshold(row.pixels.noiseRow, i), levels, &cur[i]);
    };
    DiffuseSkewed<FsRow>(3 * image.height, width, makeRow, pixel);
}

// Weights for the offsets -2..+1 of the rows two above (a) and one above (b)
// and the two left neighbours on the current row (c); offset +2 of the row
// two above weighs 1, and of the row above as much as offset -2.
struct WideKernel {
    float a[4];
    float b[4];
    float c[2];
    float norm;
};

constexpr WideKernel kJarvisJudiceNinke = {{1, 3, 5, 3}, {3, 5, 7, 5}, {5, 7}, 1.0f / 48};
constexpr WideKernel kStucki = {{1, 2, 4, 2}, {2, 4, 8, 4}, {4, 8}, 1.0f / 42};

// Three error rows of w + 4 (w the width rounded up to 4), two margins on
// each side.
struct WideRow {
    ChannelRow pixels;
    const float* a;
    const float* b;
    float* c;
};

// Four lane sums over the offsets -2..+1, summed pairwise, then the two
// offset +2 terms, then the norm. The current row weighs nothing at offsets 0
// and +1, and adding those zero products would change no sum, so they are
// left out.
template <typename Threshold>
void DiffuseWide(const DiffusionImage& image, int32_t width, float* rows, const WideKernel& k,
                 const QuantLevels& levels, Threshold threshold) {
    const int32_t stride = ((width + 3) & ~3) + 4;
    float* const buffers[3] = {rows + 2, rows + 2 + stride, rows + 2 + 2 * stride};
    auto makeRow = [&](int32_t run) {
        return WideRow{image.Row(run), buffers[(run + 1) % 3], buffers[(run + 2) % 3], buffers[run % 3]};
    };
    auto pixel = [&](const WideRow& row, int32_t i) {
        const float* a = row.a;
        const float* b = row.b;
        float* c = row.c;
        float l0 = (b[i - 2] * k.b[0] + a[i - 2] * k.a[0]) + c[i - 2] * k.c[0];
        float l1 = (b[i - 1] * k.b[1] + a[i - 1] * k.a[1]) + c[i - 1] * k.c[1];
        float l2 = b[i] * k.b[2] + a[i] * k.a[2];
        float l3 = b[i + 1] * k.b[3] + a[i + 1] * k.a[3];
        float sum = (l0 + l2) + (l1 + l3);
        sum += a[i + 2];
        sum += b[i + 2] * k.b[0];
        float v = static_cast<float>(row.pixels.src[4 * i]) + sum * k.norm;
        row.pixels.dst[4 * i] = DiffuseSample(v, threshold(row.pixels.noiseRow, i), levels, &c[i]);
    };
    DiffuseSkewed<WideRow>(3 * image.height, width, makeRow, pixel);
}

}  // namespace

PrimStatus ownReduceBits_fs_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                               PrimSize size, int32_t noise, const QuantLevels& levels) {
    const DiffusionImage image{src, srcStep, dst, dstStep, size.height};
    return WithThresholds(2 * size.width + 4, noise, levels, [&](float* rows, auto threshold) {
        DiffuseFs(image, size.width, rows, levels, threshold);
    });
}

PrimStatus ownReduceBits_st_jj_8u(const uint8_t* src, int32_t srcStep, uint8_t* dst, int32_t dstStep,
                                  PrimSize size, int32_t noise, int32_t dither, const QuantLevels& levels) {
    const DiffusionImage image{src, srcStep, dst, dstStep, size.height};
    const WideKernel& kernel = dither == DitherStucki ? kStucki : kJarvisJudiceNinke;
    const int32_t roundedWidth = (size.width + 3) & ~3;
    return WithThresholds(3 * roundedWidth + 12, noise, levels, [&](float* rows, auto threshold) {
        DiffuseWide(image, size.width, rows, kernel, levels, threshold);
    });
}

}  // namespace PRIM_BUILD
