// The result the rank effects must give: every byte of a pixel, the fourth
// too, becomes the minimum or maximum of its channel over the size x size
// square whose element {size / 2, size / 2} lies on the pixel, pixels
// outside the frame taking the nearest edge pixel's value.
#ifndef KV_TESTS_EFFECTS_RANK_REFERENCE_H
#define KV_TESTS_EFFECTS_RANK_REFERENCE_H

#include <algorithm>
#include <cstdint>
#include <vector>

namespace kvtest {

inline std::vector<uint8_t> SquarePick(const std::vector<uint8_t>& frame, int32_t width, int32_t height,
                                       int32_t size, bool max) {
    std::vector<uint8_t> out(frame.size());
    const int32_t half = size / 2;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int32_t c = 0; c < 4; ++c) {
                uint8_t pick = max ? 0 : 255;
                for (int32_t j = 0; j < size; ++j)
                    for (int32_t i = 0; i < size; ++i) {
                        const int32_t sx = std::clamp(x + i - half, 0, width - 1);
                        const int32_t sy = std::clamp(y + j - half, 0, height - 1);
                        const uint8_t v = frame[4 * (size_t(sy) * width + sx) + c];
                        pick = max ? std::max(pick, v) : std::min(pick, v);
                    }
                out[4 * (size_t(y) * width + x) + c] = pick;
            }
    return out;
}

}  // namespace kvtest

#endif
