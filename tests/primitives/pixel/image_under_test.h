// A random 4-byte-per-pixel image inside a larger random buffer, for tests
// that must also see the bytes a primitive is not allowed to touch.
#ifndef KV_TESTS_PRIMITIVES_PIXEL_IMAGE_UNDER_TEST_H
#define KV_TESTS_PRIMITIVES_PIXEL_IMAGE_UNDER_TEST_H

#include <cstdint>
#include <vector>

#include "kelvarine_prims.h"
#include "test_support.h"

namespace kvtest {

struct ImageUnderTest {
    // Rows of width pixels, padding bytes after each row, and the image
    // starting offset bytes into its buffer (so that rows are misaligned).
    ImageUnderTest(int32_t width, int32_t height, int32_t padding, int32_t offset, uint32_t seed)
        : size{width, height},
          step(width * 4 + padding),
          start(offset),
          bytes(RandomBytes(static_cast<size_t>(offset + step * height + 16), seed)) {}

    uint8_t* data() { return bytes.data() + start; }
    uint8_t& at(int32_t x, int32_t y, int32_t byte) { return data()[y * step + 4 * x + byte]; }

    PrimSize size;
    int32_t step;
    int32_t start;
    std::vector<uint8_t> bytes;
};

// Sizes that reach the byte-by-byte loops, the wide loops and their seams.
struct Shape {
    int32_t width, height, padding, offset;
};
inline const std::vector<Shape>& AwkwardShapes() {
    static const std::vector<Shape> shapes = {
        {1, 1, 0, 0}, {1, 5, 3, 1}, {2, 3, 0, 2}, {3, 2, 5, 0}, {5, 3, 4, 3},  {7, 4, 0, 1},
        {8, 2, 1, 0}, {12, 3, 0, 0}, {17, 3, 7, 2}, {20, 2, 0, 0}, {33, 4, 9, 1}, {64, 3, 0, 3},
        {101, 5, 2, 0},
    };
    return shapes;
}

}  // namespace kvtest

#endif
