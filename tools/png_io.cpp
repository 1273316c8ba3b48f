#include "tools/png_io.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>

namespace {

constexpr size_t kSignatureSize = 8;

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<FILE, FileCloser>;

File OpenFile(const std::string& path, const char* mode) {
    File file(std::fopen(path.c_str(), mode));
    if (!file) throw std::runtime_error("cannot open " + path + ": " + std::strerror(errno));
    return file;
}

// libpng reports an error here: keep its message, then jump back to the
// setjmp of the step that was running.
[[noreturn]] void KeepMessageAndJump(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}

// Warnings (odd chunks, colour profiles) do not stop a picture.
void IgnoreWarning(png_structp, png_const_charp) {}

// The control and info structures of one file, released together.
class PngHandles {
public:
    enum Direction { kRead, kWrite };

    PngHandles(Direction direction, std::string* error) : direction_(direction) {
        png_ = direction == kRead
                   ? png_create_read_struct(PNG_LIBPNG_VER_STRING, error, KeepMessageAndJump, IgnoreWarning)
                   : png_create_write_struct(PNG_LIBPNG_VER_STRING, error, KeepMessageAndJump, IgnoreWarning);
        if (png_) info_ = png_create_info_struct(png_);
    }
    ~PngHandles() {
        if (direction_ == kRead) png_destroy_read_struct(&png_, &info_, nullptr);
        else png_destroy_write_struct(&png_, &info_);
    }
    PngHandles(const PngHandles&) = delete;
    PngHandles& operator=(const PngHandles&) = delete;

    png_structp png() const { return png_; }
    png_infop info() const { return info_; }
    bool created() const { return info_ != nullptr; }

private:
    Direction direction_;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
};

// Decodes the rest of the file (its signature is already read) into frame.
// libpng's errors jump back into this function, so it holds no objects that
// need destruction: the frame belongs to the caller. False on a libpng error.
bool DecodeBgra(png_structp png, png_infop info, FILE* file, Frame* frame) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_init_io(png, file);
    png_set_sig_bytes(png, kSignatureSize);
    png_read_info(png, info);
    // Palette, gray below 8 bits and a transparency chunk become 8-bit RGB or
    // RGBA; blue goes first and a missing alpha becomes 255.
    png_set_expand(png);
    png_set_strip_16(png);
    png_set_gray_to_rgb(png);
    png_set_bgr(png);
    png_set_filler(png, 0xFF, PNG_FILLER_AFTER);
    int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);

    frame->width = static_cast<int32_t>(png_get_image_width(png, info));
    frame->height = static_cast<int32_t>(png_get_image_height(png, info));
    size_t step = static_cast<size_t>(frame->width) * 4;
    if (png_get_rowbytes(png, info) != step) png_error(png, "unexpected row layout after conversion");
    frame->bytes.resize(step * static_cast<size_t>(frame->height));
    // Each pass of an interlaced picture fills in more of the same rows.
    for (int pass = 0; pass < passes; ++pass) {
        for (int32_t y = 0; y < frame->height; ++y) png_read_row(png, frame->bytes.data() + y * step, nullptr);
    }
    png_read_end(png, nullptr);
    return true;
}

// Encodes the frame as 8-bit RGBA; the same rule on jumps as DecodeBgra.
bool EncodeRgba(png_structp png, png_infop info, FILE* file, const Frame& frame) {
    if (setjmp(png_jmpbuf(png))) return false;
    png_init_io(png, file);
    png_set_IHDR(png, info, frame.width, frame.height, 8, PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    size_t step = static_cast<size_t>(frame.width) * 4;
    for (int32_t y = 0; y < frame.height; ++y) png_write_row(png, frame.bytes.data() + y * step);
    png_write_end(png, nullptr);
    return true;
}

}  // namespace

Frame ReadPng(const std::string& path) {
    File file = OpenFile(path, "rb");
    png_byte signature[kSignatureSize];
    if (std::fread(signature, 1, kSignatureSize, file.get()) != kSignatureSize ||
        png_sig_cmp(signature, 0, kSignatureSize) != 0) {
        throw std::runtime_error(path + " is not a PNG file");
    }
    std::string error;
    PngHandles handles(PngHandles::kRead, &error);
    if (!handles.created()) throw std::bad_alloc();
    Frame frame;
    if (!DecodeBgra(handles.png(), handles.info(), file.get(), &frame)) {
        throw std::runtime_error("cannot read " + path + ": " + error);
    }
    return frame;
}

void WritePng(const std::string& path, const Frame& frame) {
    std::string error;
    PngHandles handles(PngHandles::kWrite, &error);
    if (!handles.created()) throw std::bad_alloc();
    File file = OpenFile(path, "wb");
    bool written = EncodeRgba(handles.png(), handles.info(), file.get(), frame);
    if (std::fclose(file.release()) != 0 && written) {
        written = false;
        error = std::strerror(errno);
    }
    if (!written) {
        std::remove(path.c_str());
        throw std::runtime_error("cannot write " + path + ": " + error);
    }
}
