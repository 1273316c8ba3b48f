// primiReduceBits_8u_AC4R against plain references of each dither method,
// written row by row from their definitions in single precision.
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

#include "jump_index.h"
#include "noise_reference.h"
#include "test_support.h"

namespace {

struct Image {
    int32_t width, height, step;
    std::vector<uint8_t> bytes;
    uint8_t& At(int32_t x, int32_t y, int32_t channel) { return bytes[y * step + 4 * x + channel]; }
};

Image RandomImage(int32_t width, int32_t height, int32_t pad, uint32_t seed) {
    int32_t step = 4 * width + pad;
    return {width, height, step, kvtest::RandomBytes(static_cast<size_t>(step) * height, seed)};
}

// The step and its inverse as the text reads them, here in double and then
// rounded to float.
struct Levels {
    float step, inverse;
    explicit Levels(int32_t levels)
        : step(static_cast<float>((65280.0 / (levels - 1)) * 0.00390625)),
          inverse(static_cast<float>((levels - 1) / 255.0)) {}
};

float QuantiseReference(float v, float t, const Levels& levels) {
    float q = static_cast<float>(static_cast<int32_t>(v * levels.inverse)) * levels.step;
    float d = v - q;
    if (t < d) q = q + levels.step;
    return q;
}

uint8_t ToByte(float q) { return static_cast<uint8_t>(std::min(static_cast<int32_t>(q), 255)); }

struct Tables {
    std::vector<float> threshold = std::vector<float>(1024);
    std::vector<int16_t> index = std::vector<int16_t>(1024);
    float At(int32_t row, int32_t i) const { return threshold[(index[i & 1023] + row + i) & 1023]; }
};

Tables NoiseTables(float low, float high) {
    Tables tables;
    kvtest::ReferenceGenerator indexGenerator(0);
    for (auto& value : tables.index)
        value = static_cast<int16_t>(std::lrint(indexGenerator.Next() * (1024 * 2.3283064365387e-10) + 512.0));
    kvtest::ReferenceGenerator thresholdGenerator(0);
    const double mean = (low + high) * 0.5, scale = (high - low) * 2.3283064365387e-10;
    for (auto& value : tables.threshold) value = static_cast<float>(thresholdGenerator.Next() * scale + mean);
    return tables;
}

Tables DiffusionTables(int32_t noise, const Levels& levels) {
    return NoiseTables((50 - noise) * levels.step / 100, (50 + noise) * levels.step / 100);
}

// The sample plus its diffused error: saturated values pass on no error.
uint8_t Diffuse(float v, float t, const Levels& levels, float& error) {
    if (v >= 255.0f) return error = 0, 255;
    if (v < 0.0f) return error = 0, 0;
    float q = QuantiseReference(v, t, levels);
    error = v - q;
    return ToByte(q);
}

void FloydSteinberg(Image& src, Image& dst, int32_t noise, int32_t levelCount) {
    const Levels levels(levelCount);
    const Tables tables = DiffusionTables(noise, levels);
    const int32_t w = src.width;
    std::vector<float> rows(2 * w + 4, 0.0f);
    float* up = &rows[1];
    float* cur = &rows[w + 3];
    for (int32_t channel = 0; channel < 3; ++channel) {
        for (int32_t y = 0, r = 0; y < src.height; ++y, r += 2) {
            for (int32_t i = 0; i < w; ++i) {
                float a = ((up[i + 1] * 3 + up[i - 1]) + up[i] * 5) + cur[i - 1] * 7;
                float v = src.At(i, y, channel) + a * 0.0625f;
                float t = noise ? tables.At(r, i) : 0.5f * levels.step;
                dst.At(i, y, channel) = Diffuse(v, t, levels, cur[i]);
            }
            std::swap(up, cur);
        }
    }
}

// Jarvis-Judice-Ninke or Stucki, every lane of the sum written out, the
// zero weights of the current row included.
struct Weights {
    float a[5], b[5], c[4];
    double norm;
};
const Weights kJjn = {{1, 3, 5, 3, 1}, {3, 5, 7, 5, 3}, {5, 7, 0, 0}, 1.0 / 48};
const Weights kStucki = {{1, 2, 4, 2, 1}, {2, 4, 8, 4, 2}, {4, 8, 0, 0}, 1.0 / 42};

void WideKernel(Image& src, Image& dst, int32_t noise, int32_t levelCount, const Weights& k) {
    const float norm = static_cast<float>(k.norm);
    const Levels levels(levelCount);
    const Tables tables = DiffusionTables(noise, levels);
    const int32_t w4 = (src.width + 3) / 4 * 4;
    std::vector<float> rows(3 * w4 + 12, 0.0f);
    float* a = &rows[2];
    float* b = &rows[w4 + 6];
    float* c = &rows[2 * w4 + 10];
    for (int32_t channel = 0; channel < 3; ++channel) {
        for (int32_t y = 0, r = 0; y < src.height; ++y, r += 2) {
            for (int32_t i = 0; i < src.width; ++i) {
                float lane[4];
                for (int j = 0; j < 4; ++j)
                    lane[j] = (b[i - 2 + j] * k.b[j] + a[i - 2 + j] * k.a[j]) + c[i - 2 + j] * k.c[j];
                float sum = (lane[0] + lane[2]) + (lane[1] + lane[3]);
                sum = sum + a[i + 2] * k.a[4];
                sum = sum + b[i + 2] * k.b[4];
                float v = src.At(i, y, channel) + sum * norm;
                float t = noise ? tables.At(r, i) : 0.5f * levels.step;
                dst.At(i, y, channel) = Diffuse(v, t, levels, c[i]);
            }
            float* reused = a;
            a = b;
            b = c;
            c = reused;
        }
    }
}

const float kBayer[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};

void Bayer(Image& src, Image& dst, int32_t noise, int32_t levelCount) {
    const Levels levels(levelCount);
    const Tables tables = NoiseTables(-noise / 100.0f, noise / 100.0f);
    const int32_t blocked = src.width / 4 * 4;
    for (int32_t y = 0; y < src.height; ++y) {
        for (int32_t x = 0; x < src.width; ++x) {
            float matrix = kBayer[y & 3][x & 3] / 15.0f;
            float t = matrix * levels.step;
            if (noise) t = x < blocked ? (tables.At(2 * y, x) + matrix) * levels.step : matrix;
            for (int32_t channel = 0; channel < 3; ++channel)
                dst.At(x, y, channel) = ToByte(QuantiseReference(src.At(x, y, channel), t, levels));
        }
    }
}

void NoDither(Image& src, Image& dst, int32_t levelCount) {
    const float n = static_cast<float>(levelCount - 1);
    for (int32_t y = 0; y < src.height; ++y) {
        for (int32_t x = 0; x < src.width; ++x) {
            for (int32_t channel = 0; channel < 3; ++channel) {
                float value = src.At(x, y, channel) * (1.0f / 255);
                float q = static_cast<float>(static_cast<int32_t>(n * value)) * (1 / n);
                if (0.5f / n < value - q) q = q + 1 / n;
                dst.At(x, y, channel) = ToByte(q * 255.0f);
            }
        }
    }
}

void Reference(Image& src, Image& dst, int32_t noise, int32_t dither, int32_t levels) {
    switch (dither) {
        case DitherNone: return NoDither(src, dst, levels);
        case DitherFS: return FloydSteinberg(src, dst, noise, levels);
        case DitherJJN: return WideKernel(src, dst, noise, levels, kJjn);
        case DitherStucki: return WideKernel(src, dst, noise, levels, kStucki);
        case DitherBayer: return Bayer(src, dst, noise, levels);
    }
}

PrimStatus ReduceBitsOf(Image& src, Image& dst, int32_t noise, int32_t dither, int32_t levels) {
    return primiReduceBits_8u_AC4R(src.bytes.data(), src.step, dst.bytes.data(), dst.step, {src.width, src.height},
                                   noise, dither, levels);
}

class ReduceBits : public EveryJumpIndex {};

// Destinations start random with wider rows than the source, so that their
// fourth bytes and row padding show any stray write. The widest rows pass the
// 1024 entries of the noise tables.
TEST_P(ReduceBits, EveryMethodEqualsItsReference) {
    const int32_t sizes[][2] = {{1, 1}, {1, 6}, {2, 3}, {3, 1}, {5, 7}, {6, 2}, {13, 5}, {37, 4}, {70, 9}, {1031, 2}};
    for (int32_t dither = DitherNone; dither <= DitherBayer; ++dither) {
        for (int32_t noise : {0, 1, 30, 100}) {
            for (int32_t levels : {2, 3, 7, 64, 256}) {
                for (const auto& size : sizes) {
                    uint32_t seed = static_cast<uint32_t>(dither * 1000 + noise * 10 + levels + size[0]);
                    Image src = RandomImage(size[0], size[1], 4 * (size[0] % 3), seed);
                    Image dst = RandomImage(size[0], size[1], 8, seed + 1);
                    Image expected = dst;
                    Reference(src, expected, noise, dither, levels);
                    ASSERT_EQ(ReduceBitsOf(src, dst, noise, dither, levels), PrimOk);
                    ASSERT_EQ(dst.bytes, expected.bytes) << "dither " << dither << " noise " << noise << " levels "
                                                         << levels << " size " << size[0] << "x" << size[1];
                }
            }
        }
    }
}

TEST_P(ReduceBits, RefusalsFollowTheCheckOrderAndWriteNothing) {
    Image src = RandomImage(3, 2, 0, 1);
    Image dst = RandomImage(3, 2, 0, 2);
    const std::vector<uint8_t> before = dst.bytes;
    uint8_t* d = dst.bytes.data();
    const uint8_t* s = src.bytes.data();
    EXPECT_EQ(primiReduceBits_8u_AC4R(nullptr, 12, d, 12, {0, 2}, 500, DitherFS, 2), PrimNullPtrErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, nullptr, 12, {3, 2}, 0, DitherFS, 2), PrimNullPtrErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 0}, 500, DitherFS, 1), PrimSizeErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {-1, 2}, 0, DitherFS, 2), PrimSizeErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, 101, DitherFS, 1), PrimDitherNoiseErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, -1, DitherNone, 2), PrimDitherNoiseErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, 100, DitherFS, 1), PrimDitherLevelsErr);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, 0, DitherBayer, 257), PrimDitherLevelsErr);
    // An unknown method is no error, and does nothing.
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, 0, 5, 2), PrimOk);
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 12, d, 12, {3, 2}, 0, -1, 2), PrimOk);
    EXPECT_EQ(dst.bytes, before);
    // Steps are not looked at: one row works with any.
    EXPECT_EQ(primiReduceBits_8u_AC4R(s, 0, d, -7, {3, 1}, 0, DitherFS, 2), PrimOk);
}

