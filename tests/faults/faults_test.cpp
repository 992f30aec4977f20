// What happens to originals when the program is stopped, or the disk fails, at any moment.
//
// fault_shim.c is preloaded into the batch program and stops it at, or lets fail, the k-th call
// that has to do with the folders of a test, for every k. After each run every original must be
// whole in one of the places where it may be, and nothing unfinished may have a final name. A
// Script that works on files is added to Scenarios() as one entry.
//
// LUMO_FAULTS_LONG=1 takes 50 files instead of a few, more errors, and kills the program at 200
// moments of chance with each Script: some 9,000 stops and half an hour. With TMPDIR on a file
// system in memory, another one in XDG_RUNTIME_DIR and GTEST_TOTAL_SHARDS it takes less. The seed
// is LUMO_FAULTS_SEED, if set.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

#include "fault_world.h"
#include "support/file_size_limit.h"

namespace lumo::test {
namespace {

bool IsLong() {
    const char* const set = std::getenv("LUMO_FAULTS_LONG");
    return set != nullptr && *set != '\0' && std::string_view(set) != "0";
}

std::vector<Scenario> Scenarios() {
    const std::string copy = "Copy/Move\r\n6,1,\"{out}\",0,,,1,\r\n";
    const std::string move = "Copy/Move\r\n6,0,\"{out}\",0,,,1,\r\n";
    const std::string moveKeep = "Copy/Move\r\n6,0,\"{out}\",0,,,0,\r\n";
    const std::string keepAll =
        "JPG file header\r\n29,0,0,0,0,1,1,1,a remark,0,,,,,,,,,,,,,,,1,a title,,,,,\r\n";
    const std::string keepNone =
        "JPG file header\r\n29,2,0,0,0,0,0,1,a remark,1,name,,,,,,,,,,,,,,0,,,,,,\r\n";
    const std::string output = "Output setup\r\n11,0,\"{out}\",0,png,1,0,,,0,0,1,\r\n";
    return {
        {.name = "Output", .commands = output, .writesPictures = true},
        {.name = "OutputOverOlderFilesOfAnotherFileSystem",
         .commands = output,
         .otherFileSystem = true,
         .olderFiles = true,
         .writesPictures = true},
        {.name = "Copy", .commands = copy},
        {.name = "CopyOverOlderFiles", .commands = copy, .olderFiles = true},
        {.name = "CopyToAnotherFileSystem", .commands = copy, .otherFileSystem = true},
        {.name = "Move", .commands = move},
        {.name = "MoveWithoutOverwriting", .commands = moveKeep},
        {.name = "MoveToAnotherFileSystem", .commands = moveKeep, .otherFileSystem = true},
        {.name = "MoveOverOlderFilesOfAnotherFileSystem",
         .commands = move,
         .otherFileSystem = true,
         .olderFiles = true},
        {.name = "Trash", .commands = "Delete input file\r\n2,1,1,\r\n", .trashes = true},
        {.name = "CopyThenTrash",
         .commands = copy + "Delete input file\r\n2,1,1,\r\n",
         .trashes = true},
        {.name = "RewriteHeaders", .commands = keepAll + keepNone, .rewritesHeaders = true},
    };
}

class Faults : public testing::TestWithParam<Scenario> {
  protected:
    void SetUp() override {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "a program that is watched for races takes no preloaded library";
#endif
        if (GetParam().otherFileSystem && OtherFileSystem().empty())
            GTEST_SKIP() << "no second file system that can be written";
    }
    static int Files() { return IsLong() ? 50 : 2; }
    /// For runs that go on after the fault: the files that follow are not touched by it.
    static int FilesBesideAnError() { return IsLong() ? 4 : 1; }
};

INSTANTIATE_TEST_SUITE_P(Scripts, Faults, testing::ValuesIn(Scenarios()),
                         [](const auto& run) { return run.param.name; });

TEST_P(Faults, ARunWithoutAnyBringsEverythingHome) {
    World world(GetParam(), Files());
    const long calls = world.CountCalls(0);
    RecordProperty("calls", static_cast<int>(calls));
    EXPECT_GT(calls, 2L * Files()) << "the library is not preloaded";
    EXPECT_TRUE(world.Check("whole run"));
    EXPECT_TRUE(world.CheckArrived("whole run"));
    EXPECT_EQ(world.Temporaries(), 0);
}

TEST_P(Faults, AStopAtAnyCallLosesNothing) {
    World world(GetParam(), Files());
    const long calls = world.CountCalls(0);
    RecordProperty("calls", static_cast<int>(calls));
    const long repeatEvery = IsLong() ? 20 : 10;
    for (long k = 1; k <= calls; ++k) {
        const std::string what = "stopped at call " + std::to_string(k);
        world.Reset();
        ASSERT_EQ(world.Run({.at = k}).exitStatus, 128 + SIGKILL) << what;
        ASSERT_TRUE(world.Check(what));
        if (k % repeatEvery != 0) continue;
        world.Run();
        ASSERT_TRUE(world.Check(what + ", then run again"));
        ASSERT_TRUE(world.CheckArrived(what + ", then run again"));
    }
}

TEST_P(Faults, AnErrorOfAnyCallLosesNothing) {
    World world(GetParam(), FilesBesideAnError());
    std::vector<int> errors{EIO};
    if (IsLong()) errors.push_back(EACCES);
    for (const int error : errors) {
        world.Reset();
        const long calls = world.CountCalls(error);
        for (long k = 1; k <= calls; ++k) {
            const std::string what =
                "errno " + std::to_string(error) + " at call " + std::to_string(k);
            world.Reset();
            const ProgramResult result = world.Run({.at = k, .error = error});
            ASSERT_LT(result.exitStatus, 128) << what << "\n" << result.err;
            ASSERT_TRUE(world.Check(what));
            // The file whose temporary could not be removed is the only one that may leave it.
            ASSERT_LE(world.Temporaries(), 1) << what;
        }
    }
}

TEST_P(Faults, ADiskThatFillsUpAtAnyCallLosesNothing) {
    World world(GetParam(), FilesBesideAnError());
    const long calls = world.CountCalls(ENOSPC);
    for (long k = 1; k <= calls; ++k) {
        const std::string what = "disk full from call " + std::to_string(k);
        world.Reset();
        const ProgramResult result = world.Run({.at = k, .error = ENOSPC, .onwards = true});
        ASSERT_LT(result.exitStatus, 128) << what << "\n" << result.err;
        ASSERT_TRUE(world.Check(what));
        ASSERT_EQ(world.Temporaries(), 0) << what;
    }
}

TEST_P(Faults, AFileThatMayNotGrowLosesNothing) {
    World world(GetParam(), 3);
    for (const rlim_t bytes : {0, 1, 700, 1400}) {
        world.Reset();
        ProgramResult result;
        {
            const ScopedFileSizeLimit limit(bytes);
            result = world.Run([](int) {});
        }
        EXPECT_LT(result.exitStatus, 128);
        EXPECT_TRUE(world.Check("files limited to " + std::to_string(bytes) + " bytes"));
        EXPECT_EQ(world.Temporaries(), 0) << bytes;
    }
}

TEST_P(Faults, AKillAtAnyMomentLosesNothing) {
    using Clock = std::chrono::steady_clock;
    World world(GetParam(), Files());
    const auto begin = Clock::now();
    world.Run([](int) {});
    const auto whole = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);

    const char* const seedText = std::getenv("LUMO_FAULTS_SEED");
    const unsigned seed =
        seedText != nullptr ? static_cast<unsigned>(std::atol(seedText)) : std::random_device{}();
    SCOPED_TRACE("LUMO_FAULTS_SEED=" + std::to_string(seed));
    std::mt19937 random(seed);
    std::uniform_int_distribution<std::int64_t> moment(0, whole.count());
    const int kills = IsLong() ? 200 : 10;
    for (int i = 0; i < kills; ++i) {
        const std::chrono::microseconds wait(moment(random));
        world.Reset();
        world.Run([&](int process) {
            std::this_thread::sleep_for(wait);
            kill(process, SIGKILL);
        });
        ASSERT_TRUE(world.Check("killed after " + std::to_string(wait.count()) + " us"));
    }
    world.Run([](int) {});
    EXPECT_TRUE(world.CheckArrived("after a kill, run again"));
}

}  // namespace
}  // namespace lumo::test
