// Images for the filters that read around their region: a source buffer
// from the first readable byte to the last (so that the address sanitizer
// sees any read past the reach), and a destination whose untouched bytes
// are checked too.
#ifndef KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_PADDED_SOURCE_H
#define KV_TESTS_PRIMITIVES_NEIGHBOURHOOD_PADDED_SOURCE_H

#include <cstdint>
#include <vector>

#include "kelvarine_prims.h"
#include "test_support.h"

namespace kvtest {

// How far a filter reads around each pixel of its region.
struct Reach {
    int32_t left, top, right, bottom;
};

// Random pixels, with extraStep bytes of gap after every row.
struct PaddedSource {
    PaddedSource(PrimSize roi, Reach reach, int32_t extraStep, uint32_t seed)
        : reach(reach),
          step((reach.left + roi.width + reach.right) * 4 + extraStep),
          bytes(RandomBytes(size_t(reach.top + roi.height + reach.bottom - 1) * step +
                                (reach.left + roi.width + reach.right) * 4,
                            seed)) {}

    const uint8_t* roi() const { return bytes.data() + size_t(reach.top) * step + 4 * reach.left; }
    // Channel c of pixel (x, y) of the region; x and y may lie in the reach.
    int at(int32_t x, int32_t y, int c) const { return roi()[ptrdiff_t(y) * step + 4 * x + c]; }
    uint8_t& byte(int32_t x, int32_t y, int c) { return bytes[size_t(reach.top + y) * step + 4 * (reach.left + x) + c]; }

    Reach reach;
    int32_t step;
    std::vector<uint8_t> bytes;
};

// Random bytes with gaps after the rows; Expected is what a filter writing
// value(x, y, c) into the colour bytes, and nothing else, leaves.
struct Destination {
    Destination(PrimSize roi, int32_t extraStep, uint32_t seed)
        : size(roi), step(roi.width * 4 + extraStep), bytes(RandomBytes(size_t(step) * roi.height, seed)) {}

    uint8_t* data() { return bytes.data(); }

    template <class Value>
    std::vector<uint8_t> Expected(Value value) const {
        std::vector<uint8_t> expected = bytes;
        for (int32_t y = 0; y < size.height; ++y)
            for (int32_t x = 0; x < size.width; ++x)
                for (int c = 0; c < 3; ++c) expected[size_t(y) * step + 4 * x + c] = value(x, y, c);
        return expected;
    }

    PrimSize size;
    int32_t step;
    std::vector<uint8_t> bytes;
};

// Region sizes that reach the wide loops, their tails and their seams.
inline const std::vector<PrimSize>& AwkwardRegions() {
    static const std::vector<PrimSize> sizes = {{1, 1}, {1, 4}, {2, 3}, {3, 2}, {4, 1},  {5, 3},
                                                {7, 2}, {8, 3}, {13, 2}, {17, 3}, {33, 2}, {70, 2}};
    return sizes;
}

// While alive, every allocation through the library's hook fails.
class FailingAllocations {
public:
    FailingAllocations() : saved_(i_malloc) { i_malloc = [](size_t) -> void* { return nullptr; }; }
    ~FailingAllocations() { i_malloc = saved_; }

private:
    void* (*saved_)(size_t);
};

}  // namespace kvtest

#endif
