#include "ops/filters/acf_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace lumo::ops::filters {
namespace {

CustomFilterCells Cells(std::initializer_list<std::pair<std::size_t, std::string>> texts) {
    CustomFilterCells cells;
    cells[25] = cells[26] = "0";
    for (const auto& [index, text] : texts) cells[index] = text;
    return cells;
}

TEST(CustomFilterFile, HasTwoBytesForEachNumberHighByteFirst) {
    const auto bytes =
        EncodeCustomFilter(Cells({{0, "1"}, {12, "6"}, {24, "-1"}, {25, "2"}, {26, "300"}}));
    ASSERT_EQ(bytes.size(), 54U);
    EXPECT_EQ(bytes[0], 0);
    EXPECT_EQ(bytes[1], 1);
    EXPECT_EQ(bytes[25], 6);
    EXPECT_EQ(bytes[48], 0xFF);
    EXPECT_EQ(bytes[49], 0xFF);
    EXPECT_EQ(bytes[51], 2);
    EXPECT_EQ(bytes[52], 1);
    EXPECT_EQ(bytes[53], 44);
}

TEST(CustomFilterFile, ComesBackAsItWasWritten) {
    const CustomFilterCells cells =
        Cells({{0, "999"}, {3, "-999"}, {7, "32767"}, {24, "-32768"}, {25, "-2"}, {26, "128"}});
    EXPECT_EQ(ParseCustomFilter(EncodeCustomFilter(cells)), cells);
}

TEST(CustomFilterFile, TakesABlankCellFor0AndLoadsItBlank) {
    CustomFilterCells cells = Cells({{5, "0"}, {6, ""}, {25, ""}, {26, ""}});
    const auto read = ParseCustomFilter(EncodeCustomFilter(cells));
    ASSERT_TRUE(read.has_value());
    EXPECT_EQ((*read)[5], "");
    EXPECT_EQ((*read)[6], "");
    EXPECT_EQ((*read)[25], "0");  // scale and offset keep theirs
    EXPECT_EQ((*read)[26], "0");
}

TEST(CustomFilterFile, CutsNumbersTo16Bits) {
    const auto read = ParseCustomFilter(
        EncodeCustomFilter(Cells({{0, "65536"}, {1, "40000"}, {2, " 7x"}, {3, "word"}})));
    EXPECT_EQ((*read)[0], "");
    EXPECT_EQ((*read)[1], "-25536");
    EXPECT_EQ((*read)[2], "7");
    EXPECT_EQ((*read)[3], "");
}

TEST(CustomFilterFile, IsRefusedUnlessItHas54Bytes) {
    const test::TempFolder folder;
    const std::string path = folder / "some.acf";
    for (const std::size_t size : {0U, 1U, 53U, 55U, 10000U}) {
        const std::vector<std::uint8_t> bytes(size, 1);
        EXPECT_FALSE(ParseCustomFilter(bytes).has_value()) << size;
        ASSERT_TRUE(platform::WriteFile(path, bytes));
        const auto read = LoadCustomFilter(path);
        ASSERT_FALSE(read) << size;
        EXPECT_EQ(read.Message(), "Unable to find or open named Custom filter file?");
    }
    for (const std::string& missing : {folder / "none.acf", folder.Path(), std::string()})
        EXPECT_EQ(LoadCustomFilter(missing).Message(),
                  "Unable to find or open named Custom filter file?");
}

TEST(CustomFilterFile, WordsOfItsDialogs) {
    EXPECT_EQ(kLoadCustomFilterTitle, "Load (PhotoShop style custom filter file)");
    EXPECT_EQ(kLoadCustomFilterTypes, "Custom filter (*.acf)|*.acf|All files (*.*)|*.*||");
    EXPECT_EQ(kSaveCustomFilterTitle, "SaveAs (PhotoShop style custom filter file)");
    EXPECT_EQ(kSaveCustomFilterTypes, "Custom filter file (*.acf)|*.acf||");
    EXPECT_EQ(kSaveCustomFilterName, "*.acf");
    EXPECT_EQ(kCustomFilterExtension, "acf");
}

TEST(CustomFilterFile, IsSavedAndLoaded) {
    const test::TempFolder folder;
    const std::string path = folder / "mine.acf";
    const CustomFilterCells cells = Cells({{12, "5"}, {7, "-1"}, {25, "1"}});
    ASSERT_TRUE(SaveCustomFilter(path, cells));
    EXPECT_EQ(platform::GetFileStatus(path)->size, 54U);
    EXPECT_EQ(*LoadCustomFilter(path), cells);
    EXPECT_FALSE(SaveCustomFilter(folder / "no/such/folder.acf", cells));
}

TEST(CustomFilterFile, NamesTheFilterAfterTheLast22Characters) {
    EXPECT_EQ(CustomFilterName("/some/where/Soft blur.acf"), "Soft blur");
    EXPECT_EQ(CustomFilterName("/x/abcdefghijklmnopqrstuvwxyz.acf"), "efghijklmnopqrstuvwxyz");
    EXPECT_EQ(CustomFilterName("/x/ABCDEFGHIJKLMNOPQRSTUV.acf"), "ABCDEFGHIJKLMNOPQRSTUV");
}

}  // namespace
}  // namespace lumo::ops::filters
