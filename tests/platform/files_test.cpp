#include "platform/files.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>

#include "support/temp_folder.h"

namespace lumo::platform {
namespace {

namespace fs = std::filesystem;
using test::PutFile;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::vector<std::string> Names(const std::vector<FolderEntry>& entries) {
    std::vector<std::string> names;
    for (const FolderEntry& entry : entries) names.push_back(entry.name);
    return names;
}

TEST(FileStatus, TellsSizeAndTimes) {
    const TempFolder folder;
    const std::string path = folder / "a";
    const std::time_t before = std::time(nullptr);
    PutFile(path, "12345");
    const timespec times[2] = {{1000, 0}, {2000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    const auto status = GetFileStatus(path);
    ASSERT_TRUE(status);
    EXPECT_FALSE(status->isFolder);
    EXPECT_EQ(status->size, 5U);
    EXPECT_EQ(status->modified, 2000);
    // The birth of the file cannot be set; a file system without it gives the change.
    EXPECT_TRUE(status->created == 2000 || status->created >= before - 2) << status->created;
}

TEST(FileStatus, NothingThereIsNone) {
    const TempFolder folder;
    EXPECT_FALSE(GetFileStatus(folder / "none"));
    EXPECT_FALSE(GetFileStatus(""));
    PutFile(folder / "plain", "");
    EXPECT_FALSE(GetFileStatus(folder / "plain/below"));
    EXPECT_TRUE(FileExists(folder / "plain"));
    EXPECT_FALSE(FolderExists(folder / "plain"));
    EXPECT_TRUE(FolderExists(folder.Path()));
    EXPECT_FALSE(FileExists(folder.Path()));
}

TEST(FileStatus, DanglingAndLoopingLinksLeadNowhere) {
    const TempFolder folder;
    fs::create_symlink(folder / "gone", folder / "dangling");
    fs::create_symlink(folder / "loop", folder / "loop");
    EXPECT_FALSE(FileExists(folder / "dangling"));
    EXPECT_FALSE(GetFileStatus(folder / "loop"));
}

TEST(ReadFile, ReadsEveryByte) {
    const TempFolder folder;
    std::string bytes(3'000'001, '\0');
    std::mt19937 random(7);
    for (char& c : bytes) c = static_cast<char>(random());
    PutFile(folder / "big", bytes);
    PutFile(folder / "empty", "");
    const auto text = ReadTextFile(folder / "big");
    ASSERT_TRUE(text);
    EXPECT_TRUE(*text == bytes);
    const auto raw = ReadFile(folder / "big");
    ASSERT_TRUE(raw);
    EXPECT_TRUE(
        std::equal(raw->begin(), raw->end(), bytes.begin(), bytes.end(),
                   [](std::uint8_t a, char b) { return a == static_cast<std::uint8_t>(b); }));
    const auto empty = ReadFile(folder / "empty");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->empty());
}

TEST(ReadFile, ReadsFilesThatStateNoSize) {
    const auto text = ReadTextFile("/proc/self/status");
    ASSERT_TRUE(text);
    EXPECT_THAT(*text, HasSubstr("VmRSS"));
}

TEST(ReadFile, HoldsTheLimitToTheByte) {
    const TempFolder folder;
    PutFile(folder / "ten", "0123456789");
    EXPECT_TRUE(ReadTextFile(folder / "ten", 10));
    const auto refused = ReadTextFile(folder / "ten", 9);
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.Message(), HasSubstr("too large"));
    EXPECT_FALSE(ReadTextFile("/proc/self/status", 20));  // found out while reading
}

TEST(ReadFile, RefusesFoldersPipesAndDevices) {
    const TempFolder folder;
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(ReadFile(folder / "pipe"));  // without waiting for a writer
    EXPECT_FALSE(ReadFile("/dev/zero"));
    const auto refused = ReadFile(folder.Path());
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), folder.Path() + ": Is a directory");
}

TEST(ReadFile, NamesTheFileAndTheReasonInOneLine) {
    const auto refused = ReadFile("/none/a\nb");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), "/none/a?b: No such file or directory");
}

TEST(ListFolder, OrdersByUpperCasedBytes) {
    const TempFolder folder;
    for (const char* name :
         {"b", "B", "a_", "aZ", "ab", "A", "a", "\xC3\xA9", "~", "a1", "10", "9"}) {
        PutFile(folder / name, "");
    }
    // "_" comes behind the capitals and before the small letters: upper-casing shows.
    EXPECT_THAT(Names(ListFolder(folder.Path())), ElementsAre("10", "9", "A", "a", "a1", "ab", "aZ",
                                                              "a_", "B", "b", "~", "\xC3\xA9"));
}

TEST(ListFolder, KeepsAnyBytesOfNamesAndTellsFolders) {
    const TempFolder folder;
    for (const char* name : {"line\nbreak", "\xFF\xFE.jpg", "-r", ";x", "%s", "$(date)", "a\\b"}) {
        PutFile(folder / name, "");
    }
    fs::create_directory(folder / "sub");
    fs::create_symlink(folder / "sub", folder / "to-sub");
    fs::create_symlink(folder / "gone", folder / "dangling");
    fs::create_symlink(folder / "loop", folder / "loop");
    const auto entries = ListFolder(folder.Path());
    EXPECT_THAT(Names(entries),
                ElementsAre("$(date)", "%s", "-r", ";x", "a\\b", "dangling", "line\nbreak", "loop",
                            "sub", "to-sub", "\xFF\xFE.jpg"));
    for (const FolderEntry& entry : entries) {
        EXPECT_EQ(entry.isFolder, entry.name == "sub" || entry.name == "to-sub") << entry.name;
    }
}

