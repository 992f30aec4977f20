#include "io/input_filters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "io/input.h"
#include "io/start_setup.h"
#include "platform/files.h"
#include "script/decimal_text.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The third image of a run, with every type on and every test off.
struct InputFiltersTest : testing::Test {
    InputFiltersTest() {
        for (int i = start::kUseRaw; i <= start::kUsePng; ++i) Set(i, "1");
        for (int i = start::kBeforeOn; i <= start::kMaxAspectOn; ++i) Set(i, "0");
        view.run.imageCount = 5;
        view.run.imageIndex = 2;
    }
    void Set(int field, std::string text) { view.inputSettings.Set(field, std::move(text)); }
    void SetDate(int dayField, int day, int month, int year) {
        Set(dayField, std::to_string(day));
        Set(dayField + 1, std::to_string(month));
        Set(dayField + 2, std::to_string(year));
    }
    bool FileOfType(int type) {
        batch.clear();
        view.input.type = type;
        return FilterByFile(view);
    }
    bool ImageOf(imaging::Size size) {
        batch.clear();
        view.working.main = test::FlatImage(size, {1, 2, 3});
        return FilterByImage(view);
    }
    test::RunBench bench;
    engine::CLumoscriptView& view = bench.view;
    std::vector<std::string>& batch = bench.BatchLines();
};

TEST_F(InputFiltersTest, NothingIsTestedWithAllOff) {
    EXPECT_FALSE(FiltersActive(view.inputSettings));
    for (int type = 0; type <= 13; ++type) EXPECT_TRUE(FileOfType(type));
    EXPECT_TRUE(ImageOf({1, 1}));
    EXPECT_THAT(batch, IsEmpty());
}

TEST_F(InputFiltersTest, EachTypeIsFilteredByItsFlag) {
    const struct {
        int type, field;
        const char* name;
    } cases[] = {
        {3, start::kUseBmp, "BMP"},  {1, start::kUseJpg, "JPG"}, {7, start::kUseTga, "TGA"},
        {2, start::kUseTif, "TIF"},  {6, start::kUsePcx, "PCX"}, {4, start::kUsePng, "PNG"},
        {5, start::kUseGif, "GIF"},  {9, start::kUseWmf, "WMF"}, {10, start::kUseWmf, "WMF"},
        {11, start::kUseWmf, "WMF"}, {8, start::kUsePsd, "PSD"}, {13, start::kUseRaw, "RAW"}};
    for (const auto& tested : cases) {
        Set(tested.field, "0");
        EXPECT_FALSE(FileOfType(tested.type)) << tested.type;
        EXPECT_THAT(batch, ElementsAre(std::string("3 : Filtered: input ext ") + tested.name));
        Set(tested.field, "");  // as in an old Script
        EXPECT_TRUE(FileOfType(tested.type)) << tested.type;
        Set(tested.field, "1");
    }
}

TEST_F(InputFiltersTest, UnknownTypesPassEveryTypeTest) {
    for (int i = start::kUseRaw; i <= start::kUsePng; ++i) Set(i, "0");
    EXPECT_TRUE(FileOfType(0));
    EXPECT_TRUE(FileOfType(12));
    EXPECT_FALSE(FileOfType(1));
}

TEST_F(InputFiltersTest, DatesAreThoseOfTheFilesCreation) {
    const std::string path = bench.In("a.jpg");
    test::PutFile(path, "x");
    SplitInputPath(view, path);
    Set(start::kBeforeOn, "1");
    SetDate(start::kBeforeDay, 1, 1, 2001);
    EXPECT_FALSE(FileOfType(1));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: file creation date too young"));
    SetDate(start::kBeforeDay, 1, 1, 2101);
    EXPECT_TRUE(FileOfType(1));

    Set(start::kBeforeOn, "0");
    Set(start::kAfterOn, "1");
    SetDate(start::kAfterDay, 1, 1, 2101);
    EXPECT_FALSE(FileOfType(1));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: file creation date too old"));
    SetDate(start::kAfterDay, 1, 1, 2001);
    EXPECT_TRUE(FileOfType(1));
}

TEST_F(InputFiltersTest, AFileOfTheStatedDayIsAlreadyLater) {
    const std::string path = bench.In("a.jpg");
    test::PutFile(path, "x");
    SplitInputPath(view, path);
    const std::time_t created = platform::GetFileStatus(path)->created;
    const std::tm day = *std::localtime(&created);
    Set(start::kBeforeOn, "1");
    SetDate(start::kBeforeDay, day.tm_mday, day.tm_mon + 1, day.tm_year + 1900);
    EXPECT_FALSE(FileOfType(1));
    SetDate(start::kBeforeDay, day.tm_mday + 1, day.tm_mon + 1, day.tm_year + 1900);
    EXPECT_TRUE(FileOfType(1));
    Set(start::kBeforeOn, "0");
    Set(start::kAfterOn, "1");
    SetDate(start::kAfterDay, day.tm_mday, day.tm_mon + 1, day.tm_year + 1900);
    EXPECT_TRUE(FileOfType(1));
}

TEST_F(InputFiltersTest, EveryTestLeavesItsLine) {
    const std::string path = bench.In("a.jpg");
    test::PutFile(path, "x");
    SplitInputPath(view, path);
    Set(start::kUseJpg, "0");
    Set(start::kBeforeOn, "1");
    SetDate(start::kBeforeDay, 1, 1, 2001);
    EXPECT_FALSE(FileOfType(1));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: input ext JPG",
                                   "3 : Filtered: file creation date too young"));
}

