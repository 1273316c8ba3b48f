#include "tools/gallery.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "kelvarine.h"
#include "tools/bitmap_font.h"

namespace {

constexpr int kReduction = 3;
constexpr int kColumns = 8;
constexpr int kGap = 8;
constexpr int kLabelBand = 12;
constexpr int kCheckerSquare = 8 * kReduction;  // 8 pixels on the tile
constexpr unsigned char kCheckerLight = 204, kCheckerDark = 153, kBackground = 32;
constexpr Colour kLabelColour = {235, 235, 235};

struct Tile {
    std::string label;
    Frame picture;
};

// The frame blended by its fourth byte over a checkerboard, opaque.
Frame OnCheckerboard(const Frame& frame) {
    Frame out = frame;
    for (int y = 0; y < frame.height; ++y) {
        for (int x = 0; x < frame.width; ++x) {
            unsigned char* pixel = &out.bytes[(static_cast<size_t>(y) * frame.width + x) * 4];
            int under = ((x / kCheckerSquare + y / kCheckerSquare) % 2) ? kCheckerDark : kCheckerLight;
            int alpha = pixel[3];
            for (int c = 0; c < 3; ++c) pixel[c] = static_cast<unsigned char>((pixel[c] * alpha + under * (255 - alpha) + 127) / 255);
            pixel[3] = 255;
        }
    }
    return out;
}

// Each output pixel the rounded mean of the (up to) kReduction squared
// pixels it covers.
Frame Reduce(const Frame& frame) {
    Frame out;
    out.width = (frame.width + kReduction - 1) / kReduction;
    out.height = (frame.height + kReduction - 1) / kReduction;
    out.bytes.resize(static_cast<size_t>(out.width) * out.height * 4);
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x) {
            int sums[4] = {0, 0, 0, 0}, count = 0;
            for (int sy = y * kReduction; sy < std::min((y + 1) * kReduction, frame.height); ++sy) {
                for (int sx = x * kReduction; sx < std::min((x + 1) * kReduction, frame.width); ++sx, ++count) {
                    const unsigned char* pixel = &frame.bytes[(static_cast<size_t>(sy) * frame.width + sx) * 4];
                    for (int c = 0; c < 4; ++c) sums[c] += pixel[c];
                }
            }
            unsigned char* pixel = &out.bytes[(static_cast<size_t>(y) * out.width + x) * 4];
            for (int c = 0; c < 4; ++c) pixel[c] = static_cast<unsigned char>((sums[c] + count / 2) / count);
        }
    }
    return out;
}

Tile MakeTile(std::string label, const Frame& picture) { return {std::move(label), Reduce(OnCheckerboard(picture))}; }

std::vector<Tile> EffectTiles(const Frame& picture) {
    std::vector<Tile> tiles;
    tiles.push_back(MakeTile("Original", picture));
    for (int32_t index = 0; index < Kelvarine_AllEffectCount(); ++index) {
        int32_t id = Kelvarine_EffectID(index);
        std::unique_ptr<Effect_Base, decltype(&Kelvarine_Destory)> instance(Kelvarine_NewInstance(id),
                                                                           &Kelvarine_Destory);
        if (!instance) continue;
        std::string label = std::string(Kelvarine_EffectName(id)) + " (" + std::to_string(id) + ")";
        Frame result = picture;
        if (Kelvarine_Proc(instance.get(), result.bytes.data(), result.width, result.height) != 0) {
            std::fprintf(stderr, "kelvarine: %s failed on the picture; left out of the gallery\n", label.c_str());
            continue;
        }
        tiles.push_back(MakeTile(std::move(label), result));
    }
    return tiles;
}

void Paste(Frame& sheet, const Frame& tile, int left, int top) {
    for (int y = 0; y < tile.height; ++y) {
        std::copy_n(&tile.bytes[static_cast<size_t>(y) * tile.width * 4], static_cast<size_t>(tile.width) * 4,
                    &sheet.bytes[(static_cast<size_t>(top + y) * sheet.width + left) * 4]);
    }
}

}  // namespace

Frame Gallery(const Frame& picture) {
    std::vector<Tile> tiles = EffectTiles(picture);
    const Frame& first = tiles.front().picture;
    int cellWidth = first.width;
    for (const Tile& tile : tiles) cellWidth = std::max(cellWidth, TextWidth(tile.label));
    int cellHeight = first.height + kLabelBand;
    int rows = (static_cast<int>(tiles.size()) + kColumns - 1) / kColumns;

    Frame sheet;
    sheet.width = kGap + kColumns * (cellWidth + kGap);
    sheet.height = kGap + rows * (cellHeight + kGap);
    sheet.bytes.assign(static_cast<size_t>(sheet.width) * sheet.height * 4, kBackground);
    for (size_t i = 3; i < sheet.bytes.size(); i += 4) sheet.bytes[i] = 255;
    for (size_t i = 0; i < tiles.size(); ++i) {
        int left = kGap + static_cast<int>(i % kColumns) * (cellWidth + kGap);
        int top = kGap + static_cast<int>(i / kColumns) * (cellHeight + kGap);
        Paste(sheet, tiles[i].picture, left, top);
        DrawText(sheet, left, top + first.height + (kLabelBand - kGlyphHeight) / 2, tiles[i].label, kLabelColour);
    }
    return sheet;
}
