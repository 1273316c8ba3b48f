// A 5 by 7 pixel font for labels drawn into frames: capital letters (lower
// case is drawn as capitals), digits, space, '-', '(' and ')'.
#ifndef KV_TOOLS_BITMAP_FONT_H
#define KV_TOOLS_BITMAP_FONT_H

#include <string>

#include "tools/png_io.h"

constexpr int kGlyphHeight = 7;
constexpr int kGlyphAdvance = 6;  // 5 columns of glyph and 1 of space

// Width in pixels of the text as DrawText draws it, without trailing space.
int TextWidth(const std::string& text);

struct Colour {
    unsigned char blue, green, red;
};

// Draws the text with its top left corner at (x, y), opaque, clipped to the
// frame. Characters the font lacks are left blank.
void DrawText(Frame& frame, int x, int y, const std::string& text, Colour colour);

#endif
