#include "tools/sample_picture.h"

#include <cmath>
#include <cstdlib>

namespace {

constexpr int32_t kWidth = 640;
constexpr int32_t kHeight = 400;

struct Pixel {
    int r, g, b;
    int alpha = 255;
};

const Pixel kBlack{0, 0, 0};
const Pixel kWhite{255, 255, 255};

struct Area {
    int32_t x, y, width, height;
};

unsigned char Clamp(int value) { return static_cast<unsigned char>(value < 0 ? 0 : (value > 255 ? 255 : value)); }

// Paints every pixel of the area with shade(x, y), x and y counted from the
// area's top left corner.
template <typename Shade>
void Paint(Frame& frame, Area area, Shade shade) {
    for (int32_t y = 0; y < area.height; ++y) {
        unsigned char* out = &frame.bytes[(static_cast<size_t>(area.y + y) * frame.width + area.x) * 4];
        for (int32_t x = 0; x < area.width; ++x, out += 4) {
            Pixel pixel = shade(x, y);
            out[0] = Clamp(pixel.b);
            out[1] = Clamp(pixel.g);
            out[2] = Clamp(pixel.r);
            out[3] = Clamp(pixel.alpha);
        }
    }
}

// A fully saturated colour; hue runs 0..1535 once round the circle from red.
Pixel Hue(int hue) {
    int t = hue % 256;
    switch (hue / 256 % 6) {
        case 0: return {255, t, 0};
        case 1: return {255 - t, 255, 0};
        case 2: return {0, 255, t};
        case 3: return {0, 255 - t, 255};
        case 4: return {t, 0, 255};
        default: return {255, 0, 255 - t};
    }
}

// The hue circle from left to right, darkening downwards.
Pixel Background(int32_t x, int32_t y) {
    Pixel hue = Hue(x * 1536 / kWidth);
    int light = 255 - y * 192 / kHeight;
    return {hue.r * light / 255, hue.g * light / 255, hue.b * light / 255};
}

Pixel GrayRamp(int32_t x, int32_t) {
    int level = x * 255 / (kWidth - 1);
    return {level, level, level};
}

// Quadrants of 1-pixel vertical stripes, 2-pixel horizontal stripes, a
// 1-pixel checker and an 8-pixel checker, for blurs and rank filters.
Pixel Stripes(int32_t x, int32_t y) {
    bool left = x < 96;
    bool top = y < 80;
    if (top && left) return x % 2 ? kWhite : kBlack;
    if (top) return y / 2 % 2 ? Pixel{230, 40, 40} : Pixel{40, 220, 220};
    if (left) return (x + y) % 2 ? kWhite : kBlack;
    return (x / 8 + y / 8) % 2 ? Pixel{250, 150, 20} : Pixel{20, 30, 110};
}

// Rings that grow finer outwards, so warps show how they bend space.
Pixel Rings(int32_t x, int32_t y) {
    double dx = x - 96;
    double dy = y - 80;
    int level = static_cast<int>(std::lround(127.5 + 127.5 * std::cos(0.012 * (dx * dx + dy * dy))));
    return {level, level, 255 - level};
}

// Noise over a soft gradient, with white and black specks, from a fixed
// xorshift seed: the same texture on every run.
class SpeckledNoise {
public:
    Pixel operator()(int32_t x, int32_t y) {
        uint32_t draw = Next() % 64;
        if (draw == 0) return kWhite;
        if (draw == 1) return kBlack;
        return {80 + x / 2 + Around(40), 140 + Around(40), 60 + y + Around(40)};
    }

private:
    uint32_t Next() {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 17;
        state_ ^= state_ << 5;
        return state_;
    }
    int Around(int spread) { return static_cast<int>(Next() % (2 * spread + 1)) - spread; }

    uint32_t state_ = 0x2545F491u;
};

// Hard edges on a dark ground: a disc, a triangle pointing right, a bar, a
// ring and a diagonal, none of them symmetric to another, so that mirrors and
// rotations show which way they turned.
Pixel Shapes(int32_t x, int32_t y) {
    auto distance2 = [x, y](int cx, int cy) { return (x - cx) * (x - cx) + (y - cy) * (y - cy); };
    if (distance2(70, 88) <= 60 * 60) return {220, 30, 30};
    if (x >= 150 && x < 250 && std::abs(y - 88) * 5 <= (250 - x) * 3) return {30, 200, 60};
    if (x >= 270 && x < 380 && y >= 16 && y < 70) return {40, 60, 230};
    int ring = distance2(325, 125);
    if (ring >= 34 * 34 && ring <= 42 * 42) return kWhite;
    if (x >= 250 && std::abs(x + 2 * y - 560) <= 12) return {240, 220, 30};
    return {40, 40, 40};
}

// Bands of hue under alpha that falls from opaque at the left edge to clear
// at the right, with a clear square and a half-clear disc.
Pixel Translucent(int32_t x, int32_t y) {
    Pixel pixel = Hue(y / 22 * 192);
    pixel.alpha = 255 - x * 255 / 191;
    if (x >= 24 && x < 72 && y >= 64 && y < 112) pixel.alpha = 0;
    if ((x - 140) * (x - 140) + (y - 88) * (y - 88) <= 28 * 28) pixel.alpha = 128;
    return pixel;
}

}  // namespace

Frame SamplePicture() {
    Frame frame;
    frame.width = kWidth;
    frame.height = kHeight;
    frame.bytes.resize(static_cast<size_t>(kWidth) * kHeight * 4);
    Paint(frame, {0, 0, kWidth, kHeight}, Background);
    Paint(frame, {16, 16, 192, 160}, Stripes);
    Paint(frame, {224, 16, 192, 160}, Rings);
    Paint(frame, {432, 16, 192, 160}, SpeckledNoise());
    Paint(frame, {16, 192, 400, 176}, Shapes);
    Paint(frame, {432, 192, 192, 176}, Translucent);
    Paint(frame, {0, kHeight - 24, kWidth, 24}, GrayRamp);
    return frame;
}
