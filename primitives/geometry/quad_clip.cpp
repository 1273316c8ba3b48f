// Clipping a mapped rectangle against the destination rectangle and turning
// the convex polygon that is left into one span of columns per row.
#include "primitives/geometry/quad_clip.h"

#include <cmath>

#include "primitives/frame/memory.h"

namespace PRIM_BUILD {
namespace {

// A span end that misses an integer by less than this is taken as that
// integer, so that rounding does not lose the pixel on the edge.
constexpr double kSpanTolerance = 1e-13;

struct Extremes {
    double minX, minY, maxX, maxY;
};

Extremes FindExtremes(const PolygonPoint* points, int count) {
    Extremes e = {points[0].x, points[0].y, points[0].x, points[0].y};
    for (int i = 1; i < count; ++i) {
        e.minX = fmin(e.minX, points[i].x);
        e.maxX = fmax(e.maxX, points[i].x);
        e.minY = fmin(e.minY, points[i].y);
        e.maxY = fmax(e.maxY, points[i].y);
    }
    return e;
}

// One side of the rectangle. alongY: the side is a row (the limit bounds y);
// keepHigh: points at or above the limit stay. `extreme` is the polygon's
// least (keepHigh) or greatest coordinate on that axis.
template <bool alongY, bool keepHigh>
void ClipSide(PolygonPoint* from, PolygonPoint* to, int* count, int32_t limitValue, double extreme) {
    const double limit = limitValue;
    auto along = [](const PolygonPoint& p) { return alongY ? p.y : p.x; };
    auto across = [](const PolygonPoint& p) { return alongY ? p.x : p.y; };
    auto outside = [limit](double v) { return keepHigh ? v < limit : v > limit; };

    const int n = *count;
    if (keepHigh ? limit <= extreme : limit >= extreme) {
        for (int i = 0; i < n; ++i) to[i] = from[i];
        return;
    }
    from[n] = from[0];
    int emitted = 0;
    for (int i = 0; i < n; ++i) {
        const PolygonPoint a = from[i], b = from[i + 1];
        const double va = along(a), vb = along(b);
        const bool whollyOutside = keepHigh ? !(limit < va || limit <= vb) : !(limit > va || limit >= vb);
        if (whollyOutside) continue;
        if (vb != limit && (outside(va) || outside(vb))) {
            double crossing = ((limit - va) * (across(b) - across(a))) / (vb - va) + across(a);
            to[emitted++] = alongY ? PolygonPoint{crossing, limit} : PolygonPoint{limit, crossing};
            if (outside(vb)) continue;
        }
        to[emitted++] = b;
    }
    *count = emitted;
}

void ownpi_ClipUpper(PolygonPoint* from, PolygonPoint* to, int* count, int32_t limit, double minY) {
    ClipSide<true, true>(from, to, count, limit, minY);
}
void ownpi_ClipLower(PolygonPoint* from, PolygonPoint* to, int* count, int32_t limit, double maxY) {
    ClipSide<true, false>(from, to, count, limit, maxY);
}
void ownpi_ClipLeft(PolygonPoint* from, PolygonPoint* to, int* count, int32_t limit, double minX) {
    ClipSide<false, true>(from, to, count, limit, minX);
}
void ownpi_ClipRight(PolygonPoint* from, PolygonPoint* to, int* count, int32_t limit, double maxX) {
    ClipSide<false, false>(from, to, count, limit, maxX);
}

// The edge a chain of the perimeter walk is on: x at row r is
// (r - startY) * slope + startX.
struct ChainEdge {
    double startX, startY, slope;
    double At(int32_t row) const { return (row - startY) * slope + startX; }
};

// Moves a chain end on by one point in direction dir (+1 or -1), passing
// over horizontal edges, and takes the edge it lands on. False when the walk
// over a horizontal edge meets the other chain's end.
bool StepChain(const PolygonPoint* points, int count, int dir, int other, int* end, ChainEdge* edge) {
    for (;;) {
        const int from = *end;
        *end = (from + dir + count) % count;
        const PolygonPoint &p = points[from], &q = points[*end];
        if (q.y != p.y) {
            *edge = {p.x, p.y, (q.x - p.x) / (q.y - p.y)};
            return true;
        }
        if (*end == other) return false;
    }
}

int32_t FirstColumn(double v) {
    const double up = ceil(v);
    return static_cast<int32_t>((v + 1.0) - up < kSpanTolerance ? up - 1.0 : up);
}

int32_t LastColumn(double v) {
    const double down = floor(v);
    return static_cast<int32_t>((1.0 - v) + down < kSpanTolerance ? down + 1.0 : down);
}

// Walks the two chains of a convex polygon down from its top point, chain a
// through falling indices and chain b through rising ones, and writes the
// span of each row. Orientation 1 puts chain a on the left.
void ownpi_FindPerimeter(const PolygonPoint* points, int count, int orientation, int32_t* spans) {
    int top = 0;
    for (int i = 1; i < count; ++i)
        if (points[i].y < points[top].y) top = i;
    const int32_t firstRow = static_cast<int32_t>(ceil(points[top].y));
    if (count == 1) {
        spans[0] = spans[1] = static_cast<int32_t>(floor(points[0].x));
        return;
    }
    spans[0] = static_cast<int32_t>(ceil(fmin(points[0].x, points[1].x)));
    spans[1] = static_cast<int32_t>(floor(fmax(points[0].x, points[1].x)));

    int a = top, b = top;
    ChainEdge edgeA = {}, edgeB = {};
    int32_t row = firstRow;
    for (;;) {
        const double formerAY = points[a].y;
        if (points[a].y <= points[b].y && !StepChain(points, count, -1, b, &a, &edgeA)) return;
        if (points[b].y <= formerAY && !StepChain(points, count, +1, a, &b, &edgeB)) return;
        const int32_t last = static_cast<int32_t>(floor(fmin(points[a].y, points[b].y)));
        for (; row <= last; ++row) {
            const double xa = edgeA.At(row), xb = edgeB.At(row);
            int32_t* span = spans + 2 * (row - firstRow);
            span[0] = FirstColumn(orientation == 1 ? xa : xb);
            span[1] = LastColumn(orientation == 1 ? xb : xa);
        }
        row = last + 1;
        if (a == b) return;
    }
}

}  // namespace

// 1 or 0 by the sign of the turns of a convex quad; degenerate before
// non-convex.
int ownpi_CheckQuad(const Quad quad) {
    double e[4][2];
    for (int i = 0; i < 4; ++i) {
        e[i][0] = quad[(i + 1) % 4][0] - quad[i][0];
        e[i][1] = quad[(i + 1) % 4][1] - quad[i][1];
    }
    const double c3 = e[2][0] * e[3][1] - e[3][0] * e[2][1];
    const double c0 = e[3][0] * e[0][1] - e[3][1] * e[0][0];
    const double c1 = e[0][0] * e[1][1] - e[0][1] * e[1][0];
    const double c2 = e[2][1] * e[1][0] - e[2][0] * e[1][1];
    if (c0 == 0.0 || c1 == 0.0 || c2 == 0.0 || c3 == 0.0) return PrimQuadDegenerate;
    const bool positive = c3 > 0.0;
    if ((c0 > 0.0) != positive || (c1 > 0.0) != positive || (c2 > 0.0) != positive) return PrimQuadNotConvex;
    return positive ? 1 : 0;
}

void ownpi_ClipPolygon(PolygonPoint* points, PolygonPoint* work, int* count, int32_t xMin, int32_t yMin,
                       int32_t xMax, int32_t yMax) {
    const Extremes e = FindExtremes(points, *count);
    if (yMin > e.maxY || e.minY > yMax || xMin > e.maxX || e.minX > xMax) {
        *count = 0;
        return;
    }
    if (e.minX >= xMin && e.maxX <= xMax && e.minY >= yMin && e.maxY <= yMax) return;

    // Each step is told the extreme of the polygon as it came in: clipping
    // only shrinks it, so a side it was within stays within.
    ownpi_ClipUpper(points, work, count, yMin, e.minY);
    ownpi_ClipLower(work, points, count, yMax, e.maxY);
    ownpi_ClipLeft(points, work, count, xMin, e.minX);
    ownpi_ClipRight(work, points, count, xMax, e.maxX);

    int kept = *count > 0 ? 1 : 0;
    for (int i = 1; i < *count; ++i)
        if (points[i].x != points[kept - 1].x || points[i].y != points[kept - 1].y) points[kept++] = points[i];
    *count = kept;
}

int ownpi_ClipQuad(const Quad quad, PrimPoint min, PrimPoint max, int orientation, int32_t** spans, int32_t* top,
                   int32_t* bottom) {
    PolygonPoint points[kPolygonRoom], work[kPolygonRoom];
    for (int i = 0; i < 4; ++i) points[i] = {quad[i][0], quad[i][1]};
    int count = 4;
    ownpi_ClipPolygon(points, work, &count, min.x, min.y, max.x, max.y);
    if (count <= 0) return 0;
    // A transform of infinities or NaNs leaves no pixel it could draw.
    for (int i = 0; i < count; ++i)
        if (!std::isfinite(points[i].x) || !std::isfinite(points[i].y)) return 0;

    const Extremes e = FindExtremes(points, count);
    *top = static_cast<int32_t>(ceil(e.minY));
    *bottom = static_cast<int32_t>(floor(e.maxY));
    if (*bottom - *top + 1 <= 0 || floor(e.maxX) < ceil(e.minX)) return 0;

    const int32_t rows = *bottom - *top + 1;
    *spans = primsMalloc_32s(2 * rows);
    if (*spans == nullptr) return 0;
    // Every row starts empty, so that no row can be left with stale columns.
    for (int32_t r = 0; r < rows; ++r) {
        (*spans)[2 * r] = 0;
        (*spans)[2 * r + 1] = -1;
    }
    ownpi_FindPerimeter(points, count, orientation, *spans);
    return 1;
}

}  // namespace PRIM_BUILD
