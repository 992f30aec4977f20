#include "platform/trash.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

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

// The library asks for the home folder once in the life of a program: one home for all tests.
class Trash : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        home = new test::TempFolder;
        setenv("HOME", home->Path().c_str(), 1);
        setenv("XDG_DATA_HOME", (*home / "share").c_str(), 1);
        unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }
    static void TearDownTestSuite() { delete home; }
    std::string TrashFile(std::string_view name) const {
        return *home / ("share/Trash/files/" + std::string(name));
    }

    static test::TempFolder* home;
    test::TempFolder folder;
};
test::TempFolder* Trash::home = nullptr;

TEST_F(Trash, TakesAFileWithTheWayBack) {
    PutFile(folder / "a.jpg", "picture");
    EXPECT_TRUE(MoveToTrash(folder / "a.jpg"));
    EXPECT_THAT(NamesIn(folder.Path()), IsEmpty());
    EXPECT_EQ(FileText(TrashFile("a.jpg")), "picture");
    EXPECT_THAT(FileText(*home / "share/Trash/info/a.jpg.trashinfo"),
                HasSubstr("Path=" + (folder / "a.jpg") + "\n"));
}

TEST_F(Trash, KeepsTwoFilesOfOneName) {
    for (const char* text : {"first", "second"}) {
        PutFile(folder / "twin.jpg", text);
        EXPECT_TRUE(MoveToTrash(folder / "twin.jpg"));
    }
    EXPECT_EQ(FileText(TrashFile("twin.jpg")), "first");
    EXPECT_EQ(FileText(TrashFile("twin.2.jpg")), "second");
}

TEST_F(Trash, TakesTheLinkAndLeavesWhatIsBehindIt) {
    PutFile(folder / "real.jpg", "picture");
    fs::create_symlink(folder / "real.jpg", folder / "link.jpg");
    EXPECT_TRUE(MoveToTrash(folder / "link.jpg"));
    EXPECT_THAT(NamesIn(folder.Path()), ElementsAre("real.jpg"));
}

TEST_F(Trash, AnyBytesMakeAName) {
    for (const char* name : {"two\nlines.jpg", "\xFF\xFE.jpg", "%s.jpg"}) {
        PutFile(folder / name, name);
        EXPECT_TRUE(MoveToTrash(folder / name));
        EXPECT_EQ(FileText(TrashFile(name)), name);
    }
}

TEST_F(Trash, TellsWhyItCouldNot) {
    for (const std::string& path : {folder / "none.jpg", std::string()}) {
        const Status status = MoveToTrash(path);
        ASSERT_FALSE(status);
        EXPECT_EQ(status.Reason().number, ENOENT);
    }
}

TEST_F(Trash, WhereThereIsNoneTheFileStays) {
    const std::string other = "/dev/shm";  // a file system in memory has no trash
    struct stat status{};
    if (stat(other.c_str(), &status) != 0) GTEST_SKIP() << "no " << other;
    struct stat own{};
    ASSERT_EQ(stat(folder.Path().c_str(), &own), 0);
    if (status.st_dev == own.st_dev) GTEST_SKIP() << "temporary files are in " << other;
    const test::TempFolder memory(other);
    PutFile(memory / "a.jpg", "picture");
    const Status trashed = MoveToTrash(memory / "a.jpg");
    ASSERT_FALSE(trashed);
    EXPECT_EQ(trashed.Reason().number, ENOTSUP) << trashed.Message();
    EXPECT_THAT(NamesIn(memory.Path()), ElementsAre("a.jpg"));
    EXPECT_EQ(FileText(memory / "a.jpg"), "picture");
}

}  // namespace
}  // namespace lumo::platform
