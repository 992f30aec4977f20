#include "imaging/text_lines.h"

#include <gmock/gmock.h>

namespace lumo::imaging {
namespace {

using testing::ElementsAre;

TEST(SplitTextLines, EachKindOfBreakEndsALine) {
    EXPECT_THAT(SplitTextLines("a\r\nb\nc\rd"), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(SplitTextLines("a\n\rb"), ElementsAre("a", "", "b"));
    EXPECT_THAT(SplitTextLines("\r\n"), ElementsAre("", ""));
    EXPECT_THAT(SplitTextLines("a\n"), ElementsAre("a", ""));
}

TEST(SplitTextLines, AnEmptyTextIsOneEmptyLine) {
    EXPECT_THAT(SplitTextLines(""), ElementsAre(""));
}

TEST(SplitTextLines, ControlCharactersAreLeftOut) {
    EXPECT_THAT(SplitTextLines(std::string_view("a\tb\0c\x1B\x7F"
                                                "d",
                                                8)),
                ElementsAre("abcd"));
    EXPECT_THAT(SplitTextLines("a\xC2\x80"
                               "b"),
                ElementsAre("ab"));  // U+0080
}

TEST(SplitTextLines, BreaksThatAreNoLineFeedsBecomeBlanks) {
    EXPECT_THAT(SplitTextLines("a\xC2\x85"
                               "b\u2028c\u2029d\x01"),
                ElementsAre("a b c d"));
    EXPECT_THAT(SplitTextLines("a\xC2\x85"
                               "b\u2028c\u2029d"),
                ElementsAre("a b c d"));
}

TEST(SplitTextLines, WhatIsNoUtf8BecomesReplacementSigns) {
    EXPECT_THAT(SplitTextLines("a\xFF"
                               "b"),
                ElementsAre("a\uFFFD"
                            "b"));
    EXPECT_THAT(SplitTextLines("\xE9t\xE9"), ElementsAre("\uFFFDt\uFFFD"));
    EXPECT_THAT(SplitTextLines("x\xE2\x82"), ElementsAre("x\uFFFD\uFFFD"));          // cut in half
    EXPECT_THAT(SplitTextLines("\xED\xA0\x80"), ElementsAre("\uFFFD\uFFFD\uFFFD"));  // a surrogate
}

TEST(SplitTextLines, OtherTextsStayAsTheyAre) {
    const std::string text = "caf\u00E9 \u05E9\u05DC\u05D5\u05DD \u65E5\u672C \U0001F600 $(x)";
    EXPECT_THAT(SplitTextLines(text), ElementsAre(text));
}

}  // namespace
}  // namespace lumo::imaging
