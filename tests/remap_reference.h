// A plain reference of primiRemap_8u_AC4R for valid arguments: each kernel
// written out as its rule, one pixel and one channel at a time. The affine
// warp's reference samples with the same kernels.
#ifndef KV_TESTS_REMAP_REFERENCE_H
#define KV_TESTS_REMAP_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <cstring>

#include "kelvarine_prims.h"

namespace kvtest {

struct RemapReference {
    const uint8_t* src;
    PrimSize srcSize;
    int32_t srcStep;
    PrimRect roi;  // clipped to the source by Run

    int S(int x, int y, int c) const { return src[y * srcStep + 4 * x + c]; }
    int Clamp(int i, int n) const { return i < 0 ? 0 : (i > n - 1 ? n - 1 : i); }
    static uint8_t Saturate(int v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }
    static uint8_t Finish(double v) { return v > 255.0 ? 255 : (v < 0.0 ? 0 : static_cast<uint8_t>(static_cast<int>(v + 0.5))); }
    int xMin() const { return roi.x; }
    int yMin() const { return roi.y; }
    int xMax() const { return roi.x + roi.width - 1; }
    int yMax() const { return roi.y + roi.height - 1; }

    void Nearest(float x, float y, uint8_t* d) const {
        for (int c = 0; c < 3; ++c) d[c] = static_cast<uint8_t>(S(static_cast<int>(x + 0.5f), static_cast<int>(y + 0.5f), c));
    }

    // 14-bit fractions, rows shifted by 8, their blend rounded by bias (the
    // remap's 33, the warp's half). A cell stepped back from column or row 0
    // has weight 0 on the column or row before the image, which is not read.
    void Linear(double x, double y, uint8_t* d, int bias = 33) const {
        int ix = static_cast<int>(x), iy = static_cast<int>(y);
        if (ix == xMax()) --ix;
        if (iy == yMax()) --iy;
        int fx = static_cast<int>(std::nearbyint((x - ix) * 16384.0));
        int fy = static_cast<int>(std::nearbyint((y - iy) * 16384.0));
        for (int c = 0; c < 3; ++c) {
            auto across = [&](int row) {
                int left = fx == 16384 ? 0 : S(ix, row, c) * (16384 - fx);
                return (left + S(ix + 1, row, c) * fx) >> 8;
            };
            int top = fy == 16384 ? 0 : across(iy);
            int bottom = across(iy + 1);
            d[c] = Saturate((top * (16384 - fy) + bottom * fy + bias) >> 20);
        }
    }

    // Weights of the cubic through samples at 0..3, t = f / 512, 14 bits.
    static int L0(int f) { double t = f / 512.0; return static_cast<int>(std::lround(16384 * (-(t - 1) * (t - 2) * (t - 3) / 6))); }
    static int L1(int f) { double t = f / 512.0; return static_cast<int>(std::lround(16384 * (t * (t - 2) * (t - 3) / 2))); }

    void CubicFixed(float x, float y, uint8_t* d) const {
        int ix = static_cast<int>(x), iy = static_cast<int>(y);
        ix = ix > srcSize.width - 3 ? srcSize.width - 3 : ix;
        iy = iy > srcSize.height - 3 ? srcSize.height - 3 : iy;
        if (ix > 0) --ix;
        if (iy > 0) --iy;
        int f = static_cast<int>(std::nearbyint((x - static_cast<float>(ix)) * 512.0f));
        int g = static_cast<int>(std::nearbyint((y - static_cast<float>(iy)) * 512.0f));
        const int wx[4] = {L0(f), L1(f), L1(1536 - f), L0(1536 - f)};
        const int wy[4] = {L0(g), L1(g), L1(1536 - g), L0(1536 - g)};
        for (int c = 0; c < 3; ++c) {
            int sum = 0;
            for (int r = 0; r < 4; ++r) {
                int row = 0;
                for (int k = 0; k < 4; ++k) row += S(ix + k, iy + r, c) * wx[k];
                sum += static_cast<int16_t>(row >> 8) * wy[r];
            }
            d[c] = Saturate((sum + 524288) >> 20);
        }
    }

    static double SquareInFloat(double t) { float f = static_cast<float>(t); return f * f; }
    static void CubicWeights(double t, double* w) {
        w[0] = ((-1.0 / 6.0 * t + 0.5) * t - 1.0 / 3.0) * t;
        w[1] = 0.5 * (t * t * t - t) + (1.0 - SquareInFloat(t));
        w[2] = (-0.5 * t + 0.5) * (t * t) + t;
        w[3] = (t * t * t - t) / 6.0;
    }
    static void CatmullRomWeights(double t, double* w) {
        w[0] = (-0.5 * (t * t) - 0.5) * t + SquareInFloat(t);
        w[1] = (1.5 * t - 2.5) * (t * t) + 1.0;
        w[2] = (-1.5 * (t * t) + 2 * t + 0.5) * t;
        w[3] = (t * t - t) * t * 0.5;
    }
    static double Sinc(double u) { return u == 0.0 ? 1.0 : std::sin(3.141592653589793 * u) / (3.141592653589793 * u); }
    static void Lanczos3Weights(double d0, double* w) {
        double sum = 0;
        for (int k = 0; k < 6; ++k) {
            double d = d0 + k;
            w[k] = d > -3.0 && d < 3.0 ? Sinc(d) * Sinc(d / 3.0) : 0.0;
            sum += w[k];
        }
        for (int k = 0; k < 6; ++k) w[k] /= sum;
    }

