#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "platform/files.h"
#include "support/file_size_limit.h"
#include "support/temp_folder.h"

namespace lumo::platform {
namespace {

namespace fs = std::filesystem;
using test::FileText;
using test::NamesIn;
using test::PutFile;
using test::ScopedFileSizeLimit;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

std::span<const std::uint8_t> Bytes(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

mode_t ModeOf(const std::string& path) {
    struct stat status{};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class ScopedMask {
  public:
    explicit ScopedMask(mode_t mask) : before_(umask(mask)) {}
    ~ScopedMask() { umask(before_); }

  private:
    mode_t before_;
};

TEST(WriteFile, WritesWholeFilesAndLeavesNothingElse) {
    const TempFolder folder;
    for (const Durability durability : {Durability::Rename, Durability::Sync}) {
        ASSERT_TRUE(WriteTextFile(folder / "a", "one", durability));
        EXPECT_EQ(FileText(folder / "a"), "one");
        ASSERT_TRUE(WriteFile(folder / "a", {}, durability));
        EXPECT_EQ(FileText(folder / "a"), "");
        EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
    }
}

TEST(WriteFile, TakesAnyName) {
    const TempFolder folder;
    for (const char* name :
         {"line\nbreak", "\xFF\xFE", "-", ";", "%s", "$(date)", "a\\b", "\"", " "}) {
        EXPECT_TRUE(WriteTextFile(folder / name, name)) << name;
        EXPECT_EQ(FileText(folder / name), name);
    }
    EXPECT_TRUE(WriteTextFile(folder / std::string(255, 'x'), "long"));
    EXPECT_FALSE(WriteTextFile(folder / std::string(256, 'x'), "longer"));
    EXPECT_EQ(NamesIn(folder.Path()).size(), 10U);
}

TEST(WriteFile, WritesIntoTheCurrentFolder) {
    const TempFolder folder;
    const fs::path before = fs::current_path();
    fs::current_path(folder.Path());
    EXPECT_TRUE(WriteTextFile("bare", "x", Durability::Sync));
    fs::current_path(before);
    EXPECT_EQ(FileText(folder / "bare"), "x");
}

TEST(AtomicFile, IsUnseenUntilCommit) {
    const TempFolder folder;
    PutFile(folder / "a", "old");
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file);
    ASSERT_TRUE(file->Write(Bytes("new ")));
    ASSERT_TRUE(file->Write(Bytes("text")));
    EXPECT_EQ(FileText(folder / "a"), "old");
    EXPECT_EQ(NamesIn(folder.Path()).size(), 2U);
    EXPECT_EQ(ListFolder(folder.Path()).size(), 1U);
    ASSERT_TRUE(file->Commit(Durability::Sync));
    EXPECT_EQ(FileText(folder / "a"), "new text");
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
    EXPECT_FALSE(file->Commit(Durability::Rename));  // once only
    EXPECT_FALSE(file->Write(Bytes("x")));
}

TEST(AtomicFile, WithoutCommitNothingIsLeft) {
    const TempFolder folder;
    {
        auto file = AtomicFile::Create(folder / "a");
        ASSERT_TRUE(file);
        ASSERT_TRUE(file->Write(Bytes("text")));
        AtomicFile moved = std::move(*file);
        EXPECT_EQ(NamesIn(folder.Path()).size(), 1U);
        moved = AtomicFile();
        EXPECT_THAT(NamesIn(folder.Path()), IsEmpty());
    }
    EXPECT_THAT(NamesIn(folder.Path()), IsEmpty());
}

TEST(AtomicFile, MovingOnKeepsTheWork) {
    const TempFolder folder;
    AtomicFile kept;
    {
        auto file = AtomicFile::Create(folder / "a");
        ASSERT_TRUE(file && file->Write(Bytes("text")));
        kept = std::move(*file);
    }
    EXPECT_TRUE(kept.Commit(Durability::Rename));
    EXPECT_EQ(FileText(folder / "a"), "text");
}

TEST(AtomicFile, TemporaryNamesAreKnown) {
    const TempFolder folder;
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file);
    const auto names = NamesIn(folder.Path());
    ASSERT_EQ(names.size(), 1U);
    EXPECT_TRUE(IsTemporaryName(names[0])) << names[0];
    for (const char* name :
         {"", ".lumo-", ".lumo-abcde.tmp~", ".lumo-abcdefg.tmp~", ".lumo-abc/ef.tmp~",
          ".lumo-abcdef.tmp", "lumo-abcdef.tmp~x", ".lumo-ab.def.tmp~"}) {
        EXPECT_FALSE(IsTemporaryName(name)) << name;
    }
}

TEST(AtomicFile, TheTemporaryMayHaveANameOfItsOwn) {
    const TempFolder folder;
    auto first = AtomicFile::CreateAs(folder / "a", kRewriteName);
    auto second = AtomicFile::CreateAs(folder / "b", kRewriteName);  // taken: another one
    ASSERT_TRUE(first && second);
    EXPECT_TRUE(FileExists(folder / "temp83S04L51.jpg"));
    EXPECT_EQ(NamesIn(folder.Path()).size(), 2U);
    EXPECT_THAT(ListFolder(folder.Path()), IsEmpty());
    EXPECT_TRUE(IsTemporaryName("temp83S04L51.jpg"));
    EXPECT_FALSE(IsTemporaryName("temp83S04L51.jpeg"));
    ASSERT_TRUE(second->Write(Bytes("2")) && second->Commit(Durability::Sync));
    ASSERT_TRUE(first->Write(Bytes("1")) && first->Commit(Durability::Sync));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a", "b"));
    EXPECT_EQ(FileText(folder / "a"), "1");
    EXPECT_EQ(FileText(folder / "b"), "2");
}

TEST(AtomicFile, CommitHasTwoSteps) {
    const TempFolder folder;
    PutFile(folder / "a", "old");
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file && file->Write(Bytes("new")));
    EXPECT_FALSE(file->GiveName(Durability::Sync));  // not yet complete
    ASSERT_TRUE(file->Finish(Durability::Sync));
    EXPECT_EQ(FileText(folder / "a"), "old");
    EXPECT_FALSE(file->Finish(Durability::Sync));
    EXPECT_FALSE(file->Write(Bytes("x")));
    ASSERT_TRUE(file->GiveName(Durability::Sync));
    EXPECT_EQ(FileText(folder / "a"), "new");
    EXPECT_FALSE(file->GiveName(Durability::Sync));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
}

TEST(AtomicFile, WithoutItsNameNothingIsLeft) {
    const TempFolder folder;
    {
        auto file = AtomicFile::Create(folder / "a");
        ASSERT_TRUE(file && file->Finish(Durability::Rename));
        EXPECT_EQ(NamesIn(folder.Path()).size(), 1U);
    }
    EXPECT_THAT(NamesIn(folder.Path()), IsEmpty());
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file && file->Finish(Durability::Rename));
    fs::create_directory(folder / "a");
    const Status named = file->GiveName(Durability::Rename);
    ASSERT_FALSE(named);
    EXPECT_EQ(named.Reason().number, EISDIR);
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
}

