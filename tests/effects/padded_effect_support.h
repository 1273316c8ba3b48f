// Testing the effects that filter a padded copy of the frame: the frame as
// they see it, with its edges replicated, and a count of their allocations.
#ifndef KV_TESTS_EFFECTS_PADDED_EFFECT_SUPPORT_H
#define KV_TESTS_EFFECTS_PADDED_EFFECT_SUPPORT_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "colour_effect_support.h"
#include "kelvarine_prims.h"
#include "test_support.h"

namespace kvtest {

// Channel c of the frame at (x, y), a coordinate outside taken to the edge.
struct Replicated {
    const Bytes& frame;
    int width, height;
    int operator()(int x, int y, int c) const {
        x = std::min(std::max(x, 0), width - 1);
        y = std::min(std::max(y, 0), height - 1);
        return frame[(size_t(y) * width + x) * 4 + c];
    }
};

// A new instance with word 0 set to word0 runs on random frames of awkward
// sizes; each colour byte must equal reference(at, x, y, c), with at
// reading the frame replicated, and each fourth byte must stay.
template <class Reference>
void ExpectOnRandomFrames(Effect_Base* (*create)(), int word0, Reference reference) {
    const int sizes[][2] = {{1, 1}, {2, 3}, {5, 4}, {7, 2}, {21, 3}};
    for (const auto& size : sizes) {
        const int width = size[0], height = size[1];
        Bytes frame = RandomBytes(size_t(width) * height * 4, uint32_t(word0 * 100 + width));
        Bytes expected = frame;
        const Replicated at{frame, width, height};
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int c = 0; c < 3; ++c) expected[(size_t(y) * width + x) * 4 + c] = reference(at, x, y, c);
        EXPECT_EQ(Processed(create, frame, width, height, &word0), expected)
            << "word 0 = " << word0 << ", " << width << "x" << height;
    }
}

// Counts, while alive, the blocks taken and given back through the
// library's allocation hooks.
class AllocationCounter {
public:
    AllocationCounter() : savedMalloc_(i_malloc), savedFree_(i_free) {
        taken = given = 0;
        i_malloc = [](size_t n) { return ++taken, std::malloc(n); };
        i_free = [](void* p) { ++given, std::free(p); };
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
