// Video files and raw frame pipes through the kelvarine command, with
// Debian's ffmpeg and ffprobe programs making and reading the clips.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kelvarine.h"
#include "test_support.h"

namespace {

const std::string kCli = std::string("'") + KV_CLI + "'";
// A colourful clip of 12 frames at 10 a second, as raw BGRA frames or a file.
const std::string kTestClip = "ffmpeg -v error -f lavfi -i testsrc=size=160x120:rate=10 -frames:v 12";

struct Outcome {
    int exitCode;
    std::string output;  // standard output
    std::string errors;  // standard error
};

// Runs a shell command line in the current directory.
Outcome Shell(const std::string& command) {
    FILE* pipe = popen((command + " 2>stderr.txt").c_str(), "r");
    std::string output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
    int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output, kvtest::ReadFile("stderr.txt")};
}

bool Exists(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

int32_t EffectId(const std::string& name) {
    for (int32_t index = 0; index < Kelvarine_AllEffectCount(); ++index) {
        int32_t id = Kelvarine_EffectID(index);
        if (name == Kelvarine_EffectName(id)) return id;
    }
    ADD_FAILURE() << "no effect " << name;
    return -1;
}

// The frames run one after another through one instance in this process,
// its leading words set to words.
std::string ApplyInProcess(const std::string& effect, const std::vector<int32_t>& words, std::string frames,
                           int width, int height) {
    Effect_Base* instance = Kelvarine_NewInstance(EffectId(effect));
    EffectArgs args{};
    Kelvarine_GetEffectArgs(instance, &args);
    std::copy(words.begin(), words.end(), args.word);
    EXPECT_EQ(Kelvarine_SetEffectArgs(instance, &args), 0);
    size_t size = static_cast<size_t>(width) * height * 4;
    for (size_t at = 0; at < frames.size(); at += size) {
        EXPECT_EQ(Kelvarine_Proc(instance, reinterpret_cast<unsigned char*>(&frames[at]), width, height), 0);
    }
    Kelvarine_Destory(instance);
    return frames;
}

TEST(Video, ApplyKeepsSizeRateAndEveryFrame) {
    kvtest::ScratchDirectory scratch;
    ASSERT_EQ(Shell(kTestClip + " in.mp4").exitCode, 0);
    Outcome applied = Shell(kCli + " apply gray in.mp4 out.mp4");
    ASSERT_EQ(applied.exitCode, 0) << applied.errors;
    EXPECT_NE(applied.errors.find("frame 12 of 12"), std::string::npos) << applied.errors;
    EXPECT_EQ(applied.errors.back(), '\n') << "the progress line is ended";

    Outcome probed = Shell("ffprobe -v error -count_frames -select_streams v:0 -show_entries "
                           "stream=codec_type,width,height,r_frame_rate,nb_read_frames -of default=nw=1 out.mp4");
    ASSERT_EQ(probed.exitCode, 0) << probed.errors;
    for (const char* expected :
         {"codec_type=video\n", "width=160\n", "height=120\n", "r_frame_rate=10/1\n", "nb_read_frames=12\n"}) {
        EXPECT_NE(probed.output.find(expected), std::string::npos) << probed.output;
    }

    // Every decoded frame is gray, where the clip itself is all colours.
    std::string frames = Shell("ffmpeg -v error -i out.mp4 -f rawvideo -pix_fmt bgra -").output;
    ASSERT_EQ(frames.size(), 12u * 160 * 120 * 4);
    int worst = 0;
    for (size_t i = 0; i < frames.size(); i += 4) {
        auto b = static_cast<unsigned char>(frames[i]), g = static_cast<unsigned char>(frames[i + 1]),
             r = static_cast<unsigned char>(frames[i + 2]);
        worst = std::max({worst, std::abs(b - g), std::abs(g - r)});
    }
    EXPECT_LE(worst, 8);
}

// Whatever goes wrong, the user sees one line, and neither OUT nor a
// temporary file beside it is left.
TEST(Video, FailuresSayOneLineAndLeaveNoFile) {
    kvtest::ScratchDirectory scratch;
    ASSERT_EQ(Shell(kTestClip + " in.mp4").exitCode, 0);
    ASSERT_EQ(Shell("ffmpeg -v error -f lavfi -i sine=duration=0.5 sound.m4a").exitCode, 0);
    ASSERT_EQ(Shell("head -c 5000 /dev/urandom > noise.mp4").exitCode, 0);
    ASSERT_EQ(Shell("mkdir taken.mp4").exitCode, 0);
    struct Case {
        const char* input;
        const char* output;
        const char* says;
    } cases[] = {
        {"noise.mp4", "out.mp4", "cannot read video noise.mp4"},
        {"missing.mp4", "out.mp4", "cannot read video missing.mp4"},
        {"sound.m4a", "out.mp4", "no video stream"},
        {"in.mp4", "out.unknown", "container"},
        {"in.mp4", "taken.mp4", "cannot write taken.mp4"},  // fails only when the clip is done
    };
    for (const Case& c : cases) {
        Outcome outcome = Shell(kCli + " apply gray " + c.input + " " + c.output);
        EXPECT_EQ(outcome.exitCode, 1) << c.input;
        size_t line = outcome.errors.find("kelvarine: ");
        ASSERT_NE(line, std::string::npos) << outcome.errors;
        EXPECT_NE(outcome.errors.find(c.says, line), std::string::npos) << outcome.errors;
        EXPECT_EQ(std::count(outcome.errors.begin() + line, outcome.errors.end(), '\n'), 1) << outcome.errors;
        EXPECT_FALSE(Exists(std::string(c.output) + ".part")) << c.input;
    }
    EXPECT_FALSE(Exists("out.mp4"));
    EXPECT_FALSE(Exists("out.unknown"));
}

// Frames from the ffmpeg program, through the pipe, come out as the library
// makes them itself, with the --args words in place.
TEST(Stream, PipedFramesMatchTheLibrary) {
    kvtest::ScratchDirectory scratch;
    const std::string frames = Shell(kTestClip + " -f rawvideo -pix_fmt bgra -").output;
    ASSERT_EQ(frames.size(), 12u * 160 * 120 * 4);
    struct Case {
        const char* effect;
        const char* options;
        std::vector<int32_t> words;
    } cases[] = {{"Film Color", "", {}}, {"Brightness", " --args -40", {-40}}};
    for (const Case& c : cases) {
        Outcome piped = Shell(kTestClip + " -f rawvideo -pix_fmt bgra - | " + kCli + " stream '" + c.effect +
                              "' 160 120" + c.options);
        ASSERT_EQ(piped.exitCode, 0) << piped.errors;
        std::string expected = ApplyInProcess(c.effect, c.words, frames, 160, 120);
        EXPECT_NE(expected, frames) << c.effect << " changes the clip";
        EXPECT_TRUE(piped.output == expected) << c.effect;
    }
}

TEST(Stream, InputEndingInsideAFrameIsAnError) {
    kvtest::ScratchDirectory scratch;
    const size_t frameSize = 3 * 2 * 4;
    std::vector<uint8_t> random = kvtest::RandomBytes(2 * frameSize + 5, 7);  // two frames of 3 by 2 and a piece
    std::string bytes(random.begin(), random.end());
    FILE* file = fopen("in.raw", "wb");
    fwrite(bytes.data(), 1, bytes.size(), file);
    fclose(file);
    Outcome outcome = Shell(kCli + " stream 'Film Color' 3 2 < in.raw");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.output == ApplyInProcess("Film Color", {}, bytes.substr(0, 2 * frameSize), 3, 2))
        << "the whole frames still come out";
    EXPECT_EQ(outcome.errors, "kelvarine: the input ends inside a frame: 5 of 24 bytes\n");

    Outcome unsized = Shell(kCli + " stream gray 0 2 < in.raw");
    EXPECT_EQ(unsized.exitCode, 2);
    EXPECT_NE(unsized.errors.find("bad width"), std::string::npos) << unsized.errors;
}

}  // namespace