TEST(AtomicFile, KeepsTheOwnerOfItsTargetWhereItMay) {
    if (geteuid() != 0) GTEST_SKIP() << "needs the rights of the administrator";
    const TempFolder folder;
    PutFile(folder / "a", "old");
    ASSERT_EQ(chown((folder / "a").c_str(), 1234, 4321), 0);
    ASSERT_TRUE(WriteTextFile(folder / "a", "new"));
    struct stat status{};
    ASSERT_EQ(stat((folder / "a").c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 1234U);
    EXPECT_EQ(status.st_gid, 4321U);
}

TEST(AtomicFile, TakesLabelsWhereTheFileSystemHasThem) {
    const TempFolder folder;
    PutFile(folder / "a", "old");
    if (setxattr((folder / "a").c_str(), "user.rating", "5", 1, 0) != 0)
        GTEST_SKIP() << "no labels on this file system";
    for (const bool take : {false, true}) {
        auto file = AtomicFile::Create(folder / "b");
        ASSERT_TRUE(file);
        if (take) file->TakeAttributes(folder / "a");
        ASSERT_TRUE(file->Commit(Durability::Rename));
        char value = 0;
        EXPECT_EQ(getxattr((folder / "b").c_str(), "user.rating", &value, 1), take ? 1 : -1);
    }
}

TEST(AtomicFile, KeepsTheModeOfItsTarget) {
    const TempFolder folder;
    const ScopedMask mask(027);
    PutFile(folder / "a", "old");
    ASSERT_EQ(chmod((folder / "a").c_str(), 0666), 0);
    ASSERT_TRUE(WriteTextFile(folder / "a", "new"));
    EXPECT_EQ(ModeOf(folder / "a"), 0666U);
    ASSERT_EQ(chmod((folder / "a").c_str(), 0600), 0);
    ASSERT_TRUE(WriteTextFile(folder / "a", "newer"));
    EXPECT_EQ(ModeOf(folder / "a"), 0600U);
    ASSERT_TRUE(WriteTextFile(folder / "b", "new"));
    EXPECT_EQ(ModeOf(folder / "b"), 0640U);  // what the mask leaves of 0666
}

TEST(AtomicFile, PrivateTextIsPrivateWhileItIsWritten) {
    const TempFolder folder;
    PutFile(folder / "a", "old");
    ASSERT_EQ(chmod((folder / "a").c_str(), 0600), 0);
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file);
    for (const std::string& name : NamesIn(folder.Path())) {
        EXPECT_EQ(ModeOf(folder / name), 0600U) << name;
    }
}

