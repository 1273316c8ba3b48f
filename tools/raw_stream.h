// Raw frames through a pipe: 4 bytes a pixel, rows without a gap, one frame
// after another with nothing between them (ffmpeg's "-f rawvideo -pix_fmt
// bgra").
#ifndef KV_TOOLS_RAW_STREAM_H
#define KV_TOOLS_RAW_STREAM_H

#include <cstdio>

#include "tools/video_io.h"

// Reads frames of width by height from input until its end, hands each to
// filter and writes it to output. Throws std::runtime_error when input ends
// inside a frame (after writing the whole frames before it) or output fails.
void FilterRawStream(std::FILE* input, std::FILE* output, int width, int height, const FrameFilter& filter);

#endif
