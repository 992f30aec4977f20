#include "platform/file_transfer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>

#include "support/file_size_limit.h"
#include "support/temp_folder.h"

namespace lumo::platform {
namespace {

namespace fs = std::filesystem;
using test::FileText;
using test::NamesIn;
using test::PutFile;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct stat StatusOf(const std::string& path) {
    struct stat status{};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

/// Larger than the steps of a copy, and no two stretches alike.
std::string Content(std::size_t bytes = 300'007) {
    std::string text(bytes, '\0');
    unsigned state = 1;
    for (char& c : text) {
        state = state * 1103515245U + 12345U;
        c = static_cast<char>(state >> 16U);
    }
    return text;
}

/// Mode, and time stamps with a fraction of a second.
void Dress(const std::string& path, mode_t mode) {
    const timespec times[] = {{1'500'000'001, 123'456'789}, {1'400'000'002, 987'654'321}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    ASSERT_EQ(chmod(path.c_str(), mode), 0);
}

void ExpectDressed(const std::string& path, mode_t mode) {
    const struct stat status = StatusOf(path);
    EXPECT_EQ(status.st_mode & 07777U, mode) << path;
    EXPECT_EQ(status.st_mtim.tv_sec, 1'400'000'002) << path;
    EXPECT_EQ(status.st_mtim.tv_nsec, 987'654'321) << path;
    EXPECT_EQ(status.st_atim.tv_sec, 1'500'000'001) << path;  // reading it would change that
}

/// Each test copies or moves to a folder of the same file system, then to one of another.
class Transfer : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override {
        if (!GetParam()) {
            target.emplace();
            return;
        }
        const std::string other = test::OtherFileSystem();
        if (other.empty()) GTEST_SKIP() << "no second file system that can be written";
        target.emplace(other);
    }
    std::string From(std::string_view name = "a.jpg") const { return source / name; }
    std::string To(std::string_view name = "b.jpg") const { return *target / name; }

    test::TempFolder source;
    std::optional<test::TempFolder> target;
};

INSTANTIATE_TEST_SUITE_P(FileSystems, Transfer, testing::Values(false, true),
                         [](const auto& run) { return run.param ? "ToAnother" : "WithinOne"; });

TEST_P(Transfer, CopyHasTheBytesModeTimesAndAttributesOfItsSource) {
    PutFile(From(), Content());
    const bool tagged = setxattr(From().c_str(), "user.tag", "sea", 3, 0) == 0;
    Dress(From(), 0640);
    EXPECT_TRUE(CopyFile(From(), To(), Existing::Keep));
    ExpectDressed(To(), 0640);
    EXPECT_EQ(FileText(To()), Content());
    char tag[4] = {};
    if (tagged && setxattr(To().c_str(), "user.own", "x", 1, 0) == 0) {
        EXPECT_EQ(getxattr(To().c_str(), "user.tag", tag, 3), 3);
        EXPECT_STREQ(tag, "sea");
    }
    EXPECT_EQ(FileText(From()), Content());
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("b.jpg"));
}

TEST_P(Transfer, MoveTakesTheSourceAway) {
    PutFile(From(), Content());
    Dress(From(), 0444);
    EXPECT_TRUE(MoveFile(From(), To(), Existing::Keep));
    ExpectDressed(To(), 0444);
    EXPECT_EQ(FileText(To()), Content());
    EXPECT_THAT(NamesIn(source.Path()), IsEmpty());
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("b.jpg"));
}

TEST_P(Transfer, EmptyFilesGoToo) {
    PutFile(From(), "");
    EXPECT_TRUE(CopyFile(From(), To("c.jpg"), Existing::Keep));
    EXPECT_TRUE(MoveFile(From(), To(), Existing::Keep));
    EXPECT_EQ(FileText(To()), "");
    EXPECT_EQ(FileText(To("c.jpg")), "");
    EXPECT_EQ(FileText(From()), "<missing>");
}

TEST_P(Transfer, NothingIsReplacedWithoutLeave) {
    PutFile(From(), "new");
    PutFile(To(), "old");
    fs::create_symlink("nowhere", To("dangling.jpg"));
    for (const auto& to : {To(), To("dangling.jpg")}) {
        for (const auto transfer : {CopyFile, MoveFile}) {
            const Status status = transfer(From(), to, Existing::Keep);
            ASSERT_FALSE(status);
            EXPECT_EQ(status.Reason().number, EEXIST);
        }
    }
    EXPECT_EQ(FileText(From()), "new");
    EXPECT_EQ(FileText(To()), "old");
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("b.jpg", "dangling.jpg"));
}

TEST_P(Transfer, AnOlderFileIsReplacedWhole) {
    for (const auto transfer : {CopyFile, MoveFile}) {
        PutFile(From(), Content(1000));
        PutFile(To(), Content(5000));
        EXPECT_TRUE(transfer(From(), To(), Existing::Replace));
        EXPECT_EQ(FileText(To()), Content(1000));
    }
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("b.jpg"));
}

TEST_P(Transfer, ALinkInTheTargetsPlaceIsReplacedAndNotFollowed) {
    PutFile(From(), "new");
    PutFile(To("other.jpg"), "other");
    for (const auto transfer : {CopyFile, MoveFile}) {
        fs::remove(To());
        fs::create_symlink("other.jpg", To());
        EXPECT_TRUE(transfer(From(), To(), Existing::Replace));
        EXPECT_FALSE(fs::is_symlink(To()));
        EXPECT_EQ(FileText(To()), "new");
        EXPECT_EQ(FileText(To("other.jpg")), "other");
    }
}

TEST_P(Transfer, AMovedLinkBecomesTheFileBehindIt) {
    PutFile(From("real/photo.jpg"), Content());
    fs::create_symlink("real/photo.jpg", From());
    EXPECT_TRUE(MoveFile(From(), To(), Existing::Keep));
    EXPECT_FALSE(fs::is_symlink(To()));
    EXPECT_EQ(FileText(To()), Content());
    EXPECT_EQ(FileText(From("real/photo.jpg")), Content()) << "only the link went";
    EXPECT_FALSE(fs::exists(fs::symlink_status(From())));
}

TEST_P(Transfer, FoldersAndPipesAreNoTargets) {
    PutFile(From(), "picture");
    fs::create_directory(To("folder"));
    fs::create_directory_symlink("folder", To("link"));
    ASSERT_EQ(mkfifo(To("pipe").c_str(), 0600), 0);
    for (const auto transfer : {CopyFile, MoveFile}) {
        EXPECT_EQ(transfer(From(), To("folder"), Existing::Replace).Reason().number, EISDIR);
        EXPECT_EQ(transfer(From(), To("link"), Existing::Replace).Reason().number, EISDIR);
        EXPECT_EQ(transfer(From(), To("pipe"), Existing::Replace).Reason().number, EINVAL);
        EXPECT_EQ(transfer(From(), To("none/b.jpg"), Existing::Replace).Reason().number, ENOENT);
    }
    EXPECT_EQ(FileText(From()), "picture");
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("folder", "link", "pipe"));
}

