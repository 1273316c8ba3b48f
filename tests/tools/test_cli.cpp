// The kelvarine command, run as a user runs it.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "test_support.h"
#include "tools/png_io.h"

namespace {

struct Outcome {
    int exitCode;
    std::string output;  // standard output and standard error together
};

Outcome RunCli(const std::string& arguments) {
    std::string command = std::string(KV_CLI) + " " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    char buffer[4096];
    size_t n;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
    int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

// Writes a small picture in one of libpng's plain formats.
void WriteTestPng(const std::string& path, uint32_t format, int width, int height, const std::vector<uint8_t>& data) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = format;
    ASSERT_TRUE(png_image_write_to_file(&image, path.c_str(), 0, data.data(), 0, nullptr)) << image.message;
}

TEST(Cli, ListShowsTheCatalogWithAvailability) {
    Outcome list = RunCli("list");
    ASSERT_EQ(list.exitCode, 0) << list.output;
    std::istringstream lines(list.output);
    std::string line;
    std::getline(lines, line);  // header
    int rows = 0;
    bool grayAvailable = false;
    while (std::getline(lines, line)) {
        ++rows;
        int index, id, type;
        char available[8];
        ASSERT_EQ(sscanf(line.c_str(), "%d %d %d %7s", &index, &id, &type, available), 4) << line;
        if (id == 1036) grayAvailable = std::string(available) == "yes" && line.find("Gray") != std::string::npos;
    }
    EXPECT_EQ(rows, 44);
    EXPECT_TRUE(grayAvailable);
}

TEST(Cli, AppliesAnEffectByNameToTheSamplePicture) {
    kvtest::ScratchDirectory scratch;
    ASSERT_EQ(RunCli("sample sample.png").exitCode, 0);
    Outcome applied = RunCli("apply GRAY gray.png");
    ASSERT_EQ(applied.exitCode, 0) << applied.output;
    Frame sample = ReadPng("sample.png"), gray = ReadPng("gray.png");
    ASSERT_EQ(gray.width, sample.width);
    ASSERT_EQ(gray.height, sample.height);
    bool alphaVaries = false;
    for (size_t i = 0; i < sample.bytes.size(); i += 4) {
        int mean = (sample.bytes[i] + sample.bytes[i + 1] + sample.bytes[i + 2]) / 3;
        ASSERT_EQ(gray.bytes[i], mean);
        ASSERT_EQ(gray.bytes[i + 2], mean);
        ASSERT_EQ(gray.bytes[i + 3], sample.bytes[i + 3]);
        alphaVaries |= sample.bytes[i + 3] != 255;
    }
    EXPECT_TRUE(alphaVaries) << "the sample picture shows what an effect does to the fourth byte";
}

// "Film Color" complements the colours and keeps the fourth byte, which
// shows how each kind of PNG arrives in the frame's byte order.
TEST(Cli, ReadsGrayColourAndAlphaPngsIntoFrameOrder) {
    kvtest::ScratchDirectory scratch;
    WriteTestPng("gray.png", PNG_FORMAT_GRAY, 3, 1, {0, 100, 255});
    WriteTestPng("rgb.png", PNG_FORMAT_RGB, 2, 1, {10, 20, 30, 40, 50, 60});
    WriteTestPng("rgba.png", PNG_FORMAT_RGBA, 1, 1, {10, 20, 30, 7});
    for (const char* name : {"gray", "rgb", "rgba"})
        ASSERT_EQ(RunCli(std::string("apply \"film color\" ") + name + ".png " + name + "-out.png").exitCode, 0);

    EXPECT_EQ(ReadPng("gray-out.png").bytes, (std::vector<unsigned char>{255, 255, 255, 255, 155, 155, 155, 255, 0, 0, 0, 255}));
    // Frames are blue, green, red, alpha: red 10 is byte 2.
    EXPECT_EQ(ReadPng("rgb.png").bytes, (std::vector<unsigned char>{30, 20, 10, 255, 60, 50, 40, 255}));
    EXPECT_EQ(ReadPng("rgb-out.png").bytes, (std::vector<unsigned char>{225, 235, 245, 255, 195, 205, 215, 255}));
    EXPECT_EQ(ReadPng("rgba-out.png").bytes, (std::vector<unsigned char>{225, 235, 245, 7}));
}

TEST(Cli, ArgsSetTheLeadingWords) {
    kvtest::ScratchDirectory scratch;
    WriteTestPng("in.png", PNG_FORMAT_RGB, 1, 1, {100, 100, 100});
    ASSERT_EQ(RunCli("apply brightness in.png out.png --args 20").exitCode, 0);
    EXPECT_EQ(ReadPng("out.png").bytes, (std::vector<unsigned char>{120, 120, 120, 255}));
    Outcome refused = RunCli("apply brightness in.png out.png --args 300");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.output.find("refused"), std::string::npos) << refused.output;
}

TEST(Cli, MistakesGiveOneLineAndAFailingExit) {
    kvtest::ScratchDirectory scratch;
    FILE* text = fopen("not.png", "w");
    fputs("hello", text);
    fclose(text);
    struct Case {
        const char* arguments;
        int exitCode;
        const char* says;
    } cases[] = {
        {"apply nosuch out.png", 1, "unknown effect"},
        {"apply gray not.png out.png", 1, "not a PNG"},
        {"apply gray missing.png out.png", 1, "cannot open"},
        {"apply gray out.png --args 1,x", 2, "bad --args"},
        {"apply gray out.png --args 1,2,3,4,5,6,7", 2, "too many"},
        {"apply gray", 2, "apply takes"},
        {"frobnicate", 2, "unknown command"},
    };
    for (const Case& c : cases) {
        Outcome outcome = RunCli(c.arguments);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << c.arguments;
        EXPECT_EQ(outcome.output.rfind("kelvarine: ", 0), 0u) << outcome.output;
        EXPECT_NE(outcome.output.find(c.says), std::string::npos) << outcome.output;
        EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1) << outcome.output;
    }
    EXPECT_EQ(fopen("out.png", "r"), nullptr) << "nothing is written on failure";
}

}  // namespace