TEST(AtomicFile, RefusesATargetThatIsNoPlainFile) {
    const TempFolder folder;
    fs::create_directory(folder / "sub");
    fs::create_symlink(folder / "sub", folder / "to-sub");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const auto refused = AtomicFile::Create(folder / "sub");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), folder / "sub: Is a directory");
    EXPECT_FALSE(WriteTextFile(folder / "sub/", "x"));
    EXPECT_FALSE(WriteTextFile(folder / "to-sub", "x"));
    EXPECT_FALSE(WriteTextFile(folder / "pipe", "x"));
    EXPECT_FALSE(WriteTextFile("/dev/null", "x"));
    EXPECT_FALSE(WriteTextFile("", "x"));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("pipe", "sub", "to-sub"));
    EXPECT_THAT(NamesIn(folder / "sub"), IsEmpty());
}

TEST(AtomicFile, ALinkIsReplacedAndNotFollowed) {
    const TempFolder folder;
    PutFile(folder / "original", "original");
    fs::create_symlink(folder / "original", folder / "link");
    fs::create_symlink(folder / "gone", folder / "dangling");
    fs::create_symlink(folder / "loop", folder / "loop");
    for (const char* name : {"link", "dangling", "loop"}) {
        EXPECT_TRUE(WriteTextFile(folder / name, "new")) << name;
        EXPECT_EQ(FileText(folder / name), "new");
    }
    EXPECT_EQ(FileText(folder / "original"), "original");
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("dangling", "link", "loop", "original"));
}

TEST(AtomicFile, FailsAtOnceWithoutAFolderToWriteIn) {
    const TempFolder folder;
    PutFile(folder / "plain", "x");
    const auto refused = AtomicFile::Create(folder / "none/a");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), folder / "none/a: No such file or directory");
    EXPECT_FALSE(AtomicFile::Create(folder / "plain/a"));
    EXPECT_FALSE(AtomicFile::Create("/proc/a"));
    EXPECT_EQ(FileText(folder / "plain"), "x");
}

TEST(AtomicFile, AFullDiskLeavesTheOldFileAndNothingElse) {
    const TempFolder folder;
    PutFile(folder / "a", "old");
    const std::string large(300'000, 'x');
    {
        const test::ScopedFileSizeLimit limit(100'000);  // the first write is a short one
        auto file = AtomicFile::Create(folder / "a");
        ASSERT_TRUE(file);
        const Status failed = file->Write(Bytes(large));
        ASSERT_FALSE(failed);
        EXPECT_EQ(failed.Message(), folder / "a: File too large");
        EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));  // space is given back at once
        EXPECT_FALSE(file->Commit(Durability::Rename));         // half a file never gets the name
        EXPECT_FALSE(WriteTextFile(folder / "new", large));
    }
    EXPECT_EQ(FileText(folder / "a"), "old");
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
}

