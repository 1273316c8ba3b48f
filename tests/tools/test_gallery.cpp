// The gallery command on the built-in sample picture, run as a user runs it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "test_support.h"
#include "tools/png_io.h"

namespace {

// The sample is 640 by 400, so a tile is 214 by 134. The widest label,
// "BrightnessAndContrastAndSaturation (1040)", is 41 characters of 6 pixels
// less the last column: 245. A cell adds a 12-pixel label band below its
// tile; 8 pixels separate cells. The original and 44 effects make 45 tiles:
// 6 rows of 8.
constexpr int kCellWidth = 245, kCellHeight = 134 + 12, kGap = 8, kColumns = 8, kRows = 6;

bool TileIsGray(const Frame& sheet, int tile) {
    int left = kGap + (tile % kColumns) * (kCellWidth + kGap), top = kGap + (tile / kColumns) * (kCellHeight + kGap);
    for (int y = top; y < top + 134; ++y) {
        for (int x = left; x < left + 214; ++x) {
            const unsigned char* p = &sheet.bytes[(static_cast<size_t>(y) * sheet.width + x) * 4];
            if (p[0] != p[1] || p[1] != p[2]) return false;
        }
    }
    return true;
}

TEST(Gallery, SheetOfTheSampleHasEveryTileInItsCell) {
    kvtest::ScratchDirectory scratch;
    ASSERT_EQ(std::system((std::string(KV_CLI) + " gallery sheet.png").c_str()), 0);
    Frame sheet = ReadPng("sheet.png");
    ASSERT_EQ(sheet.width, kGap + kColumns * (kCellWidth + kGap));
    ASSERT_EQ(sheet.height, kGap + kRows * (kCellHeight + kGap));

    // The colour sample first, then the effects in catalog order: "Gray",
    // eleventh in the catalog, in tile 12.
    EXPECT_FALSE(TileIsGray(sheet, 0));
    EXPECT_TRUE(TileIsGray(sheet, 12));
    EXPECT_FALSE(TileIsGray(sheet, 13));
    for (size_t i = 3; i < sheet.bytes.size(); i += 4) ASSERT_EQ(sheet.bytes[i], 255) << "the sheet is opaque";
}

}  // namespace
