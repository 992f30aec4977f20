#include "io/second_picture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "imaging/codecs/codec.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::io {
namespace {

class SecondPicture : public testing::Test {
  protected:
    SecondPicture() { view.run.batchRunning = true; }

    /// Writes the picture and dates the file an hour back, as one that has long been there.
    std::string Put(const char* name, const imaging::Image& picture) {
        const std::string path = folder / name;
        const auto bytes = imaging::codecs::EncodeBmp(picture.View());
        EXPECT_TRUE(bytes && platform::WriteFile(path, *bytes));
        Date(path, -3600);
        return path;
    }
    static void Date(const std::string& path, long seconds) {
        timespec times[2];
        clock_gettime(CLOCK_REALTIME, &times[0]);
        times[0].tv_sec += seconds;
        times[1] = times[0];
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    std::shared_ptr<const imaging::Image> Open(const std::string& path) {
        return OpenSecondPicture(view, path);
    }

    test::TempFolder folder;
    test::RecordingInterface ui;
    engine::CLumoscriptView view{ui};
};

TEST_F(SecondPicture, IsDecodedOnceInARun) {
    const std::string a = Put("a.bmp", test::RandomImage({20, 10}, 1));
    const std::string b = Put("b.bmp", test::RandomImage({20, 10}, 2));
    const auto first = Open(a);
    ASSERT_TRUE(first);
    EXPECT_TRUE(test::SamePixels(*first, test::RandomImage({20, 10}, 1)));
    ASSERT_TRUE(Open(b));
    for (int i = 0; i < 500; ++i) ASSERT_EQ(Open(a), first);
    EXPECT_EQ(view.secondPictures.entries.size(), 2U);
    ForgetSecondPictures(view);
    EXPECT_NE(Open(a), first);
}

TEST_F(SecondPicture, AChangedFileIsReadAgain) {
    const std::string path = Put("a.bmp", test::RandomImage({20, 10}, 1));
    const auto first = Open(path);
    Put("a.bmp", test::RandomImage({20, 10}, 2));  // the same length and date
    const auto second = Open(path);
    ASSERT_TRUE(second);
    EXPECT_TRUE(test::SamePixels(*second, test::RandomImage({20, 10}, 2)));
    Date(path, -7200);
    EXPECT_NE(Open(path), second);
    EXPECT_EQ(view.secondPictures.entries.size(), 1U);
}

TEST_F(SecondPicture, AFileThatIsGoneIsAFailure) {
    const std::string path = Put("a.bmp", test::RandomImage({20, 10}, 1));
    ASSERT_TRUE(Open(path));
    ASSERT_TRUE(platform::RemoveFile(path));
    EXPECT_FALSE(Open(path));
    EXPECT_TRUE(view.secondPictures.entries.empty());
}

TEST_F(SecondPicture, AFileWrittenThisMomentIsNotKept) {
    const std::string path = Put("a.bmp", test::RandomImage({20, 10}, 1));
    Date(path, 0);
    ASSERT_TRUE(Open(path));
    EXPECT_TRUE(view.secondPictures.entries.empty());
}

TEST_F(SecondPicture, IsNotKeptOutsideOfARun) {
    view.run.batchRunning = false;
    ASSERT_TRUE(Open(Put("a.bmp", test::RandomImage({20, 10}, 1))));
    EXPECT_TRUE(view.secondPictures.entries.empty());
}

TEST_F(SecondPicture, KeepsWithinItsShareTheOnesUsedLast) {
    const std::string names[] = {Put("a.bmp", test::RandomImage({100, 100}, 1)),
                                 Put("b.bmp", test::RandomImage({100, 100}, 2)),
                                 Put("c.bmp", test::RandomImage({100, 100}, 3)),
                                 Put("large.bmp", test::RandomImage({200, 200}, 3))};
    const test::ScopedMemoryBudget budget(8 * 70000);  // two of 30000 bytes
    const auto a = Open(names[0]);
    Open(names[1]);
    Open(names[0]);
    Open(names[2]);  // b goes
    Open(names[3]);  // is never kept
    ASSERT_EQ(view.secondPictures.entries.size(), 2U);
    EXPECT_EQ(view.secondPictures.entries[0].path, names[0]);
    EXPECT_EQ(view.secondPictures.entries[1].path, names[2]);
    EXPECT_EQ(Open(names[0]), a);
}

}  // namespace
}  // namespace lumo::io