    // Double-precision kernels over clamped taps around trunc(v + 1e-7).
    void Point(double x, double y, int code, uint8_t* d) const {
        int taps = code == InterpLanczos3 ? 6 : 4, before = taps / 2 - 1;
        int ix = static_cast<int>(x + 1e-7), iy = static_cast<int>(y + 1e-7);
        double wx[6], wy[6];
        if (code == InterpLanczos3) {
            Lanczos3Weights(ix - 2 - x, wx);
            Lanczos3Weights(iy - 2 - y, wy);
        } else {
            auto weights = code == InterpCatmullRom ? CatmullRomWeights : CubicWeights;
            weights(x - ix, wx);
            weights(y - iy, wy);
        }
        for (int c = 0; c < 3; ++c) {
            double sum = 0;
            for (int r = 0; r < taps; ++r) {
                double row = 0;
                for (int k = 0; k < taps; ++k)
                    row += S(Clamp(ix - before + k, srcSize.width), Clamp(iy - before + r, srcSize.height), c) * wx[k];
                sum += row * wy[r];
            }
            d[c] = Finish(sum);
        }
    }

    // The smoothing rows' linear kernel, 16 fraction bits, values times 64.
    void Linear16(float x, float y, uint8_t* d) const {
        int fx = static_cast<int>(x * 65536.0f), fy = static_cast<int>(y * 65536.0f);
        int col = fx >> 16, wx = fx & 0xFFFF, row = fy >> 16, wy = fy & 0xFFFF;
        if (fx >= (srcSize.width - 1) * 65536) col = srcSize.width - 2, wx = 65536;
        if (fy >= (srcSize.height - 1) * 65536) row = srcSize.height - 2, wy = 65536;
        for (int c = 0; c < 3; ++c) {
            int top = 64 * S(col, row, c) + ((64 * (S(col + 1, row, c) - S(col, row, c)) * wx) >> 16);
            int bottom = 64 * S(col, row + 1, c) + ((64 * (S(col + 1, row + 1, c) - S(col, row + 1, c)) * wx) >> 16);
            d[c] = static_cast<uint8_t>(((((bottom - top) * wy) >> 16) + top + 32) >> 6);
        }
    }

    void Sample(float x, float y, int code, bool smooth, uint8_t* d) const {
        if (code == InterpNearest) Nearest(x, y, d);
        else if (code == InterpLinear && smooth) Linear16(x, y, d);
        else if (code == InterpLinear) Linear(x, y, d);
        else if (code == InterpCubic && !smooth) CubicFixed(x, y, d);
        else Point(x, y, code, d);
    }

    // The band one pixel wide around the rectangle, with smoothing.
    void Band(float x, float y, uint8_t* d) const {
        bool xOut = x < xMin() || x > xMax(), yOut = y < yMin() || y > yMax();
        int col = x < xMin() ? xMin() : (x > xMax() ? xMax() : static_cast<int>(x));
        int row = y < yMin() ? yMin() : (y > yMax() ? yMax() : static_cast<int>(y));
        float kx = x < xMin() ? static_cast<float>(xMin()) - x : (x > xMax() ? x - static_cast<float>(xMax()) : 1.0f);
        float ky = y < yMin() ? static_cast<float>(yMin()) - y : (y > yMax() ? y - static_cast<float>(yMax()) : 1.0f);
        float keep, take;
        if (!yOut) keep = kx, take = 1.0f - kx;
        else if (xOut) take = (1.0f - kx) * (1.0f - ky), keep = 1.0f - take;
        else keep = ky, take = 1.0f - ky;
        for (int c = 0; c < 3; ++c) d[c] = static_cast<uint8_t>(static_cast<int>(d[c] * keep + S(col, row, c) * take));
    }

    // The remap of a whole destination rectangle, for arguments that pass
    // every test of the entry.
    void Run(const float* xMap, int32_t xStep, const float* yMap, int32_t yStep, uint8_t* dst, int32_t dstStep,
             PrimSize dstSize, int32_t interpolation) {
        roi.width = roi.width < srcSize.width - roi.x ? roi.width : srcSize.width - roi.x;
        roi.height = roi.height < srcSize.height - roi.y ? roi.height : srcSize.height - roi.y;
        bool smooth = (static_cast<uint32_t>(interpolation) & 0x80000000u) != 0;
        int code = interpolation & 0x7FFFFFFF;
        int w = srcSize.width, h = srcSize.height;
        if ((w < 6 || h < 6) && code == InterpLanczos3) code = InterpCubic;
        if ((w < 4 || h < 4) && (code == InterpCubic || code == InterpCatmullRom)) code = InterpLinear;
        if (w == 1 || h == 1) code = InterpNearest;
        for (int j = 0; j < dstSize.height; ++j)
            for (int i = 0; i < dstSize.width; ++i) {
                float x, y;
                memcpy(&x, reinterpret_cast<const uint8_t*>(xMap) + j * xStep + 4 * i, 4);
                memcpy(&y, reinterpret_cast<const uint8_t*>(yMap) + j * yStep + 4 * i, 4);
                uint8_t* d = dst + j * dstStep + 4 * i;
                int grow = smooth ? 1 : 0;
                if (x < xMin() - grow || x > xMax() + grow || y < yMin() - grow || y > yMax() + grow) continue;
                if (x < xMin() || x > xMax() || y < yMin() || y > yMax())
                    Band(x, y, d);
                else
                    Sample(x, y, code, smooth, d);
            }
    }
};

}  // namespace kvtest

#endif
