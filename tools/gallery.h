// A contact sheet: the picture and every available effect applied to it.
#ifndef KV_TOOLS_GALLERY_H
#define KV_TOOLS_GALLERY_H

#include "tools/png_io.h"

// Tiles of the picture reduced to a third (rounded up, by box averaging), the
// original first and then each available effect in catalog order, 8 to a row.
// The fourth byte is shown by compositing each result onto a gray
// checkerboard, so the sheet is opaque. Under each tile is a label band of
// 12 pixels with the effect's name and id; a cell is as wide as the wider of
// its tile and the longest label, and 8 pixels of background separate cells
// and surround the grid. An effect that fails on the picture is reported on
// standard error and left out.
Frame Gallery(const Frame& picture);

#endif
