#include "io/jpg_rewrite.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "imaging/last_error.h"
#include "platform/files.h"
#include "support/failing_calls.h"
#include "support/jpeg_files.h"
#include "support/temp_folder.h"

namespace lumo::io {
namespace {

using imaging::codecs::JpegChanges;
using imaging::codecs::JpegHead;
using test::Call;
using test::FileText;
using test::NamesIn;
using test::PutFile;
using test::ScopedFailure;
using test::Segment;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kScan = Segment(0xDA, "scan") + "data\xFF\xD9 and behind";
const std::string kOld = "\xFF\xD8" + Segment(0xFE, "old") + Segment(0xDB, "table") + kScan;
const std::string kNew = "\xFF\xD8" + Segment(0xFE, "new") + Segment(0xDB, "table") + kScan;

class RewriteTest : public testing::Test {
  protected:
    RewriteTest() { PutFile(path_, kOld); }

    static JpegChanges NewComment(const JpegHead&) {
        return {.added = {{0xFE, test::AsBytes("new")}}};
    }
    RewriteResult Rewritten() { return RewriteJpegHeader(path_, NewComment); }

    /// The file is as it was and nothing else is in its folder.
    void ExpectUntouched() {
        EXPECT_EQ(FileText(path_), kOld);
        EXPECT_THAT(NamesIn(folder_.Path()), ElementsAre("a.jpg"));
    }

