#include <dirent.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "kelvarine.h"
#include "test_support.h"

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

TEST(CatalogExport, WindowsDialectListsEveryRow) {
    kvtest::ScratchDirectory scratch;
    getSubtitleXML_for_Win();
    std::string text = kvtest::ReadFile("c:\\Effect.xml");
    auto lines = Lines(text);
    ASSERT_EQ(lines.size(), 46u);
    EXPECT_EQ(lines.front(), "<Group>");
    EXPECT_EQ(lines.back(), "</Group>");
    EXPECT_EQ(lines[1], "<item id=\"1001\" name=\"Box\" type=\"6\" sort=\"0\" icon=\"Box.png\" />");
    EXPECT_EQ(lines[13],
              "<item id=\"1005\" name=\"Color Average\" type=\"0\" sort=\"12\" icon=\"Color Average.png\" />");
    EXPECT_EQ(lines[26],
              "<item id=\"1040\" name=\"BrightnessAndContrastAndSaturation\" type=\"0\" sort=\"25\" "
              "icon=\"BrightnessAndContrastAndSaturation.png\" />");
    EXPECT_EQ(text.back(), '\n');
}

TEST(CatalogExport, MacDialectRenamesTwoAttributesOfTheSameFile) {
    kvtest::ScratchDirectory scratch;
    getSubtitleXML_for_Mac();
    auto lines = Lines(kvtest::ReadFile("c:\\Effect.xml"));
    ASSERT_EQ(lines.size(), 46u);
    EXPECT_EQ(lines[3],
              "<item id=\"1003\" title=\"Min Filter\" type=\"6\" sort=\"2\" image=\"Min Filter.png\" />");
    EXPECT_EQ(lines[44], "<item id=\"1067\" title=\"De-noise\" type=\"0\" sort=\"43\" image=\"De-noise.png\" />");
}

TEST(CatalogExport, ThumbnailsAreEmptyFilesNamedById) {
    kvtest::ScratchDirectory scratch;
    auto frame = kvtest::RandomBytes(5 * 3 * 4, 1);
    auto original = frame;
    CreateEffectThumbnail(frame.data(), 5, 3);
    EXPECT_EQ(frame, original) << "the frame is only read";
    int files = 0;
    for (int i = 0; i < Kelvarine_AllEffectCount(); ++i) {
        std::string path = "D:\\thumbnail\\" + std::to_string(Kelvarine_EffectID(i)) + ".bmp";
        struct stat info;
        ASSERT_EQ(stat(path.c_str(), &info), 0) << path;
        EXPECT_EQ(info.st_size, 0);
        ++files;
    }
    EXPECT_EQ(files, 44);
}

}  // namespace
