#include "imaging/codecs/unicode.h"

#include <gtest/gtest.h>

#include <string>

#include "support/codec_files.h"

namespace lumo::imaging::codecs {
namespace {

using namespace std::string_literals;
using test::BytesOf;

TEST(DecodeUtf8, TakesEveryLengthOfCharacter) {
    EXPECT_EQ(DecodeUtf8(""), U"");
    EXPECT_EQ(DecodeUtf8("a\0b"s), U"a\0b"s);
    EXPECT_EQ(DecodeUtf8("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"),
              U"\x7F\x80\x7FF\x800\xFFFF\x10000");
    EXPECT_EQ(DecodeUtf8("\xF4\x8F\xBF\xBF"), U"\x10FFFF");
    EXPECT_EQ(DecodeUtf8("\xED\x9F\xBF\xEE\x80\x80"), U"\xD7FF\xE000");
}

TEST(DecodeUtf8, RefusesWhatIsNone) {
    for (const char* text :
         {"\x80", "\xBF", "a\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC3(", "\xE2\x82(", "\xFF", "\xF8",
          "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",  // longer than need be
          "\xED\xA0\x80", "\xED\xBF\xBF",                              // halves of pairs
          "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF"})                     // beyond the last
        EXPECT_EQ(DecodeUtf8(text), std::nullopt) << testing::PrintToString(text);
}

TEST(TextAsUtf8, ReadsWhatIsNoUtf8AsWesternEuropean) {
    EXPECT_EQ(TextAsUtf8("caf\xC3\xA9"), "caf\xC3\xA9");
    EXPECT_EQ(TextAsUtf8("caf\xE9 \x80 5"), "caf\xC3\xA9 \xE2\x82\xAC 5");
    EXPECT_EQ(TextAsUtf8("both \xC3\xA9 and \xE9"), "both \xC3\x83\xC2\xA9 and \xC3\xA9");
}

TEST(TextAsUtf16, HasAClosingZeroAndPairs) {
    EXPECT_EQ(TextAsUtf16(""), BytesOf({0, 0}));
    EXPECT_EQ(TextAsUtf16(" "), BytesOf({0x20, 0, 0, 0}));
    EXPECT_EQ(TextAsUtf16("\xC3\xA9\xE2\x82\xAC"), BytesOf({0xE9, 0, 0xAC, 0x20, 0, 0}));
    EXPECT_EQ(TextAsUtf16("\xF0\x9F\x98\x80"), BytesOf({0x3D, 0xD8, 0x00, 0xDE, 0, 0}));
    EXPECT_EQ(TextAsUtf16("\xE9"), BytesOf({0xE9, 0, 0, 0}));
}

TEST(FromWestern, DiffersFromUnicodeInOneBlock) {
    for (int byte = 0; byte < 256; ++byte)
        if (byte < 0x80 || byte >= 0xA0) {
            EXPECT_EQ(FromWestern(static_cast<std::uint8_t>(byte)), static_cast<char32_t>(byte));
        }
    EXPECT_EQ(FromWestern(0x80), U'\x20AC');
    EXPECT_EQ(FromWestern(0x9F), U'\x178');
}

}  // namespace
}  // namespace lumo::imaging::codecs