TEST_F(InputFiltersTest, WithoutAFileTheDateTestsAreSkipped) {
    SplitInputPath(view, bench.In("gone.jpg"));
    Set(start::kBeforeOn, "1");
    SetDate(start::kBeforeDay, 1, 1, 1980);
    EXPECT_TRUE(FileOfType(1));
    Set(start::kUseJpg, "0");
    EXPECT_FALSE(FileOfType(1));
}

TEST_F(InputFiltersTest, DaysBeyondTheMonthRunOver) {
    EXPECT_EQ(StartOfDay(2023, 2, 31), StartOfDay(2023, 3, 3));
    EXPECT_EQ(StartOfDay(2024, 2, 31), StartOfDay(2024, 3, 2));
    EXPECT_EQ(StartOfDay(2023, 13, 1), StartOfDay(2024, 1, 1));
    EXPECT_EQ(StartOfDay(2023, 1, 0), StartOfDay(2022, 12, 31));
    const std::time_t day = StartOfDay(2024, 5, 17);
    const std::tm local = *std::localtime(&day);
    EXPECT_EQ(local.tm_hour, 0);
    EXPECT_EQ(local.tm_mday, 17);
}

TEST_F(InputFiltersTest, AbsurdDatesAreNoError) {
    for (const int n : {INT32_MIN, -1, 0, INT32_MAX}) {
        static_cast<void>(StartOfDay(n, 1, 1));
        static_cast<void>(StartOfDay(2000, n, 1));
        static_cast<void>(StartOfDay(2000, 1, n));
        static_cast<void>(StartOfDay(n, n, n));
    }
}

TEST_F(InputFiltersTest, EachAxisOfTheSizeIsTestedByItself) {
    Set(start::kMinSizeOn, "1");
    Set(start::kMinWidth, "64");
    Set(start::kMinHeight, "48");
    EXPECT_TRUE(ImageOf({64, 48}));  // the limit itself passes
    EXPECT_FALSE(ImageOf({63, 48}));
    EXPECT_FALSE(ImageOf({64, 47}));
    EXPECT_FALSE(ImageOf({2000, 40}));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: image size too small"));
    Set(start::kMinSizeOn, "0");

    Set(start::kMaxSizeOn, "1");
    Set(start::kMaxWidth, "100");
    Set(start::kMaxHeight, "50");
    EXPECT_TRUE(ImageOf({100, 50}));
    EXPECT_FALSE(ImageOf({101, 50}));
    EXPECT_FALSE(ImageOf({100, 51}));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: image size too large"));
}

TEST_F(InputFiltersTest, AspectIsWidthDividedByHeight) {
    Set(start::kMinAspectOn, "1");
    Set(start::kMinAspect, "1.5");
    EXPECT_TRUE(ImageOf({150, 100}));
    EXPECT_FALSE(ImageOf({149, 100}));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: image aspect ratio too small"));
    Set(start::kMinAspectOn, "0");
    Set(start::kMaxAspectOn, "1");
    Set(start::kMaxAspect, "1.5");
    EXPECT_TRUE(ImageOf({150, 100}));
    EXPECT_FALSE(ImageOf({151, 100}));
    EXPECT_THAT(batch, ElementsAre("3 : Filtered: image aspect ratio too large"));
}

TEST_F(InputFiltersTest, LeadingZerosOfAnAspectAreLost) {
    Set(start::kMinAspectOn, "1");
    Set(start::kMinAspect, "0.05");  // reads as 0.5
    EXPECT_FALSE(ImageOf({49, 100}));
    EXPECT_TRUE(ImageOf({50, 100}));
}

TEST_F(InputFiltersTest, BatchLogOffMeansNoLines) {
    view.settings.logs.batchLog = false;
    Set(start::kUseJpg, "0");
    EXPECT_FALSE(FileOfType(1));
    EXPECT_THAT(batch, IsEmpty());
    view.settings.logs.batchLog = true;
    view.settings.logs.errors = false;  // a filtered file is no error
    EXPECT_FALSE(FileOfType(1));
    EXPECT_THAT(batch, testing::SizeIs(1));
}

TEST(ParseDecimalText, ReadsWholePartAndFractionAsIntegers) {
    using script::ParseDecimalText;
    EXPECT_EQ(ParseDecimalText("1.05"), 1.5);
    EXPECT_EQ(ParseDecimalText("2.50"), 2.5);
    EXPECT_EQ(ParseDecimalText("-1.5"), -0.5);
    EXPECT_EQ(ParseDecimalText("7"), 7.0);
    EXPECT_EQ(ParseDecimalText(""), 0.0);
    EXPECT_EQ(ParseDecimalText("."), 0.0);
    EXPECT_EQ(ParseDecimalText("0.0"), 0.0);
    EXPECT_EQ(ParseDecimalText("4.0"), 4.0);
    EXPECT_EQ(ParseDecimalText("1.9"), 1 + 9 / 10.0);
    EXPECT_EQ(ParseDecimalText("1.10"), 1 + 10 / 100.0);
    EXPECT_EQ(ParseDecimalText("1.99"), 1 + 99 / 100.0);
    EXPECT_EQ(ParseDecimalText("1.100"), 1 + 100 / 1000.0);
    EXPECT_EQ(ParseDecimalText("1.999"), 1 + 999 / 1000.0);
    EXPECT_EQ(ParseDecimalText("1.1234"), 1 + 1234 / 10000.0);
    EXPECT_EQ(ParseDecimalText("1.12345"), 1 + 12345 / 10000.0);
    EXPECT_EQ(ParseDecimalText("1.2.9"), 1.2);
}

}  // namespace
}  // namespace lumo::io