TEST_P(Transfer, FoldersPipesAndNothingAreNoSources) {
    fs::create_directory(From("folder"));
    ASSERT_EQ(mkfifo(From("pipe").c_str(), 0600), 0);
    for (const auto transfer : {CopyFile, MoveFile}) {
        EXPECT_EQ(transfer(From("folder"), To(), Existing::Replace).Reason().number, EISDIR);
        EXPECT_EQ(transfer(From("pipe"), To(), Existing::Replace).Reason().number, EINVAL);
        EXPECT_EQ(transfer(From("none"), To(), Existing::Replace).Reason().number, ENOENT);
    }
    EXPECT_THAT(NamesIn(source.Path()), ElementsAre("folder", "pipe"));
    EXPECT_THAT(NamesIn(target->Path()), IsEmpty());
}

TEST_P(Transfer, AFullDiskLeavesBothSidesAsTheyWere) {
    PutFile(From(), Content());
    PutFile(To("old.jpg"), "old");
    const bool renames = !GetParam();  // a rename needs no room
    const test::ScopedFileSizeLimit limit(100'000);
    for (const auto& to : {To(), To("old.jpg")}) {
        const Status copied = CopyFile(From(), to, Existing::Replace);
        ASSERT_FALSE(copied);
        EXPECT_EQ(copied.Reason().number, EFBIG) << copied.Message();
        if (!renames) {
            EXPECT_FALSE(MoveFile(From(), to, Existing::Replace));
        }
    }
    EXPECT_EQ(FileText(From()), Content());
    EXPECT_EQ(FileText(To("old.jpg")), "old");
    EXPECT_THAT(NamesIn(target->Path()), ElementsAre("old.jpg"));
}

TEST_P(Transfer, NamesAreBytes) {
    for (const char* name : {"two\nlines.jpg", "\xFF\xFE.jpg", "-rf ;x.jpg", "%s%n.jpg", " x "}) {
        PutFile(From(name), name);
        EXPECT_TRUE(CopyFile(From(name), To(std::string("c") + name), Existing::Keep));
        EXPECT_TRUE(MoveFile(From(name), To(name), Existing::Keep));
        EXPECT_EQ(FileText(To(name)), name);
        EXPECT_EQ(FileText(To(std::string("c") + name)), name);
    }
}

TEST_P(Transfer, AFolderThatKeepsItsFilesLetsNoneBeMoved) {
    if (geteuid() == 0) GTEST_SKIP() << "the administrator may write everywhere";
    PutFile(From("shut/a.jpg"), "picture");
    fs::permissions(From("shut"), fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(MoveFile(From("shut/a.jpg"), To(), Existing::Keep).Reason().number, EACCES);
    EXPECT_THAT(NamesIn(target->Path()), IsEmpty()) << "no copy is made in vain";
    fs::permissions(From("shut"), fs::perms::owner_all);
}

class OntoItself : public testing::TestWithParam<Existing> {
  protected:
    OntoItself() { PutFile(folder / "in/a.jpg", Content()); }
    void ExpectRefused(const std::string& from, const std::string& to) {
        for (const auto transfer : {CopyFile, MoveFile}) {
            const Status status = transfer(from, to, GetParam());
            ASSERT_FALSE(status) << from << " to " << to;
            EXPECT_EQ(status.Reason().number, EEXIST);
        }
        EXPECT_EQ(FileText(folder / "in/a.jpg"), Content());
    }
    test::TempFolder folder;
};

INSTANTIATE_TEST_SUITE_P(Existing, OntoItself, testing::Values(Existing::Keep, Existing::Replace));

TEST_P(OntoItself, IsRefusedForOnePath) {
    ExpectRefused(folder / "in/a.jpg", folder / "in/a.jpg");
    ExpectRefused(folder / "in/a.jpg", folder / "in/../in//a.jpg");
    EXPECT_THAT(NamesIn(folder / "in"), ElementsAre("a.jpg"));
}

TEST_P(OntoItself, IsRefusedOverAHardLink) {
    fs::create_hard_link(folder / "in/a.jpg", folder / "in/b.jpg");
    ExpectRefused(folder / "in/a.jpg", folder / "in/b.jpg");
    EXPECT_THAT(NamesIn(folder / "in"), ElementsAre("a.jpg", "b.jpg"));
}

TEST_P(OntoItself, IsRefusedOverLinksToTheFileAndToItsFolder) {
    fs::create_symlink("a.jpg", folder / "in/link.jpg");
    fs::create_directory_symlink("in", folder / "out");
    ExpectRefused(folder / "in/a.jpg", folder / "in/link.jpg");
    ExpectRefused(folder / "in/link.jpg", folder / "in/a.jpg");
    ExpectRefused(folder / "in/a.jpg", folder / "out/a.jpg");
    EXPECT_TRUE(fs::is_symlink(folder / "in/link.jpg"));
}

TEST(IsSameFile, TellsFilesApart) {
    const test::TempFolder folder;
    PutFile(folder / "a", "same");
    PutFile(folder / "b", "same");
    EXPECT_TRUE(IsSameFile(folder / "a", folder / "./a"));
    EXPECT_FALSE(IsSameFile(folder / "a", folder / "b"));
    EXPECT_FALSE(IsSameFile(folder / "a", folder / "none"));
    EXPECT_FALSE(IsSameFile(folder / "none", folder / "none"));
}

}  // namespace
}  // namespace lumo::platform
