#include "tools/video_io.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

#include <chrono>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace {

std::string AvError(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

void Check(int code, const std::string& what) {
    if (code < 0) throw std::runtime_error(what + ": " + AvError(code));
}

struct CodecFree {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct PacketFree {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct PictureFree {
    void operator()(AVFrame* picture) const { av_frame_free(&picture); }
};
struct InputFree {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
};
struct OutputFree {
    void operator()(AVFormatContext* format) const {
        if (!(format->oformat->flags & AVFMT_NOFILE)) avio_closep(&format->pb);
        avformat_free_context(format);
    }
};
struct ScalerFree {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using Codec = std::unique_ptr<AVCodecContext, CodecFree>;
using Packet = std::unique_ptr<AVPacket, PacketFree>;
using Picture = std::unique_ptr<AVFrame, PictureFree>;
using Scaler = std::unique_ptr<SwsContext, ScalerFree>;
using Input = std::unique_ptr<AVFormatContext, InputFree>;
using Output = std::unique_ptr<AVFormatContext, OutputFree>;

Packet NewPacket() {
    Packet packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    return packet;
}

Picture NewPicture() {
    Picture picture(av_frame_alloc());
    if (!picture) throw std::bad_alloc();
    return picture;
}

// Converts pictures to another pixel format at a fixed size, whatever the
// format and size of the pictures that arrive.
class Converter {
public:
    void Convert(const AVFrame* from, uint8_t* const to[], const int to_stride[], int width, int height,
                 AVPixelFormat to_format) {
        scaler_.reset(sws_getCachedContext(scaler_.release(), from->width, from->height,
                                           static_cast<AVPixelFormat>(from->format), width, height, to_format,
                                           SWS_BICUBIC, nullptr, nullptr, nullptr));
        if (!scaler_) throw std::runtime_error("cannot convert the video's pixel format");
        sws_scale(scaler_.get(), from->data, from->linesize, 0, from->height, to, to_stride);
    }

private:
    Scaler scaler_;
};

// The first video stream of a file, frame after frame.
class Decoder {
public:
    explicit Decoder(const std::string& path) : path_(path) {
        AVFormatContext* opened = nullptr;
        Check(avformat_open_input(&opened, path.c_str(), nullptr, nullptr), "cannot read video " + path);
        format_.reset(opened);
        Check(avformat_find_stream_info(opened, nullptr), "cannot read video " + path);
        stream_ = av_find_best_stream(opened, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        if (stream_ < 0) throw std::runtime_error(path + " has no video stream");
        const AVCodecParameters* parameters = opened->streams[stream_]->codecpar;
        const AVCodec* decoder = avcodec_find_decoder(parameters->codec_id);
        if (!decoder || parameters->width <= 0 || parameters->height <= 0) {
            throw std::runtime_error(path + ": unsupported video stream (" +
                                     avcodec_get_name(parameters->codec_id) + ")");
        }
        codec_.reset(avcodec_alloc_context3(decoder));
        if (!codec_) throw std::bad_alloc();
        Check(avcodec_parameters_to_context(codec_.get(), parameters), "cannot decode " + path);
        Check(avcodec_open2(codec_.get(), decoder, nullptr), "cannot decode " + path);
    }
    int width() const { return codec_->width; }
    int height() const { return codec_->height; }

    AVRational FrameRate() const {
        AVRational rate = av_guess_frame_rate(format_.get(), format_->streams[stream_], nullptr);
        return rate.num > 0 && rate.den > 0 ? rate : AVRational{25, 1};
    }

    // The frame count the file declares or its duration implies; 0 unknown.
    int64_t FrameCount() const {
        const AVStream* stream = format_->streams[stream_];
        if (stream->nb_frames > 0) return stream->nb_frames;
        if (stream->duration > 0) return av_rescale_q(stream->duration, stream->time_base, av_inv_q(FrameRate()));
        if (format_->duration > 0) return av_rescale_q(format_->duration, AV_TIME_BASE_Q, av_inv_q(FrameRate()));
        return 0;
    }

    // The next frame into picture; false after the last.
    bool Next(AVFrame* picture) {
        for (;;) {
            int received = avcodec_receive_frame(codec_.get(), picture);
            if (received == 0) return true;
            if (received == AVERROR_EOF || (received == AVERROR(EAGAIN) && draining_)) return false;
            if (received != AVERROR(EAGAIN)) Check(received, "cannot decode " + path_);
            int read = av_read_frame(format_.get(), packet_.get());
            if (read == AVERROR_EOF) {
                draining_ = true;
                Check(avcodec_send_packet(codec_.get(), nullptr), "cannot decode " + path_);
                continue;
            }
            Check(read, "cannot read video " + path_);
            int sent = packet_->stream_index == stream_ ? avcodec_send_packet(codec_.get(), packet_.get()) : 0;
            av_packet_unref(packet_.get());
            Check(sent, "cannot decode " + path_);
        }
    }

private:
    std::string path_;
    Input format_;
    int stream_ = -1;
    Codec codec_;
    Packet packet_ = NewPacket();
    bool draining_ = false;
};

const AVCodec* ChooseEncoder() {
    const AVCodec* encoder = avcodec_find_encoder_by_name("libx264");
    if (!encoder) encoder = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    if (!encoder) throw std::runtime_error("no H.264 or MPEG-4 encoder in this FFmpeg");
    return encoder;
}

// A video file written at path in the container that name's extension calls
// for, one yuv420p stream at a constant rate.
class Encoder {
public:
    Encoder(const std::string& path, const std::string& name, int width, int height, AVRational rate)
        : name_(name) {
        AVFormatContext* allocated = nullptr;
        avformat_alloc_output_context2(&allocated, nullptr, nullptr, name.c_str());
        format_.reset(allocated);
        if (!format_) throw std::runtime_error("cannot tell a video container from the name " + name);
        const AVCodec* encoder = ChooseEncoder();
        codec_.reset(avcodec_alloc_context3(encoder));
        if (!codec_) throw std::bad_alloc();
        codec_->width = width;
        codec_->height = height;
        codec_->pix_fmt = AV_PIX_FMT_YUV420P;
        codec_->time_base = av_inv_q(rate);
        codec_->framerate = rate;
        if (format_->oformat->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        Check(avcodec_open2(codec_.get(), encoder, nullptr),
              std::string("cannot open the ") + encoder->name + " encoder at " + std::to_string(width) + "x" +
                  std::to_string(height));
        stream_ = avformat_new_stream(format_.get(), nullptr);
        if (!stream_) throw std::bad_alloc();
        stream_->time_base = codec_->time_base;
        Check(avcodec_parameters_from_context(stream_->codecpar, codec_.get()), "cannot write " + name);
        if (!(format_->oformat->flags & AVFMT_NOFILE)) {
            Check(avio_open(&format_->pb, path.c_str(), AVIO_FLAG_WRITE), "cannot write " + name);
        }
        Check(avformat_write_header(format_.get(), nullptr), "cannot write " + name);
    }
    // A picture of the encoder's own size and format, ready to be filled.
    Picture NewFrame() const {
        Picture picture = NewPicture();
        picture->format = codec_->pix_fmt;
        picture->width = codec_->width;
        picture->height = codec_->height;
        Check(av_frame_get_buffer(picture.get(), 0), "cannot encode");
        return picture;
    }

    // Encodes the picture as the next frame.
    void Write(AVFrame* picture) {
        picture->pts = next_pts_++;
        Send(picture);
    }

    // Writes what the encoder still holds and closes the file.
    void Finish() {
        Send(nullptr);
        Check(av_write_trailer(format_.get()), "cannot write " + name_);
        if (!(format_->oformat->flags & AVFMT_NOFILE)) Check(avio_closep(&format_->pb), "cannot write " + name_);
    }

private:
    void Send(AVFrame* picture) {
        Check(avcodec_send_frame(codec_.get(), picture), "cannot encode " + name_);
        for (;;) {
            int received = avcodec_receive_packet(codec_.get(), packet_.get());
            if (received == AVERROR(EAGAIN) || received == AVERROR_EOF) return;
            Check(received, "cannot encode " + name_);
            packet_->duration = 1;  // one frame: the container's length ends with the last one
            av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            Check(av_interleaved_write_frame(format_.get(), packet_.get()), "cannot write " + name_);
        }
    }

    std::string name_;
    Output format_;
    Codec codec_;
    AVStream* stream_ = nullptr;
    Packet packet_ = NewPacket();
    int64_t next_pts_ = 0;
};

// A file that is removed again unless it is moved to its final name.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string& final_path) : final_(final_path), path_(final_path + ".part") {}
    ~TemporaryFile() {
        if (!kept_) std::remove(path_.c_str());
    }
    const std::string& path() const { return path_; }
    void Keep() {
        if (std::rename(path_.c_str(), final_.c_str()) != 0) {
            throw std::runtime_error("cannot write " + final_ + ": " + std::strerror(errno));
        }
        kept_ = true;
    }

private:
    std::string final_;
    std::string path_;
    bool kept_ = false;
};

// "frame 7 of 12, 85.1 fps, 0.1 s left" on standard error, redrawn in place
// at most a few times a second; the line is ended however the work ends.
class ProgressLine {
public:
    explicit ProgressLine(int64_t total) : total_(total) {}
    ~ProgressLine() {
        if (shown_) std::fputc('\n', stderr);
    }
    void Update(int64_t done, bool last = false) {
        auto now = Clock::now();
        if (!last && now - shown_at_ < std::chrono::milliseconds(200)) return;
        shown_at_ = now;
        shown_ = true;
        double seconds = std::chrono::duration<double>(now - start_).count();
        double rate = seconds > 0 ? done / seconds : 0;
        if (total_ > 0) {
            double left = rate > 0 && total_ > done ? (total_ - done) / rate : 0;
            std::fprintf(stderr, "\rframe %lld of %lld, %.1f fps, %.1f s left   ", static_cast<long long>(done),
                         static_cast<long long>(total_), rate, left);
        } else {
            std::fprintf(stderr, "\rframe %lld, %.1f fps   ", static_cast<long long>(done), rate);
        }
        std::fflush(stderr);
    }

private:
    using Clock = std::chrono::steady_clock;
    int64_t total_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point shown_at_{};
    bool shown_ = false;
};

}  // namespace

void FilterVideo(const std::string& input, const std::string& output, const FrameFilter& filter) {
    av_log_set_level(AV_LOG_QUIET);  // errors reach the user as one line of ours
    Decoder decoder(input);
    TemporaryFile temporary(output);
    Encoder encoder(temporary.path(), output, decoder.width(), decoder.height(), decoder.FrameRate());

    Frame frame;
    frame.width = decoder.width();
    frame.height = decoder.height();
    frame.bytes.resize(static_cast<size_t>(frame.width) * frame.height * 4);
    uint8_t* bgra[4] = {frame.bytes.data()};
    int bgra_stride[4] = {frame.width * 4};
    Picture decoded = NewPicture();
    Picture encoded = encoder.NewFrame();
    Converter to_bgra, from_bgra;
    AVFrame bgra_picture{};
    bgra_picture.format = AV_PIX_FMT_BGRA;
    bgra_picture.width = frame.width;
    bgra_picture.height = frame.height;
    bgra_picture.data[0] = frame.bytes.data();
    bgra_picture.linesize[0] = bgra_stride[0];

    ProgressLine progress(decoder.FrameCount());
    int64_t done = 0;
    while (decoder.Next(decoded.get())) {
        to_bgra.Convert(decoded.get(), bgra, bgra_stride, frame.width, frame.height, AV_PIX_FMT_BGRA);
        av_frame_unref(decoded.get());
        filter(frame);
        Check(av_frame_make_writable(encoded.get()), "cannot encode");
        from_bgra.Convert(&bgra_picture, encoded->data, encoded->linesize, frame.width, frame.height,
                          AV_PIX_FMT_YUV420P);
        encoder.Write(encoded.get());
        progress.Update(++done);
    }
    if (done == 0) throw std::runtime_error(input + " has no video frames");
    encoder.Finish();
    progress.Update(done, true);
    temporary.Keep();
}
