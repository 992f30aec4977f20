#include "io/start_setup.h"

#include <gtest/gtest.h>

#include "io/panel_text.h"

namespace lumo::io {
namespace {

using script::Fields;

constexpr std::string_view kDefault =
    "32,0,,,0,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,0,0,0,0,0,0,0.0,4.0,0,";

std::string Panel(std::string_view params) {
    return script::PanelText(kStartCommand.spec, ParseStartParams(params));
}

TEST(StartSetup, FactoryStringComesFromTheSchema) {
    EXPECT_EQ(script::FactoryString(kStartCommand.spec.fields), kDefault);
}

TEST(StartSetup, EditsTakeAsMuchAsTheyShow) {
    const auto longest = [](int field) {
        return kStartCommand.spec.fields[static_cast<std::size_t>(field)].maxLength;
    };
    for (const int day : {start::kBeforeDay, start::kAfterDay}) {
        EXPECT_EQ(longest(day), 2);
        EXPECT_EQ(longest(day + 1), 2);  // month
        EXPECT_EQ(longest(day + 2), 4);  // year
    }
    for (int side = start::kMinWidth; side <= start::kMaxHeight; ++side)
        EXPECT_EQ(longest(side), 10);
    EXPECT_EQ(longest(start::kMinAspect), 5);
    EXPECT_EQ(longest(start::kMaxAspect), 5);
    EXPECT_EQ(longest(start::kListPath), 255);
    EXPECT_EQ(longest(start::kFolderPath), 255);
}

TEST(StartSetup, ReadsTheFieldsOfTheDefault) {
    const Fields fields = ParseStartParams(kDefault);
    EXPECT_EQ(fields.Text(start::kLocation), "0");
    EXPECT_EQ(fields.Text(start::kUseRaw), "0");
    EXPECT_EQ(fields.Text(start::kUseWmf), "1");
    EXPECT_EQ(fields.Text(start::kBeforeDay), "1");
    EXPECT_EQ(fields.Text(start::kBeforeMonth), "12");
    EXPECT_EQ(fields.Text(start::kBeforeYear), "2024");
    EXPECT_EQ(fields.Text(start::kAfterYear), "1980");
    EXPECT_EQ(fields.Text(start::kMaxHeight), "960");
    EXPECT_EQ(fields.Text(start::kMaxAspect), "4.0");
    EXPECT_EQ(fields.Text(start::kSubfolders), "0");
}

TEST(StartSetup, PathsMayHoldCommas) {
    const Fields fields =
        ParseStartParams("32,2,\"/lists/a, b.lst\",\"/photos/x, y\",0,1,1,1,1,1,1,1,1,1,");
    EXPECT_EQ(fields.Text(start::kListPath), "/lists/a, b.lst");
    EXPECT_EQ(fields.Text(start::kFolderPath), "/photos/x, y");
    EXPECT_EQ(fields.Text(start::kUseRaw), "0");
    EXPECT_EQ(fields.Text(start::kUsePng), "1");
}

TEST(StartSetup, AStringOf31FieldsHasNoSubfolders) {
    const Fields fields = ParseStartParams(
        "31,2,,/in,1,1,1,1,1,1,a,b,1,1,31,1,2020,2,3,1999,1,2,3,4,0,0,0,0,1,0,0.5,4.5,1,");
    EXPECT_EQ(fields.Text(start::kUseWmf), "a");
    EXPECT_EQ(fields.Text(start::kUsePsd), "b");
    EXPECT_EQ(fields.Text(start::kMaxAspect), "4.5");
    EXPECT_EQ(fields.Text(start::kSubfolders), "0");
}

TEST(StartSetup, AnOlderStringHasNoMetafileAndPsdFlagsEither) {
    for (const std::string count : {"29", "30", "28", "", "x"}) {
        const Fields fields = ParseStartParams(
            count +
            ",2,,/in,1,1,1,1,1,1,pcx,png,31,1,2020,2,3,1999,1,2,3,4,0,0,0,0,1,0,0.5,4.5,1,");
        EXPECT_EQ(fields.Text(start::kUseGif), "1") << count;
        EXPECT_EQ(fields.Text(start::kUseWmf), "") << count;
        EXPECT_EQ(fields.Text(start::kUsePsd), "") << count;
        EXPECT_EQ(fields.Text(start::kUsePcx), "pcx") << count;
        EXPECT_EQ(fields.Text(start::kUsePng), "png") << count;
        EXPECT_EQ(fields.Text(start::kBeforeYear), "2020") << count;
        EXPECT_EQ(fields.Text(start::kMaxAspect), "4.5") << count;
        EXPECT_EQ(fields.Text(start::kSubfolders), "0") << count;
    }
}

TEST(StartSetup, WritesEveryStringInThePresentLayout) {
    const Fields old = ParseStartParams(
        "29,2,,C:\\In\\,1,1,1,1,1,1,1,1,31,1,2020,2,3,1999,1,2,3,4,0,0,0,0,1,0,0.5,4.5,");
    std::vector<std::string> texts;
    for (int i = 0; i < start::kFieldCount - 1; ++i) texts.push_back(old.Text(i));
    EXPECT_EQ(BuildStartParams(texts),
              "32,2,\"\",\"C:\\In\",1,1,1,1,1,1,,,1,1,31,1,2020,2,3,1999,1,2,3,4,0,0,0,0,1,0,"
              "0.5,4.5,0,");
    const Fields again = ParseStartParams(BuildStartParams(texts));
    for (const int i : {start::kLocation, start::kUseGif, start::kMaxAspect})
        EXPECT_EQ(again.Text(i), old.Text(i));
    texts[start::kFolderPath] = "/";
    EXPECT_EQ(ParseStartParams(BuildStartParams(texts)).Text(start::kFolderPath), "/");
}

TEST(StartSetup, PanelTellsSourceAndFilters) {
    EXPECT_EQ(Panel(kDefault), "Images location: Set at run time\n\nFilters Set: Yes\n");
    const std::string open = ",1,1,1,1,1,1,1,1,1,1,1,12,2024,1,12,1980,64,48,1280,960,";
    EXPECT_EQ(Panel("32,1,/l/a.lst,/in" + open + "0,0,0,0,0,0,"),
              "Images location: From Image list\n/l/a.lst\nFilters Set: No\n");
    EXPECT_EQ(Panel("32,2,/l/a.lst,/in" + open + "0,0,0,0,0,1,"),
              "Images location: From folder\n/in\nFilters Set: Yes\n");
    // An older string lacks two type flags; empty ones are no filters.
    EXPECT_EQ(Panel("29,2,,/in,1,1,1,1,1,1,1,1,1,12,2024,"),
              "Images location: From folder\n/in\nFilters Set: No\n");
}

TEST(ShortenPath, KeepsTheTailOfALongPath) {
    const std::string path = "/a123456789b123456789c123";  // 25 characters
    EXPECT_EQ(ShortenPath(path.substr(1), 25, 23), path.substr(1));
    EXPECT_EQ(ShortenPath(path, 25, 23), "..." + path.substr(2));
    EXPECT_EQ(ShortenPath("", 25, 23), "");
    // Characters count, and none is cut in two.
    EXPECT_EQ(ShortenPath("\xC3\xA4\xC3\xB6\xC3\xBC", 4, 2), "\xC3\xA4\xC3\xB6\xC3\xBC");
    EXPECT_EQ(ShortenPath("\xC3\xA4\xC3\xB6\xC3\xBC", 3, 2), "...\xC3\xB6\xC3\xBC");
}

}  // namespace
}  // namespace lumo::io
