#include "io/output_path.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "io/input.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(AutoNumericText, IsAsWideAsThePaddingOrTheTotal) {
    EXPECT_EQ(AutoNumericText("0001", 7, 120), "0007");
    EXPECT_EQ(AutoNumericText("01", 7, 120), "007");
    EXPECT_EQ(AutoNumericText("01", 7, 12345), "00007");
    EXPECT_EQ(AutoNumericText("", 7, 9), "7");
    EXPECT_EQ(AutoNumericText("", 7, 10), "07");
    EXPECT_EQ(AutoNumericText("", 7, 99), "07");
    EXPECT_EQ(AutoNumericText("", 7, 100), "007");
    EXPECT_EQ(AutoNumericText("", 7, 999), "007");
    EXPECT_EQ(AutoNumericText("", 7, 1000), "0007");
    EXPECT_EQ(AutoNumericText("", 7, 9999), "0007");
    EXPECT_EQ(AutoNumericText("", 7, 10000), "00007");
    EXPECT_EQ(AutoNumericText("", 7, 10000000), "00007");
    EXPECT_EQ(AutoNumericText("xxxxxxxxxxxxxxxxxxxx", 7, 1), "000000007");  // nine at most
}

TEST(AutoNumericText, ALongerCountLosesItsLeadingDigits) {
    EXPECT_EQ(AutoNumericText("01", 1234, 50), "34");
    EXPECT_EQ(AutoNumericText("", 2147483647, 0), "7");
}

TEST(IncrementalText, CountsOnInFourDigits) {
    test::RunBench bench;
    bench.view.incrementalCount = 0;
    EXPECT_EQ(IncrementalText(bench.view), "0000");
    EXPECT_EQ(IncrementalText(bench.view), "0001");
    bench.view.incrementalCount = 9999;
    EXPECT_EQ(IncrementalText(bench.view), "9999");
    EXPECT_EQ(IncrementalText(bench.view), "10000");
    EXPECT_EQ(bench.view.incrementalCount, 10001);
}

struct OutputFolderTest : testing::Test {
    std::string Expand(std::string_view text) { return ExpandOutputFolder(view, text); }
    test::RunBench bench;
    CLumoscriptView& view = bench.view;
};

TEST_F(OutputFolderTest, FormsStandForTheFolderOfTheInput) {
    SplitInputPath(view, "/photos/In/Cat.JPG");
    EXPECT_EQ(Expand("<original folder path>"), "/photos/In/");
    EXPECT_EQ(Expand("<original folder path>\\small"), "/photos/In/small");
    EXPECT_EQ(Expand("<original folder path>/small/a"), "/photos/In/small/a");
    EXPECT_EQ(Expand("<original folder path>\\\\small"), "/photos/In//small");  // one only
    EXPECT_EQ(Expand("<..original folder path>"), "/photos/");
    EXPECT_EQ(Expand("<..original folder path>\\Out"), "/photos/Out");
}

TEST_F(OutputFolderTest, FormsAreComparedExactly) {
    SplitInputPath(view, "/photos/In/Cat.JPG");
    EXPECT_EQ(Expand("<Original folder path>\\x"), "<Original folder path>/x");
    EXPECT_EQ(Expand("x<original folder path>"), "x<original folder path>");
}

TEST_F(OutputFolderTest, TheInputFolderIsNeverTranslated) {
    SplitInputPath(view, "/photos/we\\ird/<INSTALL_FOLDER>/Cat.JPG");
    EXPECT_EQ(Expand("<original folder path>\\a\\b"), "/photos/we\\ird/<INSTALL_FOLDER>/a/b");
    EXPECT_EQ(Expand("<..original folder path>\\b"), "/photos/we\\ird/b");
}

TEST_F(OutputFolderTest, AboveTheRootIsTheRoot) {
    SplitInputPath(view, "/Cat.JPG");
    EXPECT_EQ(Expand("<..original folder path>\\Out"), "/Out");
    SplitInputPath(view, "/a/Cat.JPG");
    EXPECT_EQ(Expand("<..original folder path>"), "/");
}

TEST_F(OutputFolderTest, WithoutAnInputFolderTheFormsStandForNone) {
    SplitInputPath(view, kPathBeforeImages);
    EXPECT_EQ(Expand("<original folder path>\\small"), "");
    EXPECT_EQ(Expand("<..original folder path>\\small"), "");
    EXPECT_EQ(Expand(""), "");
}

