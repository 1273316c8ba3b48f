// Softening the slanted edges of a warped picture: the pixel just outside an
// edge takes on the colour of its neighbour inside in proportion to how far
// the edge reaches over it.
#include <cmath>

#include "primitives/geometry/quad_clip.h"

namespace PRIM_BUILD {
namespace {

// The first pixel becomes first * w1 + second * w2 in each of its four
// bytes, the fourth included; the weights add up to 1, so nothing saturates.
void ownpi_SmoothPel(uint8_t* dst, int32_t dstStep, int32_t x1, int32_t y1, int32_t x2, int32_t y2, double w1,
                     double w2) {
    uint8_t* first = dst + static_cast<ptrdiff_t>(y1) * dstStep + 4 * static_cast<ptrdiff_t>(x1);
    const uint8_t* second = dst + static_cast<ptrdiff_t>(y2) * dstStep + 4 * static_cast<ptrdiff_t>(x2);
    for (int i = 0; i < 4; ++i) first[i] = static_cast<uint8_t>(first[i] * w1 + second[i] * w2 + 0.5);
}

// Walks one edge from p to q across the columns it spans (alongRows false)
// or down the rows (alongRows true). At each step v is where the edge
// crosses that column or row; inside and outside are the pixels on either
// side of it, whichever of ceil(v) and floor(v) the polygon's orientation
// puts within. Pixels beyond the rectangle are left alone.
void SmoothEdge(uint8_t* dst, int32_t dstStep, PolygonPoint p, PolygonPoint q, bool alongRows, int orientation,
                PrimPoint min, PrimPoint max) {
    const double walkFrom = alongRows ? p.y : p.x, walkTo = alongRows ? q.y : q.x;
    const double crossFrom = alongRows ? p.x : p.y, crossTo = alongRows ? q.x : q.y;
    const double slope = (crossTo - crossFrom) / (walkTo - walkFrom);
    const bool rising = walkTo - walkFrom > 0.0;
    const bool insideIsCeil = alongRows ? ((orientation == 1) != rising) : ((orientation == 1) == rising);
    const int32_t crossMin = alongRows ? min.x : min.y, crossMax = alongRows ? max.x : max.y;

    const int32_t start = static_cast<int32_t>(ceil(fmin(walkFrom, walkTo)));
    const int32_t end = static_cast<int32_t>(floor(fmax(walkFrom, walkTo)));
    for (int32_t s = start; s <= end; ++s) {
        const double v = (s - walkFrom) * slope + crossFrom;
        const double inside = insideIsCeil ? ceil(v) : floor(v);
        const double outside = insideIsCeil ? floor(v) : ceil(v);
        if (v == inside) continue;
        if (inside < crossMin || outside < crossMin || inside > crossMax || outside > crossMax) continue;
        const int32_t a = static_cast<int32_t>(inside), b = static_cast<int32_t>(outside);
        const double w1 = fabs(v - outside), w2 = fabs(v - inside);
        if (alongRows) {
            ownpi_SmoothPel(dst, dstStep, b, s, a, s, w1, w2);
        } else {
            ownpi_SmoothPel(dst, dstStep, s, b, s, a, w1, w2);
        }
    }
}

}  // namespace

// Only slanted edges are softened: an edge with no extent in x or in y,
// including every edge the clip itself made, is passed over. A steep edge
// is walked down its rows, a flat one across its columns.
void ownpi_SmoothBorder(uint8_t* dst, int32_t dstStep, const Quad quad, PrimPoint min, PrimPoint max,
                        int orientation) {
    PolygonPoint points[kPolygonRoom], work[kPolygonRoom];
    for (int i = 0; i < 4; ++i) points[i] = {quad[i][0], quad[i][1]};
    int count = 4;
    ownpi_ClipPolygon(points, work, &count, min.x, min.y, max.x, max.y);
    if (count < 3) return;
    for (int k = 0; k < count; ++k) {
        const PolygonPoint p = points[k], q = points[(k + 1) % count];
        const double dx = q.x - p.x, dy = q.y - p.y;
        if (dy == 0.0 || dx == 0.0) continue;
        SmoothEdge(dst, dstStep, p, q, fabs(dy) > fabs(dx), orientation, min, max);
    }
}

}  // namespace PRIM_BUILD
