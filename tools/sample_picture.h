// The picture the tool works on when no input file is given.
#ifndef KV_TOOLS_SAMPLE_PICTURE_H
#define KV_TOOLS_SAMPLE_PICTURE_H

#include "tools/png_io.h"

// A 640 by 400 test card, the same on every run: colour and gray ramps,
// fine stripes and checkers, rings, seeded noise with specks, hard-edged
// shapes placed without symmetry, and a panel of graded transparency.
Frame SamplePicture();

#endif