// Allocations that fail from the n-th block on, with a count of the blocks
// still held: a failure writes nothing and releases what was granted. Bayer
// without noise and no dither at all need no memory.
int gAllocationsLeft = 0, gHeld = 0;
void* (*gSystemMalloc)(size_t) = nullptr;
void (*gSystemFree)(void*) = nullptr;

TEST_P(ReduceBits, FailedAllocationsWriteNothingAndReleaseTheRest) {
    Image src = RandomImage(9, 4, 0, 5), dst = RandomImage(9, 4, 0, 6);
    const std::vector<uint8_t> before = dst.bytes;
    gSystemMalloc = std::exchange(i_malloc, [](size_t bytes) {
        return gAllocationsLeft-- <= 0 ? nullptr : (++gHeld, gSystemMalloc(bytes));
    });
    gSystemFree = std::exchange(i_free, [](void* block) {
        gHeld -= block != nullptr;
        gSystemFree(block);
    });
    for (int32_t dither = DitherFS; dither <= DitherBayer; ++dither)
        for (int32_t noise : {0, 20}) {
            if (dither == DitherBayer && noise == 0) continue;
            for (int32_t granted = 0; granted <= 5; ++granted) {
                gAllocationsLeft = granted;
                gHeld = 0;
                PrimStatus status = ReduceBitsOf(src, dst, noise, dither, 8);
                EXPECT_EQ(gHeld, 0) << "dither " << dither << " noise " << noise << " granted " << granted;
                if (status == PrimOk) break;
                EXPECT_EQ(status, PrimMemAllocErr);
                EXPECT_EQ(dst.bytes, before);
            }
            EXPECT_NE(dst.bytes, before) << "dither " << dither << " noise " << noise << " never ran";
            dst.bytes = before;
        }
    gAllocationsLeft = 0;
    EXPECT_EQ(ReduceBitsOf(src, dst, 0, DitherBayer, 8), PrimOk);
    EXPECT_EQ(ReduceBitsOf(src, dst, 50, DitherNone, 8), PrimOk);
    i_malloc = gSystemMalloc;
    i_free = gSystemFree;
}

KV_ALL_JUMP_INDICES(ReduceBits);

}  // namespace
