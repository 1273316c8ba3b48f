// Images for neighbourhood filters: a source region with room around it for
// a window's reach and a destination of the region's size, both inside
// random bytes (see image_under_test.h).
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_WINDOW_IMAGES_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_WINDOW_IMAGES_H

#include <algorithm>
#include <vector>

#include "primitives/pixel/image_under_test.h"

namespace kvtest {

struct Offset {
    int32_t dx, dy;
};
using Window = std::vector<Offset>;

inline Window Rectangle(PrimSize mask, PrimPoint anchor) {
    Window window;
    for (int32_t y = 0; y < mask.height; ++y)
        for (int32_t x = 0; x < mask.width; ++x) window.push_back({x - anchor.x, y - anchor.y});
    return window;
}

// How far a window reaches beyond its pixel on each side.
struct Reach {
    int32_t left = 0, up = 0, right = 0, down = 0;
};
inline Reach ReachOf(const Window& window) {
    Reach reach;
    for (const Offset& o : window) {
        reach.left = std::max(reach.left, -o.dx), reach.right = std::max(reach.right, o.dx);
        reach.up = std::max(reach.up, -o.dy), reach.down = std::max(reach.down, o.dy);
    }
    return reach;
}

struct Images {
    Images(PrimSize size, const Window& window, int32_t padding, int32_t offset, uint32_t seed)
        : reach(ReachOf(window)),
          src(size.width + reach.left + reach.right, size.height + reach.up + reach.down, padding, offset, seed),
          dst(size.width, size.height, 2 * padding, 3 - offset, seed + 1) {}
    const uint8_t* region() { return &src.at(reach.left, reach.up, 0); }

    Reach reach;
    ImageUnderTest src, dst;
};

// The shapes of the pixel tests, and rows long enough to run over the
// chunks that filters work a row in.
inline std::vector<Shape> WindowShapes() {
    std::vector<Shape> shapes = AwkwardShapes();
    shapes.push_back({130, 3, 4, 1});
    shapes.push_back({261, 2, 0, 2});
    return shapes;
}

}  // namespace kvtest

#endif