    test::TempFolder folder_;
    std::string path_ = folder_ / "a.jpg";
};

TEST_F(RewriteTest, OnlyTheHeadIsAnother) {
    EXPECT_EQ(Rewritten().outcome, Rewrite::Done);
    EXPECT_EQ(FileText(path_), kNew);
    EXPECT_THAT(NamesIn(folder_.Path()), ElementsAre("a.jpg"));
}

TEST_F(RewriteTest, TheCopyHasItsNameWhileItIsWritten) {
    const std::string copy = folder_ / "temp83S04L51.jpg";
    int writers = 0;
    // The copy comes to be after its head is known, so a second rewrite can look for it.
    const auto result = RewriteJpegHeader(path_, [&](const JpegHead& head) {
        ++writers;
        EXPECT_FALSE(platform::FileExists(copy));
        return NewComment(head);
    });
    EXPECT_EQ(result.outcome, Rewrite::Done);
    EXPECT_EQ(writers, 1);
    auto file = platform::AtomicFile::CreateAs(path_, platform::kRewriteName);
    ASSERT_TRUE(file);
    EXPECT_TRUE(platform::FileExists(copy));
}

TEST_F(RewriteTest, ANameThatIsTakenIsLeftAlone) {
    for (const bool link : {false, true}) {
        const std::string taken = folder_ / "temp83S04L51.jpg";
        std::filesystem::remove(taken);
        PutFile(path_, kOld);
        if (link)
            std::filesystem::create_symlink(folder_ / "elsewhere", taken);
        else
            PutFile(taken, "somebody's");
        EXPECT_EQ(Rewritten().outcome, Rewrite::Done);
        EXPECT_EQ(FileText(path_), kNew);
        EXPECT_EQ(FileText(taken), link ? "<missing>" : "somebody's");
        EXPECT_EQ(FileText(folder_ / "elsewhere"), "<missing>");
        EXPECT_THAT(NamesIn(folder_.Path()), ElementsAre("a.jpg", "temp83S04L51.jpg"));
    }
}

TEST_F(RewriteTest, ModeAndLabelsStay) {
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
    const bool labels = setxattr(path_.c_str(), "user.rating", "5", 1, 0) == 0;
    struct stat before{}, after{};
    ASSERT_EQ(stat(path_.c_str(), &before), 0);
    EXPECT_EQ(Rewritten().outcome, Rewrite::Done);
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_uid, before.st_uid);
    EXPECT_EQ(after.st_gid, before.st_gid);
    if (labels) {  // not every file system has them
        char value = 0;
        EXPECT_EQ(getxattr(path_.c_str(), "user.rating", &value, 1), 1);
        EXPECT_EQ(value, '5');
    }
}

TEST_F(RewriteTest, TheOwnerStaysWhereTheAdministratorRewrites) {
    if (geteuid() != 0) GTEST_SKIP() << "needs the rights of the administrator";
    ASSERT_EQ(chown(path_.c_str(), 1234, 4321), 0);
    ASSERT_EQ(chmod(path_.c_str(), 0604), 0);
    EXPECT_EQ(Rewritten().outcome, Rewrite::Done);
    struct stat after{};
    ASSERT_EQ(stat(path_.c_str(), &after), 0);
    EXPECT_EQ(after.st_uid, 1234U);
    EXPECT_EQ(after.st_gid, 4321U);
    EXPECT_EQ(after.st_mode & 07777, 0604U);
}

TEST_F(RewriteTest, AMissingFileIsSaidToBeMissing) {
    std::filesystem::remove(path_);
    EXPECT_EQ(Rewritten().outcome, Rewrite::NotFound);
    EXPECT_THAT(imaging::LastError(), HasSubstr("a.jpg: No such file"));
    EXPECT_THAT(NamesIn(folder_.Path()), ElementsAre());
}

TEST_F(RewriteTest, BrokenMarkersStayAsTheyAre) {
    for (const std::string& file :
         {std::string(), kOld.substr(0, 8), "\x89PNG" + kOld, kOld.substr(0, 9) + "x" + kOld}) {
        PutFile(path_, file);
        EXPECT_EQ(Rewritten().outcome, Rewrite::NotCopied);
        EXPECT_THAT(imaging::LastError(), HasSubstr("a.jpg: JPG: "));
        EXPECT_EQ(FileText(path_), file);
        EXPECT_THAT(NamesIn(folder_.Path()), ElementsAre("a.jpg"));
    }
}

TEST_F(RewriteTest, AMarkerThatIsTooLongIsRefused) {
    const auto result = RewriteJpegHeader(path_, [](const JpegHead&) {
        return JpegChanges{.added = {{0xFE, imaging::codecs::Bytes(65534)}}};
    });
    EXPECT_EQ(result.outcome, Rewrite::NotCopied);
    EXPECT_THAT(imaging::LastError(), HasSubstr("65534 bytes is too long"));
    ExpectUntouched();
}

TEST_F(RewriteTest, ACopyThatDoesNotReachTheDiskIsGivenUp) {
    const ScopedFailure failing(Call::Fsync, EIO);
    EXPECT_EQ(Rewritten().outcome, Rewrite::NotCopied);
    EXPECT_THAT(imaging::LastError(), HasSubstr("Input/output error"));
    ExpectUntouched();
}

TEST_F(RewriteTest, AFileThatIsShutStays) {
    const ScopedFailure failing(Call::Access, EACCES);
    EXPECT_EQ(Rewritten().outcome, Rewrite::NotReplaceable);
    EXPECT_THAT(imaging::LastError(), HasSubstr("Permission denied"));
    ExpectUntouched();
}

TEST_F(RewriteTest, APipeIsNotReplaced) {
    std::filesystem::remove(path_);
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(Rewritten().outcome, Rewrite::NotReplaceable);
    EXPECT_THAT(imaging::LastError(), HasSubstr("Not a plain file"));
}

TEST_F(RewriteTest, ACopyThatDoesNotGetItsNameIsRemoved) {
    const ScopedFailure failing(Call::Rename, EBUSY);
    const RewriteResult result = Rewritten();
    EXPECT_EQ(result.outcome, Rewrite::NotRenamed);
    EXPECT_EQ(result.systemError, EBUSY);
    EXPECT_THAT(imaging::LastError(), HasSubstr("busy"));
    ExpectUntouched();
}

TEST_F(RewriteTest, ALinkIsReplacedAndItsTargetKept) {
    const std::string link = folder_ / "link.jpg";
    std::filesystem::create_symlink(path_, link);
    EXPECT_EQ(RewriteJpegHeader(link, NewComment).outcome, Rewrite::Done);
    EXPECT_FALSE(std::filesystem::is_symlink(link));
    EXPECT_EQ(FileText(link), kNew);
    EXPECT_EQ(FileText(path_), kOld);
}

}  // namespace
}  // namespace lumo::io
