// A plain model of the affine warp's rules: where the source rectangle
// lands, the clipped polygon, the inverse that a destination pixel samples
// by, the samplers and the edge softening.
#ifndef KV_TESTS_PRIMITIVES_GEOMETRY_WARP_REFERENCE_H
#define KV_TESTS_PRIMITIVES_GEOMETRY_WARP_REFERENCE_H

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "kelvarine_prims.h"
#include "primitives/pixel/image_under_test.h"
#include "remap_reference.h"

namespace warpref {

using kvtest::ImageUnderTest;

struct Pt {
    double x, y;
};

// c00, c01, c02, c10, c11, c12: x' = c00 x + c01 y + c02, y' = c10 x + c11 y + c12.
struct Coeffs {
    double c00, c01, c02, c10, c11, c12;
};

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

// The kernel's sample at (x, y), roi the clipped source rectangle: the
// remap's kernels, except that the nearest position has 0.5 added already
// and the linear blend rounds by a half.
inline void Sample(int32_t mode, ImageUnderTest& src, PrimRect roi, double x, double y, uint8_t out[3]) {
    const kvtest::RemapReference kernels{src.data(), src.size, src.step, roi};
    if (mode == InterpNearest) {
        for (int c = 0; c < 3; ++c) out[c] = src.at(int32_t(x), int32_t(y), c);
    } else if (mode == InterpLinear) {
        kernels.Linear(x, y, out, 524288);
    } else if (mode == InterpCubic) {
        kernels.CubicFixed(float(x), float(y), out);
    } else {
        kernels.Point(x, y, InterpCatmullRom, out);
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
