// Windows of offsets, and images for the rank filters inside random bytes
// (see image_under_test.h): a source region with room around it for a
// window's reach, a destination of the region's size; the rank filters'
// picks, and where two images differ.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_WINDOW_IMAGES_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_WINDOW_IMAGES_H

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "padded_source.h"
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
inline Reach ReachOf(const Window& window) {
    Reach reach = {0, 0, 0, 0};
    for (const Offset& o : window) {
        reach.left = std::max(reach.left, -o.dx), reach.right = std::max(reach.right, o.dx);
        reach.top = std::max(reach.top, -o.dy), reach.bottom = std::max(reach.bottom, o.dy);
    }
    return reach;
}

struct Images {
    Images(PrimSize size, const Window& window, int32_t padding, int32_t offset, uint32_t seed)
        : reach(ReachOf(window)),
          src(size.width + reach.left + reach.right, size.height + reach.top + reach.bottom, padding, offset, seed),
          dst(size.width, size.height, 2 * padding, 3 - offset, seed + 1) {}
    const uint8_t* region() { return &src.at(reach.left, reach.top, 0); }
    // Byte c of the source pixel at o from the region's pixel (x, y).
    uint8_t& at(int32_t x, int32_t y, Offset o, int c) { return src.at(reach.left + x + o.dx, reach.top + y + o.dy, c); }

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

// The maximum (or minimum) of channel c over the window around (x, y), read
// through at(x, y, c).
template <class Source>
uint8_t PickOver(const Window& window, const Source& at, int32_t x, int32_t y, int c, bool max) {
    int pick = max ? 0 : 255;
    for (const Offset& o : window) pick = max ? std::max(pick, int(at(x + o.dx, y + o.dy, c))) : std::min(pick, int(at(x + o.dx, y + o.dy, c)));
    return uint8_t(pick);
}

// dst as a rank filter with replicated borders leaves it: all four bytes of
// each pixel picked over the window, coordinates clamped to the image.
inline ImageUnderTest Picked(ImageUnderTest dst, ImageUnderTest& src, const Window& window, bool max) {
    auto at = [&](int32_t x, int32_t y, int c) {
        return src.at(std::clamp(x, 0, src.size.width - 1), std::clamp(y, 0, src.size.height - 1), c);
    };
    for (int32_t y = 0; y < src.size.height; ++y)
        for (int32_t x = 0; x < src.size.width; ++x)
            for (int c = 0; c < 4; ++c) dst.at(x, y, c) = PickOver(window, at, x, y, c, max);
    return dst;
}

// Empty when the buffers are equal; else the first differing byte.
inline std::string FirstDifference(const ImageUnderTest& got, const ImageUnderTest& expected) {
    for (size_t i = 0; i < got.bytes.size(); ++i) {
        if (got.bytes[i] == expected.bytes[i]) continue;
        std::ostringstream text;
        const long at = long(i) - got.start;
        text << "row " << at / got.step << ", column byte " << at % got.step << ": got " << int(got.bytes[i])
             << ", expected " << int(expected.bytes[i]);
        return text.str();
    }
    return "";
}

}  // namespace kvtest

#endif
