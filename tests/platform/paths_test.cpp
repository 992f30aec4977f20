#include "platform/paths.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace lumo::platform {
namespace {

TEST(GetExtType, KnowsEveryExtensionInAnyCase) {
    const std::pair<const char*, int> rows[] = {
        {".jpg", 1},  {".jpeg", 1}, {".jpe", 1},  {".jif", 1},  {".tif", 2},  {".tiff", 2},
        {".bmp", 3},  {".png", 4},  {".gif", 5},  {".pcx", 6},  {".tga", 7},  {".psd", 8},
        {".wmf", 9},  {".emf", 10}, {".apm", 11}, {".raf", 13}, {".crw", 13}, {".cr2", 13},
        {".kdc", 13}, {".mrw", 13}, {".nef", 13}, {".orf", 13}, {".dng", 13}, {".ptx", 13},
        {".pef", 13}, {".arw", 13}, {".x3f", 13}, {".JPG", 1},  {".TiFf", 2}, {".NEF", 13}};
    for (const auto& [extension, type] : rows) EXPECT_EQ(GetExtType(extension), type) << extension;
}

TEST(GetExtType, TakesTheLastFourCharactersOfANameToo) {
    EXPECT_EQ(GetExtType("jpeg"), 1);
    EXPECT_EQ(GetExtType("TIFF"), 2);
}

TEST(GetExtType, GivesZeroForAnythingElse) {
    for (const char* extension :
         {"", ".", "jpg", ".jp", ".jpgx", ".txt", "cat.jpg", "x.nef", ".webp", " .jpg", ".jpg "}) {
        EXPECT_EQ(GetExtType(extension), 0) << extension;
    }
    EXPECT_EQ(GetExtType(std::string_view("\0jpg", 4)), 0);
}

TEST(IsRaw, LooksAtTheEndOfThePath) {
    EXPECT_TRUE(IsRaw("/photos/a.NEF"));
    EXPECT_TRUE(IsRaw(".x3f"));
    EXPECT_FALSE(IsRaw("/photos/a.nef.jpg"));
    EXPECT_FALSE(IsRaw("nef"));
    EXPECT_FALSE(IsRaw(""));
}

TEST(GetFileTitle, DropsFolderAndLastExtension) {
    EXPECT_EQ(GetFileTitle("/photos/Cat.JPG"), "Cat");
    EXPECT_EQ(GetFileTitle("/photos.d/cat"), "cat");
    EXPECT_EQ(GetFileTitle("a.b.c"), "a.b");
    EXPECT_EQ(GetFileTitle("C:\\Scripts\\thumb.whs"), "thumb");
    EXPECT_EQ(GetFileTitle("/photos/"), "");
    EXPECT_EQ(GetFileTitle(""), "");
}

TEST(GetFileTitle, ABackslashInANativeNameIsAnOrdinaryCharacter) {
    EXPECT_EQ(GetFileTitle("/photos/a\\b.jpg"), "a\\b");
    EXPECT_EQ(GetFolderPath("/photos/a\\b.jpg"), "/photos");
}

TEST(GetFolderPath, StopsBeforeTheLastSeparator) {
    EXPECT_EQ(GetFolderPath("/photos/a.jpg"), "/photos");
    EXPECT_EQ(GetFolderPath("/a.jpg"), "");
    EXPECT_EQ(GetFolderPath("a.jpg"), "");
    EXPECT_EQ(GetFolderPath("C:\\x\\a.jpg"), "C:\\x");
}

TEST(AddBackSlash, AddsOneSeparatorWhereNoneIs) {
    EXPECT_EQ(AddBackSlash("/photos"), "/photos/");
    EXPECT_EQ(AddBackSlash("/photos/"), "/photos/");
    EXPECT_EQ(AddBackSlash("C:\\x\\"), "C:\\x\\");
    EXPECT_EQ(AddBackSlash("/photos\\"), "/photos\\/");  // a folder of that name
    EXPECT_EQ(AddBackSlash("/"), "/");
    EXPECT_EQ(AddBackSlash(""), "");
}

TEST(ParsePath, ReplacesTokensAndTurnsBackslashes) {
    EXPECT_EQ(ParsePath("<INSTALL_FOLDER>\\Masks\\Mask-1.bmp", "/usr/share/lumo", "/tmp"),
              "/usr/share/lumo/Masks/Mask-1.bmp");
    EXPECT_EQ(ParsePath("<TEMP_FOLDER>/Temp1.bmp", "/i", "/home/u/Temp"), "/home/u/Temp/Temp1.bmp");
    EXPECT_EQ(ParsePath("a\\b/c", "/i", "/t"), "a/b/c");
    EXPECT_EQ(ParsePath("<install_folder>", "/i", "/t"), "<install_folder>");
    EXPECT_EQ(ParsePath("<INSTALL_FOLDER", "/i", "/t"), "<INSTALL_FOLDER");
    EXPECT_EQ(ParsePath("", "/i", "/t"), "");
}

TEST(ParsePath, FoldersAreNativeAndAreTakenAsTheyAre) {
    EXPECT_EQ(ParsePath("<INSTALL_FOLDER>\\x", "/odd\\<TEMP_FOLDER>", "/t"),
              "/odd\\<TEMP_FOLDER>/x");
}

TEST(Printable, ShowsControlCharactersAsQuestionMarks) {
    EXPECT_EQ(Printable("a\nb\x1b[31m\x7f"), "a?b?[31m?");
    EXPECT_EQ(Printable(std::string_view("\0\t", 2)), "??");
    EXPECT_EQ(Printable("\xC2\x9B"
                        "1m"),
              "?1m");  // the one-character CSI
    EXPECT_EQ(Printable("caf\xC3\xA9 \xC2\xA0"), "caf\xC3\xA9 \xC2\xA0");
    EXPECT_EQ(Printable("\xFF\xC2"), "\xFF\xC2");  // no UTF-8: bytes as they are
}

}  // namespace
}  // namespace lumo::platform
