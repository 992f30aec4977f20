#include "io/parse_line.h"

#include <gtest/gtest.h>

#include "platform/environment.h"
#include "support/run_bench.h"

namespace lumo::io {
namespace {

MacroValues Values() {
    MacroValues values{.dateFormat = "%m/%d/%y",
                       .filePath = "/In/Cat.JPG",
                       .fileName = "Cat.JPG",
                       .fileTitle = "Cat",
                       .size = {640, 480},
                       .now = 1'700'000'000};
    for (int i = 0; i < 10; ++i) values.counters[static_cast<std::size_t>(i)] = i * 11 - 5;
    return values;
}

TEST(ParseLine, ReplacesEveryMacro) {
    const MacroValues values = Values();
    const auto line = [&](std::string_view text) { return ParseLine(text, values); };
    EXPECT_EQ(line("$(filename)|$(filetitle)|$(filepath)"), "Cat.JPG|Cat|/In/Cat.JPG");
    EXPECT_EQ(line("$(width)x$(height) $(size)"), "640x480 640x480");
    EXPECT_EQ(line("$(counterA)$(counterB) $(counterJ)"), "-56 94");
    EXPECT_EQ(line("$(date)"), platform::FormatTime("%m/%d/%y", values.now));
    EXPECT_EQ(line("$(date%Y%m%d)"), platform::FormatTime("%Y%m%d", values.now));
    EXPECT_EQ(line("Sample $(size)\r\nFilename: $(filename)"),
              "Sample 640x480\r\nFilename: Cat.JPG");
}

TEST(ParseLine, KnowsEveryMacroThatIsOffered) {
    std::string all;
    for (const OfferedMacro& offered : OfferedMacros()) {
        all += offered.macro;
        EXPECT_NE(ParseLine(offered.macro, Values()), offered.macro);
        EXPECT_FALSE(offered.meaning.empty());
    }
    EXPECT_EQ(all,
              "$(filename)$(date)$(filepath)$(filetitle)$(height)$(width)$(size)$(counterA)"
              "$(counterB)$(counterC)$(counterD)$(counterE)$(counterF)$(counterG)$(counterH)"
              "$(counterI)$(counterJ)");
}

TEST(ParseLine, LeavesWhatIsNoMacroAsItStands) {
    const MacroValues values = Values();
    for (const std::string_view text :
         {"", "$", "$(", "$()", "$(filename", "$(Filename)", "$( date)", "$(counter)",
          "$(counterK)", "$(counterAA)", "$(dateline)", "$x", "100 %s %n", "a ) b ( c"})
        EXPECT_EQ(ParseLine(text, values), text);
}

TEST(ParseLine, FindsAMacroBehindWhatIsNone) {
    EXPECT_EQ(ParseLine("$(no $(filetitle)", Values()), "$(no Cat");
    EXPECT_EQ(ParseLine("$$(filetitle))", Values()), "$Cat)");
}

TEST(ParseLine, NeverLooksAtWhatAMacroBroughtIn) {
    MacroValues values = Values();
    values.fileName = "$(date)%s$(size).jpg";
    EXPECT_EQ(ParseLine("<$(filename)>", values), "<$(date)%s$(size).jpg>");
}

TEST(ParseNamePart, ABroughtInSeparatorBecomesADash) {
    MacroValues values = Values();
    values.now = 0;
    values.dateFormat = "%m/%d\\%y";
    EXPECT_EQ(ParseNamePart("$(date)_", values), platform::FormatTime("%m-%d-%y", 0) + "_");
    EXPECT_EQ(ParseNamePart("$(date%Y/%m)", values), platform::FormatTime("%Y-%m", 0));
    values.fileTitle = std::string("a\\b/c\0d", 7);
    EXPECT_EQ(ParseNamePart("$(filetitle)", values), "a-b-c-d");
}

TEST(ParseNamePart, ATypedSeparatorIsRefused) {
    EXPECT_EQ(ParseNamePart("../up", Values()), std::nullopt);
    EXPECT_EQ(ParseNamePart("a\\b", Values()), std::nullopt);
    EXPECT_EQ(ParseNamePart("$(no/macro)", Values()), std::nullopt);
    EXPECT_EQ(ParseNamePart(std::string_view("a\0b", 3), Values()), std::nullopt);
    EXPECT_EQ(ParseNamePart("..", Values()), "..");
}

TEST(MacrosOf, ReadsTheMomentOfTheView) {
    test::RunBench bench;
    bench.TakeInput("/In/Cat.JPG", {30, 20});
    bench.view.counters[2] = 7;
    bench.view.settings.dateFormat = "%Y";
    EXPECT_EQ(
        ParseLine("$(filepath) $(filename) $(filetitle) $(size) $(counterC)", MacrosOf(bench.view)),
        "/In/Cat.JPG Cat.JPG Cat 30x20 7");
    EXPECT_EQ(ParseLine("$(date)", MacrosOf(bench.view)),
              platform::FormatTime("%Y", std::time(nullptr)));
}

}  // namespace
}  // namespace lumo::io
