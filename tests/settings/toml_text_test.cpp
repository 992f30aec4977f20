#include "settings/toml_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace lumo::settings {
namespace {

TEST(EscapeBytes, LeavesOrdinaryTextsAlone) {
    for (const char* text :
         {"", "/home/u/a b", "caf\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8C\x84", "\xEE\xBD\xBF",
          "\xEF\x80\x80"}) {  // the neighbours of the private ones
        EXPECT_EQ(EscapeBytes(text), text);
    }
}

TEST(EscapeBytes, GivesEachStrayByteACharacter) {
    EXPECT_EQ(EscapeBytes("a\xFF"), "a\xEE\xBF\xBF");
    EXPECT_EQ(EscapeBytes("\x80"), "\xEE\xBE\x80");
    EXPECT_EQ(EscapeBytes("\xC3"), "\xEE\xBF\x83");     // begun and not ended
    EXPECT_EQ(EscapeBytes("\xC0\xAF").size(), 6U);      // "/" in two bytes
    EXPECT_EQ(EscapeBytes("\xED\xA0\x80").size(), 9U);  // half of a pair
    EXPECT_EQ(EscapeBytes("\xE0\x80\xAF").size(), 9U);
    EXPECT_EQ(EscapeBytes("\xF0\x80\x80\xAF").size(), 12U);
    EXPECT_EQ(EscapeBytes("\xF4\x90\x80\x80").size(), 12U);  // beyond the last character
    EXPECT_EQ(EscapeBytes("\xEE\xBF\xBF").size(), 9U);       // the private character itself
}

TEST(EscapeBytes, EveryTextComesBack) {
    std::mt19937 random(1);
    constexpr std::string_view kPool =
        "aZ\\/\"\n\xC3\xA9\xEE\xBE\x80\xBF\xEF\xF0\x9F\xFF\xED\xA0\xC0";
    for (int n = 0; n < 20000; ++n) {
        std::string text;
        for (std::size_t length = random() % 12; length > 0; --length) {
            text += kPool[random() % kPool.size()];
        }
        ASSERT_EQ(UnescapeBytes(EscapeBytes(text)), text);
    }
}

TEST(QuoteToml, WritesOneLineWithoutControlCharacters) {
    EXPECT_EQ(QuoteToml(""), "\"\"");
    EXPECT_EQ(QuoteToml("a\"b\\c"), R"("a\"b\\c")");
    EXPECT_EQ(QuoteToml("a\r\nb\tc"), R"("a\r\nb\tc")");
    EXPECT_EQ(QuoteToml(std::string_view("\0\x1b\x7f", 3)), R"("\u0000\u001B\u007F")");
    EXPECT_EQ(QuoteToml("\xFF\xC2\x9B"), "\"\\uEFFF\\u009B\"");
    EXPECT_EQ(QuoteToml("caf\xC3\xA9"), "\"caf\xC3\xA9\"");
}

TEST(FloatText, IsShortestAndAlwaysAFloat) {
    EXPECT_EQ(FloatText(2.2), "2.2");
    EXPECT_EQ(FloatText(3), "3.0");
    EXPECT_EQ(FloatText(-0.5), "-0.5");
    EXPECT_EQ(FloatText(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(FloatText(1e300), "1e+300");
    EXPECT_EQ(FloatText(INFINITY), "0.0");
    EXPECT_EQ(FloatText(NAN), "0.0");
    EXPECT_EQ(FloatText(std::numeric_limits<double>::lowest()), "-1.7976931348623157e+308");
}

}  // namespace
}  // namespace lumo::settings
