// A plain model of the affine warp's rules, for the tests: where the source
// rectangle lands, the clipped polygon, the inverse that a destination pixel
// samples by, the four samplers and the edge softening, written out one
// pixel at a time in the arithmetic the design gives.
#ifndef KV_TESTS_PRIMITIVES_GEOMETRY_WARP_REFERENCE_H
#define KV_TESTS_PRIMITIVES_GEOMETRY_WARP_REFERENCE_H

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kelvarine_prims.h"
#include "primitives/pixel/image_under_test.h"

namespace warpref {

using kvtest::ImageUnderTest;

struct Pt {
    double x, y;
};

// c00, c01, c02, c10, c11, c12: x' = c00 x + c01 y + c02, y' = c10 x + c11 y + c12.
struct Coeffs {
    double c00, c01, c02, c10, c11, c12;
};

inline Coeffs ShearCoeffs(double xShear, double yShear, double xShift, double yShift) {
    return {1.0, xShear, xShift, yShear, 1.0, yShift};
}

// The rotation about a centre as the warp receives it. Quarter turns and
// no turn at all keep exact coefficients and shifts without trigonometry.
inline Coeffs RotationCoeffs(double angle, double xc, double yc) {
    double a = angle - static_cast<int32_t>(angle / 360.0) * 360.0;
    if (a < 0.0) a += 360.0;
    if (a == 0.0) return {1.0, 0.0, 0.0, 0.0, 1.0, 0.0};
    if (a == 90.0) return {0.0, 1.0, 0.0 - (yc - xc), -1.0, 0.0, yc + xc};
    if (a == 180.0) return {-1.0, 0.0, xc + xc, 0.0, -1.0, yc + yc};
    if (a == 270.0) return {0.0, -1.0, xc + yc, 1.0, 0.0, yc - xc};
    const double r = a / 180.0 * 3.141592653589793;
    const double xShift = xc - xc * cos(r) - yc * sin(r);
    const double yShift = yc - cos(r) * yc + xc * sin(r);
    return {cos(r), sin(r), xShift, 0.0 - sin(r), cos(r), yShift};
}

// The images of the corners top-left, top-right, bottom-right, bottom-left.
inline std::vector<Pt> QuadOf(const Coeffs& c, PrimRect roi) {
    const double x0 = roi.x, y0 = roi.y, x1 = roi.x + roi.width - 1, y1 = roi.y + roi.height - 1;
    const Pt corners[4] = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    std::vector<Pt> quad;
    for (const Pt& p : corners)
        quad.push_back({c.c00 * p.x + c.c01 * p.y + c.c02, c.c10 * p.x + c.c11 * p.y + c.c12});
    return quad;
}

// Destination (X, Y) samples at (a X + b Y + offX, c X + e Y + offY), the
// inverse taken from three corners of the quad.
struct Sampling {
    double a, b, offX, c, e, offY;
    int orientation;  // 1: the quad runs clockwise on the screen
};

inline Sampling SamplingOf(const std::vector<Pt>& q, PrimRect roi) {
    const double d = (q[1].x - q[0].x) * (q[2].y - q[1].y) - (q[2].x - q[1].x) * (q[1].y - q[0].y);
    const double k = 1.0 / d, u = (roi.width - 1) * k, v = (roi.height - 1) * k;
    Sampling s;
    s.a = (q[2].y - q[1].y) * u;
    s.b = 0.0 - (q[2].x - q[1].x) * u;
    s.c = 0.0 - (q[1].y - q[0].y) * v;
    s.e = (q[1].x - q[0].x) * v;
    s.offX = roi.x - s.a * q[0].x - s.b * q[0].y;
    s.offY = roi.y - s.c * q[0].x - s.e * q[0].y;
    s.orientation = k > 0.0 ? 1 : 0;
    return s;
}

// One side of the rectangle: alongY compares y (else x), keepHigh keeps the
// points at or above the limit (else at or below). A polygon whose extreme
// on this side is within the limit passes unchanged.
inline std::vector<Pt> ClipSide(const std::vector<Pt>& in, bool alongY, bool keepHigh, double limit,
                                double extreme) {
    if (keepHigh ? limit <= extreme : limit >= extreme) return in;
    auto along = [&](Pt p) { return alongY ? p.y : p.x; };
    auto across = [&](Pt p) { return alongY ? p.x : p.y; };
    auto beyond = [&](double v) { return keepHigh ? v < limit : v > limit; };
    std::vector<Pt> out;
    for (size_t i = 0; i < in.size(); ++i) {
        const Pt a = in[i], b = in[(i + 1) % in.size()];
        // An edge that ends beyond the limit and starts on it or beyond adds nothing.
        if (beyond(along(b)) && (beyond(along(a)) || along(a) == limit)) continue;
        if (along(b) != limit && (beyond(along(a)) || beyond(along(b)))) {
            const double t = ((limit - along(a)) * (across(b) - across(a))) / (along(b) - along(a)) + across(a);
            out.push_back(alongY ? Pt{t, limit} : Pt{limit, t});
            if (beyond(along(b))) continue;
        }
        out.push_back(b);
    }
    return out;
}

// The quad clipped to the rectangle, upper, lower, left, then right side,
// with repeated points dropped; empty when it misses.
inline std::vector<Pt> ClipToRect(std::vector<Pt> p, int xMin, int yMin, int xMax, int yMax) {
    double minX = p[0].x, maxX = p[0].x, minY = p[0].y, maxY = p[0].y;
    for (const Pt& q : p) {
        minX = std::min(minX, q.x), maxX = std::max(maxX, q.x);
        minY = std::min(minY, q.y), maxY = std::max(maxY, q.y);
    }
    if (yMin > maxY || minY > yMax || xMin > maxX || minX > xMax) return {};
    if (minX >= xMin && maxX <= xMax && minY >= yMin && maxY <= yMax) return p;
    p = ClipSide(p, true, true, yMin, minY);
    p = ClipSide(p, true, false, yMax, maxY);
    p = ClipSide(p, false, true, xMin, minX);
    p = ClipSide(p, false, false, xMax, maxX);
    std::vector<Pt> kept;
    for (const Pt& q : p)
        if (kept.empty() || q.x != kept.back().x || q.y != kept.back().y) kept.push_back(q);
    return kept;
}

inline uint8_t Saturate(int32_t v) { return static_cast<uint8_t>(v < 0 ? 0 : (v > 255 ? 255 : v)); }

// Channel ch of source pixel (x, y).
inline int32_t At(ImageUnderTest& src, int32_t x, int32_t y, int ch) { return src.at(x, y, ch); }

// Nearest: the position, 0.5 already added, truncated.
inline void Nearest(ImageUnderTest& src, double x, double y, uint8_t out[3]) {
    for (int ch = 0; ch < 3; ++ch) out[ch] = static_cast<uint8_t>(At(src, int32_t(x), int32_t(y), ch));
}

// Bilinear in fixed point: 14-bit fractions rounded to nearest, each row
// blended and shifted by 8, the rows blended with one half and shifted by 20.
inline void Linear(ImageUnderTest& src, double x, double y, uint8_t out[3]) {
    int32_t ix = int32_t(x), iy = int32_t(y);
    if (ix == src.size.width - 1) --ix;
    if (iy == src.size.height - 1) --iy;
    const int32_t fx = int32_t(std::nearbyint((x - ix) * 16384.0)), fy = int32_t(std::nearbyint((y - iy) * 16384.0));
    for (int ch = 0; ch < 3; ++ch) {
        const int32_t top = (At(src, ix, iy, ch) * (16384 - fx) + At(src, ix + 1, iy, ch) * fx) >> 8;
        const int32_t bottom = (At(src, ix, iy + 1, ch) * (16384 - fx) + At(src, ix + 1, iy + 1, ch) * fx) >> 8;
        out[ch] = Saturate((top * (16384 - fy) + bottom * fy + 524288) >> 20);
    }
}

// The fixed-point cubic: a 4x4 block whose first tap shifts inward at the
// borders, weights round(16384 L(t)) of the Lagrange cubic through 0..3 at
// t = round(512 t) / 512, rows shifted by 8 and kept in 16 bits.
inline int32_t LagrangeWeight(int k, int32_t f) {
    const double t = f / 512.0;
    const double nodes[4] = {0, 1, 2, 3};
    double w = 1.0;
    for (int m = 0; m < 4; ++m)
        if (m != k) w *= (t - nodes[m]) / (nodes[k] - nodes[m]);
    return int32_t(std::lround(16384.0 * w));
}

inline void Cubic(ImageUnderTest& src, double x, double y, uint8_t out[3]) {
    auto firstTap = [](float v, int32_t size) {
        int32_t i = int32_t(v);
        if (i > size - 3) i = size - 3;
        return i > 0 ? i - 1 : i;
    };
    const float fxp = float(x), fyp = float(y);
    const int32_t ix = firstTap(fxp, src.size.width), iy = firstTap(fyp, src.size.height);
    const int32_t f = int32_t(std::nearbyint((fxp - float(ix)) * 512.0f));
    const int32_t g = int32_t(std::nearbyint((fyp - float(iy)) * 512.0f));
    // Taps 2 and 3 take the first two weights at 1536 - f, swapped.
    const int32_t wx[4] = {LagrangeWeight(0, f), LagrangeWeight(1, f), LagrangeWeight(1, 1536 - f),
                           LagrangeWeight(0, 1536 - f)};
    const int32_t wy[4] = {LagrangeWeight(0, g), LagrangeWeight(1, g), LagrangeWeight(1, 1536 - g),
                           LagrangeWeight(0, 1536 - g)};
    for (int ch = 0; ch < 3; ++ch) {
        int32_t sum = 0;
        for (int r = 0; r < 4; ++r) {
            int32_t row = 0;
            for (int k = 0; k < 4; ++k) row += At(src, ix + k, iy + r, ch) * wx[k];
            sum += int16_t(row >> 8) * wy[r];
        }
        out[ch] = Saturate((sum + 524288) >> 20);
    }
}

// Catmull-Rom in double around trunc(position + 1e-7), taps clamped to the
// image, one square of the first weight taken in float.
inline void CatmullRomWeights(double t, double w[4]) {
    const float tf = float(t);
    w[0] = (-0.5 * t * t - 0.5) * t + double(tf * tf);
    w[1] = (1.5 * t - 2.5) * (t * t) + 1.0;
    w[2] = (-1.5 * (t * t) + 2 * t + 0.5) * t;
    w[3] = ((t * t) - t) * t * 0.5;
}

inline void CatmullRom(ImageUnderTest& src, double x, double y, uint8_t out[3]) {
    const int32_t ix = int32_t(x + 1e-7), iy = int32_t(y + 1e-7);
    double wx[4], wy[4];
    CatmullRomWeights(x - ix, wx);
    CatmullRomWeights(y - iy, wy);
    auto clamp = [](int32_t v, int32_t size) { return std::min(std::max(v, 0), size - 1); };
    for (int ch = 0; ch < 3; ++ch) {
        double sum = 0.0;
        for (int r = 0; r < 4; ++r) {
            double across = 0.0;
            for (int k = 0; k < 4; ++k)
                across += At(src, clamp(ix - 1 + k, src.size.width), clamp(iy - 1 + r, src.size.height), ch) * wx[k];
            sum += across * wy[r];
        }
        out[ch] = sum > 255.0 ? 255 : (sum < 0.0 ? 0 : uint8_t(int32_t(sum + 0.5)));
    }
}

// The softening of the slanted edges of the clipped polygon, in edge order:
// at each column (flat edge) or row (steep edge) the pixel just outside the
// edge becomes outside * |v - outside| + inside * |v - inside|, all four
// bytes, rounded half up.
inline void SmoothEdges(ImageUnderTest& dst, const std::vector<Pt>& polygon, int orientation, PrimRect roi) {
    if (polygon.size() < 3) return;
    for (size_t k = 0; k < polygon.size(); ++k) {
        const Pt p = polygon[k], q = polygon[(k + 1) % polygon.size()];
        const double dx = q.x - p.x, dy = q.y - p.y;
        if (dx == 0.0 || dy == 0.0) continue;
        const bool steep = fabs(dy) > fabs(dx);
        const double from = steep ? p.y : p.x, to = steep ? q.y : q.x;
        const double slope = steep ? dx / dy : dy / dx;
        const bool rising = (steep ? dy : dx) > 0.0;
        // Clockwise, the inside lies below a rightward edge and left of a downward one.
        const bool insideIsCeil = steep ? (orientation == 1) != rising : (orientation == 1) == rising;
        for (int32_t s = int32_t(ceil(std::min(from, to))); s <= int32_t(floor(std::max(from, to))); ++s) {
            const double v = (s - from) * slope + (steep ? p.x : p.y);
            const double inside = insideIsCeil ? ceil(v) : floor(v), outside = insideIsCeil ? floor(v) : ceil(v);
            const int32_t lo = steep ? roi.x : roi.y, hi = lo + (steep ? roi.width : roi.height) - 1;
            if (v == inside || std::min(inside, outside) < lo || std::max(inside, outside) > hi) continue;
            const double w1 = fabs(v - outside), w2 = fabs(v - inside);
            for (int byte = 0; byte < 4; ++byte) {
                uint8_t& o = steep ? dst.at(int32_t(outside), s, byte) : dst.at(s, int32_t(outside), byte);
                const uint8_t i = steep ? dst.at(int32_t(inside), s, byte) : dst.at(s, int32_t(inside), byte);
                o = uint8_t(o * w1 + i * w2 + 0.5);
            }
        }
    }
}

}  // namespace warpref

#endif
