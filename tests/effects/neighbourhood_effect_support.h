// Helpers of the tests of the effects built on neighbourhood filters: the
// frame as they see it, with its edges replicated, their guards and words,
// and a count of their allocations.
#ifndef KV_TESTS_EFFECTS_NEIGHBOURHOOD_EFFECT_SUPPORT_H
#define KV_TESTS_EFFECTS_NEIGHBOURHOOD_EFFECT_SUPPORT_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "colour_effect_support.h"
#include "kelvarine.h"
#include "kelvarine_prims.h"
#include "primitives/neighbourhood/window_images.h"
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

// Every byte of a pixel, the fourth too, becomes the minimum or maximum of
// its channel over the size x size square whose element {size / 2, size / 2}
// lies on the pixel, the frame's edges replicated.
inline Bytes SquarePick(const Bytes& frame, int32_t width, int32_t height, int32_t size, bool max) {
    const Window square = Rectangle({size, size}, {size / 2, size / 2});
    Bytes out(frame.size());
    for (size_t i = 0; i < out.size(); ++i)
        out[i] = PickOver(square, Replicated{frame, width, height}, int32_t(i / 4 % width), int32_t(i / 4 / width), int(i % 4), max);
    return out;
}

// A catalog instance reports preset in word 0 and leaves word 1 as the
// caller had it; after SetArgs with each given value it reports the held one.
inline void ExpectPresetAndClamps(int32_t id, int32_t preset, std::vector<std::pair<int32_t, int32_t>> clamps) {
    Effect_Base* effect = Kelvarine_NewInstance(id);
    ASSERT_NE(effect, nullptr);
    EffectArgs args = {{0, 9}};
    EXPECT_EQ(Kelvarine_GetEffectArgs(effect, &args), 0);
    EXPECT_EQ(args.word[0], preset) << id;
    EXPECT_EQ(args.word[1], 9) << id;
    for (auto [given, held] : clamps) {
        EffectArgs set = {{given}};
        EXPECT_EQ(Kelvarine_SetEffectArgs(effect, &set), 0);
        Kelvarine_GetEffectArgs(effect, &args);
        EXPECT_EQ(args.word[0], held) << id << " given " << given;
    }
    Kelvarine_Destory(effect);
}

// In a fresh process, each effect of ids refuses a null frame and a frame of
// width x height with -1, leaving its bytes, and the log ends with those
// refusals in the words of name.
inline void ExpectGuarded(const std::vector<int32_t>& ids, int32_t width, int32_t height, const std::string& name) {
    auto child = RunInChild([&] {
        unsigned char pixel[4] = {1, 2, 3, 4};
        bool refused = true;
        for (int32_t id : ids) {
            Effect_Base* effect = Kelvarine_NewInstance(id);
            refused = refused && Kelvarine_Proc(effect, nullptr, 2, 2) == -1 &&
                      Kelvarine_Proc(effect, pixel, width, height) == -1;
            Kelvarine_Destory(effect);
        }
        _exit(refused && pixel[0] == 1 && pixel[1] == 2 && pixel[2] == 3 && pixel[3] == 4 ? 0 : 1);
    });
    ASSERT_EQ(child.exitCode, 0);
    std::string expected;
    for (size_t i = 0; i < ids.size(); ++i)
        expected += " *** " + name + " Effect Src == NULL  *** " + name + " Effect Width = " + std::to_string(width) +
                    " Height =" + std::to_string(height);
    const std::string log = ReadFile("/tmp/Kelvarine.log");
    ASSERT_GE(log.size(), expected.size());
    EXPECT_EQ(log.substr(log.size() - expected.size()), expected);
}

// Counts, while alive, the blocks taken and given back through the
// library's allocation hooks, and fills each new block with kUnset, which
// stands for memory never written.
class AllocationCounter {
public:
    static constexpr uint8_t kUnset = 0xA7;
    AllocationCounter() : savedMalloc_(i_malloc), savedFree_(i_free) {
        taken = given = 0;
        i_malloc = [](size_t n) {
            ++taken;
            void* block = std::malloc(n);
            if (block != nullptr) std::memset(block, kUnset, n);
            return block;
        };
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
