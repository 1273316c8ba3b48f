// The geometry under the affine warp: the convexity test of a mapped
// rectangle, its clipping against the destination rectangle, the spans of
// the clipped polygon row by row, and the softening of its slanted edges.
#ifndef KV_PRIMITIVES_GEOMETRY_QUAD_CLIP_H
#define KV_PRIMITIVES_GEOMETRY_QUAD_CLIP_H

#include "primitives/frame/build.h"

namespace PRIM_BUILD {

// Results of ownpi_CheckQuad besides 1 and 0, the sign of a valid quad's
// turns. They never leave the geometry code.
constexpr int PrimQuadNotConvex = -4;
constexpr int PrimQuadDegenerate = -5;

// A quad: the images of the source corners top-left, top-right,
// bottom-right, bottom-left, each x then y.
using Quad = double[4][2];

struct PolygonPoint {
    double x, y;
};

// A clip step emits at most two points an edge, so four steps on a quad stay
// within 64 points, and a step first closes its input with a copy of the
// first point. A convex quad needs nine, but rounding at the crossings must
// not be able to overrun the arrays.
constexpr int kPolygonRoom = 65;

int ownpi_CheckQuad(const Quad quad);

// Clips the polygon in points, of *count points, to the rectangle with the
// inclusive corners (xMin, yMin) and (xMax, yMax); the result ends in points,
// and work is scratch of the same room. A polygon that misses the rectangle
// ends with a count of 0.
void ownpi_ClipPolygon(PolygonPoint* points, PolygonPoint* work, int* count, int32_t xMin, int32_t yMin,
                       int32_t xMax, int32_t yMax);

// Clips the quad to the rectangle and turns what is left into one span, first
// and last column, for each row from *top to *bottom. Orientation is 1 for a
// quad that runs clockwise on the screen. Returns 0 when no pixel centre is
// left (or the spans could not be allocated); otherwise 1, and *spans, from
// primsMalloc_32s, goes to primsFree.
int ownpi_ClipQuad(const Quad quad, PrimPoint min, PrimPoint max, int orientation, int32_t** spans, int32_t* top,
                   int32_t* bottom);

// Blends each pixel just outside a slanted edge of the clipped quad with its
// neighbour inside, by how far the edge reaches over it. All four bytes of
// the pixel take part. dst is the image origin.
void ownpi_SmoothBorder(uint8_t* dst, int32_t dstStep, const Quad quad, PrimPoint min, PrimPoint max,
                        int orientation);

}  // namespace PRIM_BUILD

#endif
