#include "tools/raw_stream.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

void FilterRawStream(std::FILE* input, std::FILE* output, int width, int height, const FrameFilter& filter) {
    Frame frame;
    frame.width = width;
    frame.height = height;
    frame.bytes.resize(static_cast<size_t>(width) * height * 4);
    for (;;) {
        size_t got = std::fread(frame.bytes.data(), 1, frame.bytes.size(), input);
        if (got == 0 && std::feof(input)) break;
        if (got < frame.bytes.size()) {
            if (std::ferror(input)) throw std::runtime_error(std::string("cannot read the input: ") + std::strerror(errno));
            throw std::runtime_error("the input ends inside a frame: " + std::to_string(got) + " of " +
                                     std::to_string(frame.bytes.size()) + " bytes");
        }
        filter(frame);
        if (std::fwrite(frame.bytes.data(), 1, frame.bytes.size(), output) != frame.bytes.size()) {
            throw std::runtime_error(std::string("cannot write the output: ") + std::strerror(errno));
        }
    }
    if (std::fflush(output) != 0) throw std::runtime_error(std::string("cannot write the output: ") + std::strerror(errno));
}
