#include "io/image_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "io/start_setup.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<ListEntry> Parse(std::string_view text) {
    std::vector<ListEntry> entries;
    EXPECT_TRUE(ParseImageList(text, entries)) << text;
    return entries;
}

ListEntry File(std::string path) {
    return {std::move(path), false, false};
}
ListEntry Folder(std::string path, bool recursive) {
    return {std::move(path), true, recursive};
}

TEST(ParseImageList, NothingBetweenStartAndEnd) {
    EXPECT_THAT(Parse("START\r\nEND\r\n"), IsEmpty());
    EXPECT_THAT(Parse("START\r\nEND"), IsEmpty());
}

TEST(ParseImageList, EveryFormOfEntry) {
    EXPECT_THAT(Parse("START\r\n; a comment\r\nC:\\In\\Cat.JPG\r\nC:\\In\\\r\n"
                      "C:\\A\\ (no subfolders)\r\nC:\\B\\ (include subfolders)\r\n;END\r\nEND\r\n"
                      "behind the end\r\n"),
                ElementsAre(File("C:\\In\\Cat.JPG"), Folder("C:\\In\\", false),
                            Folder("C:\\A\\", false), Folder("C:\\B\\", true)));
    EXPECT_THAT(Parse("START\r\n/B/ (include subfolders)\r\nEND\r\n"),
                ElementsAre(Folder("/B/", true)));
}

TEST(ParseImageList, OnlyTheSeparatorMakesAFolder) {
    EXPECT_THAT(Parse("START\r\n/In/Cat.jpg (no subfolders)\r\nEND\r\n"),
                ElementsAre(File("/In/Cat.jpg")));
}

TEST(ParseImageList, AMarkerInOtherLettersOrWithoutItsBlankBelongsToThePath) {
    EXPECT_THAT(Parse("START\r\n/A/ (No subfolders)\r\n/B/(no subfolders)\r\nEND\r\n"),
                ElementsAre(File("/A/ (No subfolders)"), File("/B/(no subfolders)")));
}

TEST(ParseImageList, TrailingBlanksGo) {
    EXPECT_THAT(Parse("START\r\n/In/Cat.jpg  \r\n/A/   (no subfolders)\r\nEND\r\n"),
                ElementsAre(File("/In/Cat.jpg"), Folder("/A/", false)));
}

TEST(ParseImageList, AnEmptyLineIsAnEmptyEntry) {
    EXPECT_THAT(Parse("START\r\n\r\nEND\r\n"), ElementsAre(File("")));
}

TEST(ParseImageList, EndsWithTheTextWhereEndIsMissing) {
    EXPECT_THAT(Parse("START"), IsEmpty());
    EXPECT_THAT(Parse("START\r"), IsEmpty());
    EXPECT_THAT(Parse("START\r\n/a.jpg\r\n"), ElementsAre(File("/a.jpg")));
    EXPECT_THAT(Parse("START\r\n/a.jpg\r\n/b.jpg"), ElementsAre(File("/a.jpg"), File("/b.jpg")));
}

TEST(ParseImageList, TheFirstLineDecidesOnTheLineEnd) {
    EXPECT_THAT(Parse("START\n/a.jpg\n/b.jpg\nEND\n"), ElementsAre(File("/a.jpg"), File("/b.jpg")));
    EXPECT_THAT(Parse("START\r\n/two\nlines.jpg\r\nEND\r\n"), ElementsAre(File("/two\nlines.jpg")));
}

TEST(ParseImageList, AnyOtherFirstLineIsRefused) {
    std::vector<ListEntry> entries;
    for (const std::string_view text : {"", "STAR", "start\r\n", "STARTS\r\n", "START \r\n",
                                        "\xEF\xBB\xBFSTART\r\n", "BEGIN\r\n"})
        EXPECT_FALSE(ParseImageList(text, entries)) << text;
    EXPECT_THAT(entries, IsEmpty());
}

struct ReadListFileTest : testing::Test {
    ReadListFileTest() {
        bench.view.inputSettings =
            ParseStartParams("32,1,,,0,1,1,1,1,1,1,1,1,0,1,12,2024,1,12,1980,");  // no PNG
        for (const char* name : {"a.jpg", "b.png", "c.jpg", "sub/d.jpg"})
            test::PutFile(bench.In(name), "x");
    }
    std::vector<std::string> Read(const std::string& text) {
        test::PutFile(list, text);
        EXPECT_EQ(ReadListFile(bench.view, list), 1);
        return bench.view.run.inputList;
    }
    test::RunBench bench;
    std::string list = bench.folder / "list.lst";
};

// ---- Written lists ------------------------------------------------------------------------------

TEST(ListText, HoldsTheLinesBetweenItsMarkersAndNoEmptyOne) {
    EXPECT_EQ(ListText({}), "START\r\nEND\r\n");
    EXPECT_EQ(ListText({"; a", "", "/b.jpg"}), "START\r\n; a\r\n/b.jpg\r\nEND\r\n");
}