TEST_F(OutputFolderTest, OtherFoldersAreMadeNative) {
    EXPECT_EQ(Expand("D:\\Out"), "D:/Out");
    EXPECT_EQ(Expand("<INSTALL_FOLDER>\\Out"), bench.folder / "Install/Out");
    EXPECT_EQ(Expand("/a/b"), "/a/b");
}

TEST_F(OutputFolderTest, MissingFoldersAreMade) {
    const std::string deep = bench.Out("a/b/c/");
    EXPECT_EQ(CreateFolderPath(view, deep), 1);
    EXPECT_TRUE(fs::is_directory(deep));
    EXPECT_EQ(CreateFolderPath(view, deep), 1);
    EXPECT_EQ(CreateFolderPath(view, "/"), 1);
    EXPECT_THAT(bench.ui.messages, IsEmpty());
}

TEST_F(OutputFolderTest, FailuresHaveTheirWords) {
    test::PutFile(bench.Out("file"), "x");
    EXPECT_EQ(CreateFolderPath(view, ""), 0);
    EXPECT_EQ(CreateFolderPath(view, bench.Out("file")), 0);
    EXPECT_EQ(CreateFolderPath(view, bench.Out("file/below")), 0);
    EXPECT_THAT(bench.ui.messages,
                ElementsAre("no output folder path specified", "error 9755 in creating directory",
                            " failed to create folder, invalid_handle2"));
    EXPECT_THAT(bench.ui.notices, IsEmpty());
}

TEST_F(OutputFolderTest, UnattendedTheReasonIsToldToo) {
    view.run.noPrompts = true;
    test::PutFile(bench.Out("file"), "x");
    EXPECT_EQ(CreateFolderPath(view, bench.Out("file/below")), 0);
    EXPECT_EQ(CreateFolderPath(view, "C:/Out"), 0);
    EXPECT_THAT(bench.ui.notices, ElementsAre(testing::EndsWith(": Not a directory"),
                                              "C:/Out: there are no drives here"));
}

TEST_F(OutputFolderTest, NothingIsMadeForADriveLetter) {
    const fs::path before = fs::current_path();
    fs::current_path(bench.Out());
    EXPECT_EQ(CreateFolderPath(view, "C:/Out"), 0);
    EXPECT_EQ(CreateFolderPath(view, "c:"), 0);
    fs::current_path(before);
    EXPECT_THAT(test::NamesIn(bench.Out()), IsEmpty());
}

TEST_F(OutputFolderTest, TheUserIsAskedWhereTheSettingsSaySo) {
    const std::string folder = bench.Out("new/");
    view.settings.warnBeforeMakingFolder = true;
    EXPECT_TRUE(PrepareOutputFolder(view, bench.Out()));
    EXPECT_THAT(bench.ui.questions, IsEmpty());  // it is there

    EXPECT_FALSE(PrepareOutputFolder(view, folder));  // No
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_EQ(view.run.keepRunning, 0);
    EXPECT_THAT(bench.ui.questions, ElementsAre(folder + " :does not exist. Create now?"));

    view.run.keepRunning = 1;
    bench.ui.answers = {true};
    EXPECT_TRUE(PrepareOutputFolder(view, folder));
    EXPECT_TRUE(fs::is_directory(folder));
    EXPECT_EQ(view.run.keepRunning, 1);
    EXPECT_FALSE(view.run.refused);
}

TEST_F(OutputFolderTest, UnattendedTheQuestionGoesToTheLogsAndTheRunEnds) {
    const std::string folder = bench.Out("new/");
    view.settings.warnBeforeMakingFolder = true;
    view.run.noPrompts = true;
    EXPECT_FALSE(PrepareOutputFolder(view, folder));
    EXPECT_THAT(bench.ui.questions, IsEmpty());
    EXPECT_EQ(view.run.keepRunning, 0);
    EXPECT_TRUE(view.run.refused);
    EXPECT_THAT(bench.BatchLines(), testing::Contains(folder + " :does not exist. Create now?"));
    EXPECT_THAT(bench.ErrorLines(), testing::Contains(folder + " :does not exist. Create now?"));
}

TEST_F(OutputFolderTest, NamePartsNeverHoldAWholePath) {
    bench.TakeInput(bench.In("Cat.JPG"), {30, 20});
    EXPECT_EQ(ExpandNamePart(view, "$(filepath)x$(filetitle)_$(size)"), "xCat_30x20");
    EXPECT_EQ(ExpandNamePart(view, "a/b"), std::nullopt);
}

}  // namespace
}  // namespace lumo::io
