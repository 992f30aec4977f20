// A run whose commands lay the same file over every picture.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string>

#include "engine/run_batch.h"
#include "engine/run_loop.h"
#include "imaging/codecs/codec.h"
#include "platform/files.h"
#include "script/names.h"
#include "support/recording_ui.h"
#include "support/temp_folder.h"
#include "support/test_images.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

/// Counts how often a file is opened while the object lives; asking for its size or time is no
/// opening.
class OpeningsOf {
  public:
    explicit OpeningsOf(const std::string& path) : events_(inotify_init1(IN_NONBLOCK)) {
        // Closings come between, so that openings next to each other stay two events.
        EXPECT_GE(inotify_add_watch(events_, path.c_str(), IN_OPEN | IN_CLOSE), 0);
    }
    ~OpeningsOf() { close(events_); }
    OpeningsOf(const OpeningsOf&) = delete;
    OpeningsOf& operator=(const OpeningsOf&) = delete;

    int Count() {
        std::array<char, 4096> buffer;
        for (;;) {
            const ssize_t bytes = read(events_, buffer.data(), buffer.size());
            if (bytes <= 0) return count_;
            for (ssize_t at = 0; at < bytes;) {
                inotify_event event;
                std::memcpy(&event, buffer.data() + at, sizeof event);
                count_ += (event.mask & IN_OPEN) != 0;
                at += static_cast<ssize_t>(sizeof event + event.len);
            }
        }
    }

  private:
    int events_;
    int count_ = 0;
};

void Write(const std::string& path, const imaging::Image& picture) {
    const auto bytes = imaging::codecs::EncodeBmp(picture.View());
    ASSERT_TRUE(bytes && platform::WriteFile(path, *bytes));
    // An hour old, as a file that nobody is writing.
    timespec times[2];
    clock_gettime(CLOCK_REALTIME, &times[0]);
    times[0].tv_sec -= 3600;
    times[1] = times[0];
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST(SecondPictureRun, FiveHundredImagesDecodeTheirWatermarkOnce) {
    constexpr int kImages = 500;
    const test::TempFolder folder;
    std::filesystem::create_directories(folder / "in");
    test::RecordingInterface ui;
    CLumoscriptView view(ui);
    view.settings.installFolder = folder / "install";
    view.settings.folders.logs = folder / "logs";
    const std::string mark = folder / "mark.bmp";
    Write(mark, test::FlatImage({4, 3}, {9, 8, 7}));
    for (int i = 0; i < kImages; ++i)
        Write(folder / ("in/" + std::to_string(1000 + i) + ".bmp"),
              test::FlatImage({16, 12}, {200, 200, 200}));
    view.script.commands.Add(
        names::kStartImageLoop,
        "32,2,,\"" + (folder / "in") +
            "\",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,");
    // Absolute, without a key: as it is, at the top left.
    view.script.commands.Add(names::kWatermark, "12,0,0,20,100,0,0,0,255,10,\"" + mark + "\",1,0,");
    view.script.commands.Add(names::kOutputSetup,
                             "11,0,\"" + (folder / "out") + "\",0,bmp,0,0,,,0,0,1,");
    view.script.commands.Add(names::kEndImageLoop, "0");

    OpeningsOf openings(mark);
    ASSERT_TRUE(PrepareBatch(view));
    RunThreadEntry(view);
    EXPECT_EQ(openings.Count(), 1);
    EXPECT_EQ(view.run.statOutputs, kImages);
    EXPECT_EQ(view.run.errorCount, 0);
    EXPECT_TRUE(view.secondPictures.entries.empty());  // the run is over
    const auto last = imaging::codecs::Decode(*platform::ReadFile(folder / "out/1499.bmp"),
                                              imaging::codecs::Format::Bmp);
    ASSERT_TRUE(last);
    EXPECT_EQ(last->image.View().Pixel(3, 2), (imaging::Rgb{9, 8, 7}));
    EXPECT_EQ(last->image.View().Pixel(4, 3), (imaging::Rgb{200, 200, 200}));
}

}  // namespace
}  // namespace lumo::engine
