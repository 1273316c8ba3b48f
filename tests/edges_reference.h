// Plain references of the Sobel border filters and the Canny detector,
// written from their definitions, for the primitive and the effect tests.
#ifndef KV_TESTS_EDGES_REFERENCE_H
#define KV_TESTS_EDGES_REFERENCE_H

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "kelvarine_prims.h"

namespace kvtest {

// An 8-bit image with `margin` rows and columns of memory all round.
struct MarginImage {
    PrimSize size;
    int32_t margin;
    int32_t step;
    std::vector<uint8_t> bytes;

    const uint8_t* origin() const { return bytes.data() + margin * step + margin; }
    uint8_t at(int32_t x, int32_t y) const { return origin()[y * step + x]; }
};

// Where position i outside 0..n-1 reads under a kind that takes image values.
inline int32_t ReferenceBorderIndex(int32_t i, int32_t n, int32_t kind) {
    if (i >= 0 && i < n) return i;
    if (kind == BorderRepl) return i < 0 ? 0 : n - 1;
    if (kind == BorderWrap) return ((i % n) + n) % n;
    // Reflections, walked off either end; MirrorEdge repeats the edge.
    const int32_t edge = kind == BorderMirrorEdge ? 1 : 0;
    while (n > 1 && (i < 0 || i >= n)) i = i < 0 ? -i - edge : 2 * n - 2 + edge - i;
    return n > 1 ? i : 0;
}

// The source value that the filters see at (x, y), inside or outside the
// image. Rows are settled first: a constant row outside is the border value
// all along, whatever the side flags say of its columns.
inline int32_t BorderedPixel(const MarginImage& image, int32_t x, int32_t y, int32_t border, uint8_t value) {
    int32_t kind = border & 15;
    if (kind == BorderInMem) border |= 0xF0;
    auto place = [&](int32_t i, int32_t n, bool memoryBefore, bool memoryAfter, int32_t* out) {
        if ((i >= 0 && i < n) || (i < 0 && memoryBefore) || (i >= n && memoryAfter)) {
            *out = i;
            return true;
        }
        if (kind == BorderConst || kind == BorderInMem) return false;
        *out = ReferenceBorderIndex(i, n, kind);
        return true;
    };
    int32_t row, column;
    if (!place(y, image.size.height, border & BorderInMemTop, border & BorderInMemBottom, &row)) return value;
    if (!place(x, image.size.width, border & BorderInMemLeft, border & BorderInMemRight, &column)) return value;
    return image.at(column, row);
}

enum class SobelFilter { Horiz, NegVert };

// dst(x, y) = sum over the window of column weight times row weight times
// the pixel, with no flip: Horiz is bottom minus top, NegVert right minus left.
inline std::vector<int16_t> SobelReference(const MarginImage& image, SobelFilter filter, int32_t mask, int32_t border,
                                           uint8_t value) {
    const int32_t smooth3[3] = {1, 2, 1}, smooth5[5] = {1, 4, 6, 4, 1};
    const int32_t slope3[3] = {-1, 0, 1}, slope5[5] = {-1, -2, 0, 2, 1};
    const int32_t k = mask == MaskSize3x3 ? 3 : 5, r = k / 2;
    const int32_t* smooth = k == 3 ? smooth3 : smooth5;
    const int32_t* slope = k == 3 ? slope3 : slope5;
    const int32_t* across = filter == SobelFilter::Horiz ? smooth : slope;  // weights along a row
    const int32_t* down = filter == SobelFilter::Horiz ? slope : smooth;    // weights along a column
    std::vector<int16_t> out(size_t(image.size.width) * image.size.height);
    for (int32_t y = 0; y < image.size.height; ++y)
        for (int32_t x = 0; x < image.size.width; ++x) {
            int32_t sum = 0;
            for (int32_t j = 0; j < k; ++j)
                for (int32_t i = 0; i < k; ++i)
                    sum += down[j] * across[i] * BorderedPixel(image, x + i - r, y + j - r, border, value);
            out[size_t(y) * image.size.width + x] = static_cast<int16_t>(sum);
        }
    return out;
}

// Canny over gradients of w x h values, rows `stride` elements apart.
// Magnitudes |dx| + |dy|; the first (w & ~7) columns saturate at 65535.
// Directions: the first (w & ~3) columns test in single precision, the rest
// form double products rounded to single.
inline std::vector<uint8_t> CannyReference(const int16_t* dx, const int16_t* dy, int32_t stride, PrimSize size,
                                           float low, float high) {
    const int32_t w = size.width, h = size.height;
    std::vector<int64_t> magnitude(size_t(w) * h);
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            int64_t m = std::abs(int32_t(dx[y * stride + x])) + std::abs(int32_t(dy[y * stride + x]));
            if (x < (w & ~7) && m > 65535) m = 65535;
            magnitude[size_t(y) * w + x] = float(m) > low ? m : 0;
        }
    auto mag = [&](int32_t x, int32_t y) -> int64_t {
        return x < 0 || y < 0 || x >= w || y >= h ? 0 : magnitude[size_t(y) * w + x];
    };
    std::vector<uint8_t> candidate(size_t(w) * h, 0), edge(size_t(w) * h, 0);
    std::vector<std::pair<int32_t, int32_t>> pending;
    for (int32_t y = 0; y < h; ++y)
        for (int32_t x = 0; x < w; ++x) {
            const int64_t m = mag(x, y);
            if (m == 0) continue;
            const int32_t gx = dx[y * stride + x], gy = dy[y * stride + x];
            const float ax = float(std::abs(gx)), ay = float(std::abs(gy));
            bool vertical, horizontal;
            if (x < (w & ~3)) {
                vertical = 2.4142137f * ax < ay;
                horizontal = !vertical && ay < 0.41421357f * ax;
            } else {
                vertical = float(2.414213562373095 * std::abs(gx)) < ay;
                horizontal = !vertical && ay < float(0.41421356237309503 * std::abs(gx));
            }
            int64_t before, after;
            if (horizontal) {
                before = mag(x - 1, y), after = mag(x + 1, y);
            } else if (vertical) {
                before = mag(x, y - 1), after = mag(x, y + 1);
            } else if ((gx < 0) != (gy < 0)) {
                before = mag(x + 1, y - 1), after = mag(x - 1, y + 1);
            } else {
                before = mag(x - 1, y - 1), after = mag(x + 1, y + 1);
            }
            const bool straight = vertical || horizontal;
            if (!(m > before && (m > after || (straight && m == after)))) continue;
            candidate[size_t(y) * w + x] = 1;
            if (float(m) > high) pending.push_back({x, y});
        }
    // Every candidate 8-connected to a seed through candidates is an edge.
    while (!pending.empty()) {
        auto [x, y] = pending.back();
        pending.pop_back();
        if (edge[size_t(y) * w + x]) continue;
        edge[size_t(y) * w + x] = 255;
        for (int32_t dy8 = -1; dy8 <= 1; ++dy8)
            for (int32_t dx8 = -1; dx8 <= 1; ++dx8) {
                int32_t nx = x + dx8, ny = y + dy8;
                if (nx >= 0 && ny >= 0 && nx < w && ny < h && candidate[size_t(ny) * w + nx] &&
                    !edge[size_t(ny) * w + nx])
                    pending.push_back({nx, ny});
            }
    }
    return edge;
}

}  // namespace kvtest

#endif