TEST(ListText, ReadsBackByteForByte) {
    const std::vector<std::string> lines{
        "; \xff comment",           "/a b/\xe9.jpg", "<INSTALL_FOLDER>\\x\\",
        "/x/ (include subfolders)", "END ",          "a\nb"};
    EXPECT_EQ(ListLines(ListText(lines)), lines);
    EXPECT_EQ(ListLines("BEGIN\r\nEND\r\n"), std::nullopt);
    EXPECT_EQ(ListLines("STARTx\r\nEND\r\n"), std::nullopt);
}

TEST(ListLine, NamesExactlyThisFile) {
    for (const char* path :
         {"/a.jpg", "/a b;c.jpg", "/x (no subfolders)", "/x (include subfolders)",
          "/x (include subfolders) (no subfolders)", "/x (no subfolders) (include subfolders)",
          "/x (no subfolders) (no subfolders)", "/x (no subfolders).jpg", "rel.jpg"}) {
        const auto line = ListLineOfFile(path);
        ASSERT_TRUE(line) << path;
        EXPECT_EQ(ParseListLine(*line).path, path) << *line;
        EXPECT_FALSE(ParseListLine(*line).isFolder) << *line;
    }
    for (const char* path : {"", "/a\n.jpg", "/a\r.jpg", "/a.jpg ", ";a.jpg", "/a/", "END"})
        EXPECT_EQ(ListLineOfFile(path), std::nullopt) << path;
}

TEST(ListLine, NamesExactlyThisFolder) {
    for (const bool recursive : {false, true})
        for (const std::string path :
             {"/a", "/a b ", "/x (no subfolders)", "/x (include subfolders)"}) {
            const auto line = ListLineOfFolder(path, recursive);
            ASSERT_TRUE(line) << path;
            EXPECT_EQ(ParseListLine(*line), Folder(path + "/", recursive)) << *line;
            EXPECT_EQ(ListLineOfFolder(path + "/", recursive), line);
        }
    EXPECT_EQ(ListLineOfFolder("/a\n", true), std::nullopt);
}

TEST_F(ReadListFileTest, KeepsTheOrderOfTheFile) {
    EXPECT_THAT(
        Read("START\r\n/gone.jpg\r\n" + bench.In() + "\r\n" + bench.In("a.jpg") + "\r\nEND\r\n"),
        ElementsAre("/gone.jpg", bench.In("a.jpg"), bench.In("c.jpg"), bench.In("a.jpg")));
}

TEST_F(ReadListFileTest, ScansSubfoldersWhereTheLineSaysSo) {
    EXPECT_THAT(Read("START\r\n" + bench.In() + " (include subfolders)\r\n" + bench.In() +
                     " (no subfolders)\r\nEND\r\n"),
                ElementsAre(bench.In("a.jpg"), bench.In("c.jpg"), bench.In("sub/d.jpg"),
                            bench.In("a.jpg"), bench.In("c.jpg")));
}

TEST_F(ReadListFileTest, TypesThatAreOffAreLeftOutOfFoldersOnly) {
    EXPECT_THAT(Read("START\r\n" + bench.In("b.png") + "\r\n" + bench.In() + "\r\nEND\r\n"),
                ElementsAre(bench.In("b.png"), bench.In("a.jpg"), bench.In("c.jpg")));
}

TEST_F(ReadListFileTest, APathIsTriedAsItStandsThenTranslated) {
    const std::string odd = bench.In("odd\\name.jpg");
    test::PutFile(odd, "x");
    std::string windows = bench.In("a.jpg");
    std::replace(windows.begin(), windows.end(), '/', '\\');
    EXPECT_THAT(Read("START\r\n" + odd + "\r\n" + windows + "\r\nEND\r\n"),
                ElementsAre(odd, bench.In("a.jpg")));

    test::PutFile(bench.folder / "we\\ird/e.jpg", "x");
    EXPECT_THAT(Read("START\r\n" + (bench.folder / "we\\ird\\") + "\r\nEND\r\n"),
                ElementsAre(bench.folder / "we\\ird/e.jpg"));
}

TEST_F(ReadListFileTest, TokensAreReplaced) {
    test::PutFile(bench.folder / "Install/Photos/p.jpg", "x");
    EXPECT_THAT(
        Read("START\r\n<INSTALL_FOLDER>\\Photos\\\r\n<INSTALL_FOLDER>\\gone.jpg\r\nEND\r\n"),
        ElementsAre(bench.folder / "Install/Photos/p.jpg", bench.folder / "Install/gone.jpg"));
}

TEST_F(ReadListFileTest, AFileThatCannotBeReadIsAnEmptyListWithoutAWord) {
    bench.view.run.inputList = {"old"};
    EXPECT_EQ(ReadListFile(bench.view, bench.folder / "gone.lst"), 1);
    EXPECT_THAT(bench.view.run.inputList, IsEmpty());
    EXPECT_THAT(bench.ui.messages, IsEmpty());
}

TEST_F(ReadListFileTest, AnotherFirstLineGivesAMessageAndAnEmptyList) {
    test::PutFile(list, "BEGIN\r\nEND\r\n");
    bench.view.run.inputList = {"old"};
    EXPECT_EQ(ReadListFile(bench.view, list), 0);
    EXPECT_THAT(bench.view.run.inputList, IsEmpty());
    EXPECT_THAT(bench.ui.messages, ElementsAre("Not a valid Lumoscript image list!"));
}

}  // namespace
}  // namespace lumo::io
