// Pictures as the effects take them, and PNG files to and from them.
#ifndef KV_TOOLS_PNG_IO_H
#define KV_TOOLS_PNG_IO_H

#include <cstdint>
#include <string>
#include <vector>

// Rows top to bottom without a gap, 4 bytes a pixel: blue, green, red, alpha.
struct Frame {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<unsigned char> bytes;
};

// Reads a PNG of any colour type and depth as 8 bits a channel; a picture
// without alpha gets 255 in the fourth byte. Throws std::runtime_error with a
// message naming the file when it cannot be read.
Frame ReadPng(const std::string& path);

// Writes the frame as an 8-bit RGBA PNG. Throws std::runtime_error, and leaves
// no partial file behind, when it cannot be written.
void WritePng(const std::string& path, const Frame& frame);

#endif