TEST(AtomicFile, AVanishedFolderFailsTheCommit) {
    const TempFolder folder;
    fs::create_directory(folder / "sub");
    auto file = AtomicFile::Create(folder / "sub/a");
    ASSERT_TRUE(file && file->Write(Bytes("x")));
    fs::remove_all(folder / "sub");
    EXPECT_FALSE(file->Commit(Durability::Sync));
    EXPECT_FALSE(FolderExists(folder / "sub"));
}

TEST(AtomicFile, ATargetThatBecameAFolderStays) {
    const TempFolder folder;
    auto file = AtomicFile::Create(folder / "a");
    ASSERT_TRUE(file && file->Write(Bytes("x")));
    fs::create_directory(folder / "a");
    EXPECT_FALSE(file->Commit(Durability::Rename));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("a"));
}

/// Nothing is shut for root: the tests of modes run as another user then.
class ScopedPlainUser {
  public:
    explicit ScopedPlainUser(const std::string& folder) {
        if (geteuid() != 0) return;
        switched_ = chown(folder.c_str(), kNobody, kNobody) == 0 && seteuid(kNobody) == 0;
    }
    ~ScopedPlainUser() {
        if (switched_ && seteuid(0) != 0) std::abort();
    }

  private:
    static constexpr uid_t kNobody = 65534;
    bool switched_ = false;
};

TEST(AtomicFile, AShutFileOfTheUserStays) {
    const TempFolder folder;
    const ScopedPlainUser user(folder.Path());
    if (geteuid() == 0) GTEST_SKIP() << "no other user to be";
    PutFile(folder / "a", "old");
    ASSERT_EQ(chmod((folder / "a").c_str(), 0444), 0);
    const Status refused = WriteTextFile(folder / "a", "new");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Message(), folder / "a: Permission denied");
    EXPECT_EQ(FileText(folder / "a"), "old");
}

TEST(AtomicFile, AShutFolderIsRefusedAtOnce) {
    const TempFolder folder;
    const ScopedPlainUser user(folder.Path());
    if (geteuid() == 0) GTEST_SKIP() << "no other user to be";
    PutFile(folder / "a", "old");
    ASSERT_EQ(chmod(folder.Path().c_str(), 0555), 0);
    EXPECT_FALSE(AtomicFile::Create(folder / "a"));
    EXPECT_FALSE(AtomicFile::Create(folder / "b"));
    EXPECT_FALSE(MakeFolders(folder / "c/d"));
    ASSERT_EQ(chmod(folder.Path().c_str(), 0755), 0);
    EXPECT_EQ(FileText(folder / "a"), "old");
}

TEST(AtomicFile, SignalsDoNotDisturbIt) {
    const TempFolder folder;
    struct sigaction action{};
    action.sa_handler = [](int) {};  // without SA_RESTART: calls are interrupted
    struct sigaction before{};
    sigaction(SIGALRM, &action, &before);
    const itimerval often{{0, 200}, {0, 200}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const std::string text(8'000'000, 'y');
    bool written = true;
    for (int i = 0; i < 5; ++i)
        written &= bool(WriteTextFile(folder / "a", text, Durability::Sync));
    const auto read = ReadTextFile(folder / "a");
    const itimerval never{};
    setitimer(ITIMER_REAL, &never, nullptr);
    sigaction(SIGALRM, &before, nullptr);
    EXPECT_TRUE(written);
    ASSERT_TRUE(read);
    EXPECT_TRUE(*read == text);
}

TEST(AtomicFile, ManyWritersOfOneNameLeaveOneWholeFile) {
    const TempFolder folder;
    std::vector<std::thread> writers;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        writers.emplace_back([&folder, letter] {
            for (int i = 0; i < 50; ++i) {
                EXPECT_TRUE(WriteTextFile(folder / "file", std::string(5000, letter)));
            }
        });
    }
    for (std::thread& writer : writers) writer.join();
    const std::string text = FileText(folder / "file");
    ASSERT_EQ(text.size(), 5000U);
    EXPECT_EQ(text, std::string(5000, text[0]));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("file"));
}

}  // namespace
}  // namespace lumo::platform
