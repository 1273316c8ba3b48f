// kelvarine: lists the library's effects and applies one to a PNG picture, a
// video file or a stream of raw frames.
#include <cctype>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "kelvarine.h"
#include "tools/gallery.h"
#include "tools/png_io.h"
#include "tools/raw_stream.h"
#include "tools/sample_picture.h"
#include "tools/video_io.h"

namespace {

constexpr char kUsage[] =
    "Usage: kelvarine list\n"
    "       kelvarine apply EFFECT [IN.png] OUT.png [--args A,B,...]\n"
    "       kelvarine apply EFFECT IN.mp4 OUT.mp4 [--args A,B,...]\n"
    "       kelvarine stream EFFECT WIDTH HEIGHT [--args A,B,...]\n"
    "       kelvarine gallery [IN.png] OUT.png\n"
    "       kelvarine sample OUT.png\n"
    "\n"
    "  list    print the effect catalog, one effect a line:\n"
    "          index, id, type, available (yes/no), name\n"
    "  apply   run EFFECT, given by id (1036) or by name in any case (gray,\n"
    "          \"mirror both\"), over IN.png and write the result to OUT.png;\n"
    "          without IN.png the built-in sample picture is used; an input\n"
    "          that is not a PNG is read as a video, and every frame of its\n"
    "          video stream goes through one instance of EFFECT into OUT\n"
    "          (H.264 or MPEG-4, container from OUT's extension)\n"
    "  stream  run EFFECT over raw frames of WIDTH x HEIGHT pixels, 4 bytes\n"
    "          a pixel (ffmpeg's -f rawvideo -pix_fmt bgra), from standard\n"
    "          input to standard output\n"
    "  gallery write one contact sheet of every available effect applied to\n"
    "          IN.png (or the sample picture), each tile labelled with the\n"
    "          effect's name and id\n"
    "  sample  write the built-in sample picture to OUT.png\n"
    "\n"
    "  --args A,B,...  up to six signed integers for the effect's parameter\n"
    "                  words 0, 1, ...; words not given keep their values\n"
    "  -h, --help      show this text\n";

constexpr size_t kArgWords = std::extent_v<decltype(EffectArgs::word)>;

// A mistake on the command line, as opposed to a failure while working.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The words of a command line for an effect: positional ones and --args.
struct EffectCommand {
    std::vector<std::string> positional;
    std::vector<int32_t> words;  // empty: the instance's own parameters
};

using Instance = std::unique_ptr<Effect_Base, decltype(&Kelvarine_Destory)>;

Instance NewInstance(int32_t id) { return Instance(Kelvarine_NewInstance(id), &Kelvarine_Destory); }

std::string Lowercase(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void ListEffects() {
    std::printf("%5s  %4s  %4s  %-9s  %s\n", "index", "id", "type", "available", "name");
    for (int32_t index = 0; index < Kelvarine_AllEffectCount(); ++index) {
        int32_t id = Kelvarine_EffectID(index);
        bool available = NewInstance(id) != nullptr;
        std::printf("%5d  %4d  %4d  %-9s  %s\n", index, id, Kelvarine_EffectType(id), available ? "yes" : "no",
                    Kelvarine_EffectName(id));
    }
}

// The id of the effect named by its id or by its name in any case.
int32_t FindEffect(const std::string& wanted) {
    std::string wanted_name = Lowercase(wanted);
    for (int32_t index = 0; index < Kelvarine_AllEffectCount(); ++index) {
        int32_t id = Kelvarine_EffectID(index);
        if (wanted == std::to_string(id) || wanted_name == Lowercase(Kelvarine_EffectName(id))) return id;
    }
    throw std::runtime_error("unknown effect '" + wanted + "' (see 'kelvarine list')");
}

int32_t ParseInteger(const std::string& text, const std::string& what, long long low, long long high) {
    errno = 0;
    char* end = nullptr;
    long long value = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno == ERANGE || value < low || value > high) {
        throw UsageError("bad " + what + " '" + text + "': expected an integer from " + std::to_string(low) +
                         " to " + std::to_string(high));
    }
    return static_cast<int32_t>(value);
}

int32_t ParseWord(const std::string& text) { return ParseInteger(text, "--args value", INT32_MIN, INT32_MAX); }

// "3,-1,7": the words from word 0 on.
std::vector<int32_t> ParseWords(const std::string& list) {
    std::vector<int32_t> words;
    size_t start = 0;
    for (;;) {
        size_t comma = list.find(',', start);
        words.push_back(ParseWord(list.substr(start, comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    if (words.size() > kArgWords) {
        throw UsageError("too many --args values: " + std::to_string(words.size()) + " given, at most " +
                         std::to_string(kArgWords));
    }
    return words;
}

EffectCommand ParseEffectCommand(const std::vector<std::string>& arguments) {
    EffectCommand request;
    bool words_given = false;
    for (size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--args" || argument.rfind("--args=", 0) == 0) {
            if (words_given) throw UsageError("--args given more than once");
            if (argument == "--args" && i + 1 == arguments.size()) throw UsageError("--args needs a value");
            request.words = ParseWords(argument == "--args" ? arguments[++i] : argument.substr(7));
            words_given = true;
        } else if (argument.size() > 1 && argument[0] == '-') {
            throw UsageError("unknown option '" + argument + "'");
        } else {
            request.positional.push_back(argument);
        }
    }
    return request;
}

// Sets the leading words and keeps the rest as the instance has them.
void SetWords(Effect_Base* instance, const std::vector<int32_t>& words, const std::string& label) {
    EffectArgs args{};  // GetArgs writes only the words the effect uses
    Kelvarine_GetEffectArgs(instance, &args);
    for (size_t i = 0; i < words.size(); ++i) args.word[i] = words[i];
    if (Kelvarine_SetEffectArgs(instance, &args) != 0) throw std::runtime_error(label + " refused the --args values");
}

// One instance of an effect, set up from the command line, run frame after
// frame as a host runs it.
class EffectRunner {
public:
    EffectRunner(const std::string& effect, const std::vector<int32_t>& words) : instance_(nullptr, &Kelvarine_Destory) {
        int32_t id = FindEffect(effect);
        label_ = "effect '" + std::string(Kelvarine_EffectName(id)) + "' (" + std::to_string(id) + ")";
        instance_ = NewInstance(id);
        if (!instance_) throw std::runtime_error(label_ + " is not available yet");
        if (!words.empty()) SetWords(instance_.get(), words, label_);
    }

    void Process(Frame& frame) const {
        if (Kelvarine_Proc(instance_.get(), frame.bytes.data(), frame.width, frame.height) != 0) {
            throw std::runtime_error(label_ + " failed on the picture");
        }
    }

    FrameFilter AsFilter() const {
        return [this](Frame& frame) { Process(frame); };
    }

private:
    Instance instance_;
    std::string label_;
};

// By name, or by the PNG signature for a name without the extension.
bool IsPng(const std::string& path) {
    std::string name = Lowercase(path);
    if (name.size() >= 4 && name.compare(name.size() - 4, 4, ".png") == 0) return true;
    static const unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
    unsigned char start[sizeof kSignature] = {};
    FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return false;
    size_t got = std::fread(start, 1, sizeof start, file);
    std::fclose(file);
    return got == sizeof start && std::memcmp(start, kSignature, sizeof start) == 0;
}

void Apply(const EffectCommand& command) {
    const std::vector<std::string>& positional = command.positional;
    if (positional.size() < 2 || positional.size() > 3) {
        throw UsageError("apply takes EFFECT [IN] OUT, got " + std::to_string(positional.size()) + " arguments");
    }
    EffectRunner effect(positional.front(), command.words);
    const std::string& output = positional.back();
    if (positional.size() == 3 && !IsPng(positional[1])) {
        FilterVideo(positional[1], output, effect.AsFilter());
        return;
    }
    Frame frame = positional.size() == 3 ? ReadPng(positional[1]) : SamplePicture();
    effect.Process(frame);
    WritePng(output, frame);
}

void Stream(const EffectCommand& command) {
    if (command.positional.size() != 3) {
        throw UsageError("stream takes EFFECT WIDTH HEIGHT, got " + std::to_string(command.positional.size()) +
                         " arguments");
    }
    constexpr int kMaxSide = 1 << 14;
    int width = ParseInteger(command.positional[1], "width", 1, kMaxSide);
    int height = ParseInteger(command.positional[2], "height", 1, kMaxSide);
    EffectRunner effect(command.positional[0], command.words);
    FilterRawStream(stdin, stdout, width, height, effect.AsFilter());
}

void Run(const std::vector<std::string>& arguments) {
    const std::string& command = arguments.front();
    std::vector<std::string> rest(arguments.begin() + 1, arguments.end());
    if (command == "list") {
        if (!rest.empty()) throw UsageError("list takes no arguments");
        ListEffects();
    } else if (command == "apply") {
        Apply(ParseEffectCommand(rest));
    } else if (command == "stream") {
        Stream(ParseEffectCommand(rest));
    } else if (command == "gallery") {
        if (rest.empty() || rest.size() > 2) throw UsageError("gallery takes [IN.png] OUT.png");
        WritePng(rest.back(), Gallery(rest.size() == 2 ? ReadPng(rest.front()) : SamplePicture()));
    } else if (command == "sample") {
        if (rest.size() != 1) throw UsageError("sample takes one argument, OUT.png");
        WritePng(rest.front(), SamplePicture());
    } else {
        throw UsageError("unknown command '" + command + "' (see 'kelvarine --help')");
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    for (const std::string& argument : arguments) {
        if (argument == "-h" || argument == "--help") {
            std::fputs(kUsage, stdout);
            return 0;
        }
    }
    try {
        Run(arguments);
        return 0;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "kelvarine: %s\n", error.what());
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kelvarine: %s\n", error.what());
        return 1;
    }
}
