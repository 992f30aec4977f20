#include "io/batch_log_comments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "io/input.h"
#include "io/metadata_report.h"
#include "support/run_bench.h"
#include "support/test_files.h"

namespace lumo::io {
namespace {

using engine::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

const std::string kCamera = (test::DataFolder() / "jpg/exiftool_JVC2.jpg").string();
const std::string kGrouped = "[0-9]{1,3}(,[0-9]{3})*";

struct BatchLogCommentsTest : testing::Test {
    BatchLogCommentsTest() { bench.TakeInput(bench.In("Cat.JPG"), {30, 20}); }
    Outcome Run(std::string_view params) { return bench.Execute(kBatchLogCommentsCommand, params); }
    test::RunBench bench;
    std::vector<std::string>& batch = bench.BatchLines();
};

TEST(GroupThousands, PutsACommaAtEveryThirdDigit) {
    EXPECT_EQ(GroupThousands("1048576"), "1,048,576");
    EXPECT_EQ(GroupThousands("100"), "100");
    EXPECT_EQ(GroupThousands("1000"), "1,000");
    EXPECT_EQ(GroupThousands("123456"), "123,456");
    EXPECT_EQ(GroupThousands("0"), "0");
    EXPECT_EQ(GroupThousands(""), "");
}

TEST_F(BatchLogCommentsTest, FactoryStringComesFromTheSchema) {
    EXPECT_EQ(script::FactoryString(kBatchLogCommentsCommand.spec.fields), "5,1,1,1,,0,");
}

TEST_F(BatchLogCommentsTest, EveryFactHasItsLine) {
    EXPECT_EQ(Run("5,1,1,1,a comment,0,"), Outcome::Succeeded);
    EXPECT_THAT(
        batch,
        ElementsAre("1 : ---Comments---", "  is current drive.",
                    MatchesRegex("Total disk space on current drive \\(bytes\\): " + kGrouped),
                    MatchesRegex("Free disk space on current drive \\(bytes\\): " + kGrouped),
                    MatchesRegex("Total RAM memory \\(bytes\\): " + kGrouped),
                    MatchesRegex("Available RAM memory \\(bytes\\): " + kGrouped),
                    MatchesRegex("Memory load \\(0-100%\\): [0-9]{1,3}"),
                    MatchesRegex("Total virtual memory \\(bytes\\): " + kGrouped),
                    MatchesRegex("Available virtual memory \\(bytes\\): " + kGrouped),
                    MatchesRegex("Elapsed processing time - hours: 00, mins: 00, secs: [0-9]{2}"),
                    "a comment", "1 : -------"));
}

TEST_F(BatchLogCommentsTest, DiskSizesAreThoseOf32Bits) {
    Run("5,1,0,0,,0,");
    for (const int line : {2, 3}) {
        std::string digits;
        for (const char c : batch[static_cast<std::size_t>(line)])
            if (c >= '0' && c <= '9') digits += c;
        EXPECT_LE(std::stoull(digits), 0xFFFFFFFFULL);
    }
}

TEST_F(BatchLogCommentsTest, NothingAskedForIsJustTheFrame) {
    Run("5,0,0,0,,0,");
    EXPECT_THAT(batch, ElementsAre("1 : ---Comments---", "1 : -------"));
}

TEST_F(BatchLogCommentsTest, OutsideOfTheImageLoopThereIsNoNumber) {
    SplitInputPath(bench.view, kPathAfterImages);
    Run("5,0,0,0,all done,0,");
    EXPECT_THAT(batch, ElementsAre("---Comments---", "all done", "-------"));
}

TEST_F(BatchLogCommentsTest, MacrosOfTheCommentAreExpandedAndNamesMadePrintable) {
    bench.TakeInput(bench.In("two\nlines.jpg"), {30, 20});
    bench.view.counters[1] = 5;
    Run("5,0,0,0,\"$(filename), $(size), $(counterB)\",0,");
    EXPECT_THAT(batch, testing::Contains("two?lines.jpg, 30x20, 5"));
}

TEST_F(BatchLogCommentsTest, CameraInfoIsOneEntryForEachTable) {
    SplitInputPath(bench.view, kCamera);
    Run("5,0,0,0,,1,");
    ASSERT_EQ(batch.size(), 4U);
    EXPECT_EQ(batch[1], "EXIF information:");
    EXPECT_THAT(batch[2], StartsWith("--Main IFD--\r\n0x"));
    EXPECT_THAT(batch[2], testing::HasSubstr(" Make: "));
    EXPECT_FALSE(batch[2].ends_with('\n'));
    EXPECT_EQ(std::count(batch[2].begin(), batch[2].end(), '\n'),
              std::count(batch[2].begin(), batch[2].end(), '\r'));
}

TEST_F(BatchLogCommentsTest, TheNumberOfTablesIsClamped) {
    SplitInputPath(bench.view, kCamera);
    Run("5,0,0,0,,99,");
    const std::size_t all = batch.size();
    batch.clear();
    Run("5,0,0,0,,5,");
    EXPECT_EQ(batch.size(), all);
    EXPECT_GT(all, 4U);
    batch.clear();
    Run("5,0,0,0,,-3,");
    EXPECT_EQ(batch.size(), 2U);
}

TEST_F(BatchLogCommentsTest, AFileWithoutCameraDataHasNoExif) {
    Run("5,0,0,0,,5,");  // the file is not even there
    EXPECT_THAT(batch, ElementsAre("1 : ---Comments---", "No EXIF", "1 : -------"));
}

TEST_F(BatchLogCommentsTest, WithoutABatchOrItsLogNothingIsWritten) {
    bench.view.settings.logs.batchLog = false;
    EXPECT_EQ(Run("5,1,1,1,x,5,"), Outcome::Succeeded);
    bench.view.settings.logs.batchLog = true;
    bench.view.run.batchRunning = false;
    EXPECT_EQ(Run("5,1,1,1,x,5,"), Outcome::Succeeded);
    EXPECT_THAT(batch, IsEmpty());
}

TEST_F(BatchLogCommentsTest, NeedsNoImage) {
    bench.view.working.main.Reset();
    EXPECT_EQ(Run("5,0,0,0,x,0,"), Outcome::Succeeded);
    EXPECT_EQ(batch.size(), 3U);
}

TEST(ExifReport, TitlesTheTablesThatAreThere) {
    const auto report = ExifReport(kCamera);
    ASSERT_FALSE(report.empty());
    EXPECT_EQ(report[0].first, "--Main IFD--");
    EXPECT_TRUE(report[0].second.ends_with('\n'));
    for (const auto& [title, text] : report) EXPECT_FALSE(text.empty()) << title;
    EXPECT_EQ(ExifReport(kCamera, 1).size(), 1U);
    EXPECT_TRUE(ExifReport("/gone.jpg").empty());
    EXPECT_TRUE(ExifReport((test::DataFolder() / "jpg/imagemeta_NoExif.jpg").string()).empty());
}

}  // namespace
}  // namespace lumo::io