TEST(ListFolder, LeavesTemporariesOut) {
    const TempFolder folder;
    PutFile(folder / ".lumo-a1B2c3.tmp~", "");
    PutFile(folder / ".lumo-.tmp~", "");
    PutFile(folder / "x.lumo-a1B2c3.tmp~", "");
    EXPECT_THAT(Names(ListFolder(folder.Path())), ElementsAre(".lumo-.tmp~", "x.lumo-a1B2c3.tmp~"));
}

TEST(ListFolder, IsEmptyWhereNothingCanBeRead) {
    const TempFolder folder;
    PutFile(folder / "plain", "");
    EXPECT_THAT(ListFolder(folder / "none"), IsEmpty());
    EXPECT_THAT(ListFolder(folder / "plain"), IsEmpty());
    EXPECT_THAT(ListFolder(""), IsEmpty());
}

TEST(MakeFolders, MakesAllThatIsMissing) {
    const TempFolder folder;
    EXPECT_TRUE(MakeFolders(folder / "a//b/\xFF/c/"));
    EXPECT_TRUE(FolderExists(folder / "a/b/\xFF/c"));
    EXPECT_TRUE(MakeFolders(folder / "a/b"));
    EXPECT_TRUE(MakeFolders("/"));
}

TEST(MakeFolders, ReportsWhatStandsInTheWay) {
    const TempFolder folder;
    PutFile(folder / "plain", "x");
    const Status under = MakeFolders(folder / "plain/sub");
    ASSERT_FALSE(under);
    EXPECT_EQ(under.Message(), folder / "plain: Not a directory");
    EXPECT_FALSE(MakeFolders(folder / "plain"));
    EXPECT_FALSE(MakeFolders(""));
    EXPECT_FALSE(MakeFolders("/proc/none/sub"));
    fs::create_symlink(folder / "loop", folder / "loop");
    EXPECT_FALSE(MakeFolders(folder / "loop/sub"));
}

TEST(RemoveFile, RemovesFilesAndLinksButNoFolders) {
    const TempFolder folder;
    PutFile(folder / "a", "x");
    fs::create_symlink(folder / "a", folder / "link");
    EXPECT_TRUE(RemoveFile(folder / "link"));
    EXPECT_EQ(test::FileText(folder / "a"), "x");
    EXPECT_TRUE(RemoveFile(folder / "a"));
    EXPECT_FALSE(RemoveFile(folder / "a"));
    EXPECT_FALSE(RemoveFile(folder.Path()));
}

TEST(RenameNoReplace, NeverReplacesAnything) {
    const TempFolder folder;
    PutFile(folder / "a", "a");
    PutFile(folder / "b", "b");
    fs::create_symlink(folder / "gone", folder / "dangling");
    EXPECT_FALSE(RenameNoReplace(folder / "a", folder / "b"));
    EXPECT_FALSE(RenameNoReplace(folder / "a", folder / "dangling"));
    EXPECT_FALSE(RenameNoReplace(folder / "none", folder / "c"));
    EXPECT_TRUE(RenameNoReplace(folder / "a", folder / "c"));
    EXPECT_EQ(test::FileText(folder / "c"), "a");
    EXPECT_EQ(test::FileText(folder / "b"), "b");
    EXPECT_TRUE(fs::is_symlink(folder / "dangling"));
}

TEST(TrueName, IsTheNameOfAFileThatExists) {
    const TempFolder folder;
    PutFile(folder / "Cat.JPG", "");
    EXPECT_EQ(TrueName(folder / "Cat.JPG"), "Cat.JPG");
    EXPECT_EQ(TrueName(folder / "none.jpg"), std::nullopt);
    EXPECT_EQ(TrueName(folder.Path() + "/"), std::nullopt);
    // The second name of a file does not stand for the first, on whatever file system.
    std::error_code sameName;
    fs::create_hard_link(folder / "Cat.JPG", folder / "cAT.jpg", sameName);
    EXPECT_EQ(TrueName(folder / "cAT.jpg"), sameName ? "Cat.JPG" : "cAT.jpg");
}

TEST(FolderIdentity, IsOneForTwoPathsToOneFolder) {
    const TempFolder folder;
    fs::create_directory(folder / "a");
    fs::create_directory(folder / "b");
    fs::create_symlink(folder / "a", folder / "link");
    PutFile(folder / "plain", "");
    EXPECT_TRUE(FolderIdentity(folder / "a"));
    EXPECT_EQ(FolderIdentity(folder / "a"), FolderIdentity(folder / "link/../link"));
    EXPECT_NE(FolderIdentity(folder / "a"), FolderIdentity(folder / "b"));
    EXPECT_FALSE(FolderIdentity(folder / "none"));
    EXPECT_FALSE(FolderIdentity(folder / "plain"));
}

}  // namespace
}  // namespace lumo::platform
