// Video files through the FFmpeg libraries: every frame of a file's video
// stream, as a picture the effects take, and back into a new file.
#ifndef KV_TOOLS_VIDEO_IO_H
#define KV_TOOLS_VIDEO_IO_H

#include <functional>
#include <string>

#include "tools/png_io.h"

// Changes a frame in place; throws std::runtime_error to stop.
using FrameFilter = std::function<void(Frame&)>;

// Decodes the first video stream of input, hands each frame to filter in
// order, and encodes the results to output (container from its name; H.264
// when the encoder is there, else MPEG-4 part 2; yuv420p; same size, rate and
// frame count). A progress line goes to standard error. Throws
// std::runtime_error with a one-line message on failure, and then leaves no
// output file behind.
void FilterVideo(const std::string& input, const std::string& output, const FrameFilter& filter);

#endif
