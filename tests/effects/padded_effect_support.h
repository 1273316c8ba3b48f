// Running the padded-copy effects in tests: the frame as they see it, with
// its edges replicated, and a count of the allocations they make.
#ifndef KV_TESTS_EFFECTS_PADDED_EFFECT_SUPPORT_H
#define KV_TESTS_EFFECTS_PADDED_EFFECT_SUPPORT_H

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "kelvarine_prims.h"

namespace kvtest {

// Channel c of the frame at (x, y), with coordinates outside the frame taken
// to the nearest edge pixel.
struct Replicated {
    const std::vector<uint8_t>& frame;
    int width, height;
    int operator()(int x, int y, int c) const {
        x = std::min(std::max(x, 0), width - 1);
        y = std::min(std::max(y, 0), height - 1);
        return frame[(size_t(y) * width + x) * 4 + c];
    }
};

// The frame with each colour byte replaced by value(x, y, c).
template <class Value>
std::vector<uint8_t> WithColours(std::vector<uint8_t> frame, int width, int height, Value value) {
    std::vector<uint8_t> out = frame;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) out[(size_t(y) * width + x) * 4 + c] = value(x, y, c);
    return out;
}

// Counts, while alive, the blocks taken and given back through the
// library's allocation hooks.
class AllocationCounter {
public:
    AllocationCounter() : savedMalloc_(i_malloc), savedFree_(i_free) {
        taken = given = 0;
        i_malloc = [](size_t n) { ++taken; return std::malloc(n); };
        i_free = [](void* p) { ++given; std::free(p); };
    }
    ~AllocationCounter() {
        i_malloc = savedMalloc_;
        i_free = savedFree_;
    }
    static inline int taken = 0;
    static inline int given = 0;

private:
    void* (*savedMalloc_)(size_t);
    void (*savedFree_)(void*);
};

}  // namespace kvtest

#endif
