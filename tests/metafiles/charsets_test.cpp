#include "imaging/codecs/metafile/charsets.h"

#include <gtest/gtest.h>

namespace lumo::imaging::codecs::metafile {
namespace {

std::u32string Codes(const std::vector<Character>& text) {
    std::u32string codes;
    for (const Character& c : text) codes.push_back(c.code);
    return codes;
}

Bytes BytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}

TEST(Charsets, EachWindowsSetReadsItsOwnLetters) {
    const std::pair<int, char32_t> letters[] = {
        {0, U'\u00C4'},   {161, U'\u0394'}, {162, U'\u00C4'}, {204, U'\u0414'},
        {238, U'\u00C4'}, {186, U'\u00C4'}, {177, U'\u05B4'}, {222, U'\u0E24'}};
    for (const auto& [charset, code] : letters)
        EXPECT_EQ(Codes(DecodeBytes(BytesOf("\xC4"), static_cast<std::uint8_t>(charset))),
                  std::u32string(1, code))
            << charset;
}

TEST(Charsets, WesternTextHasItsQuotesBetween128And159) {
    EXPECT_EQ(Codes(DecodeBytes(BytesOf("\x93q\x94 \x80"), 0)), U"\u201Cq\u201D \u20AC");
}

TEST(Charsets, DoubleBytesCountTwoUnits) {
    const auto text = DecodeBytes(BytesOf("A\x82\xA0\xB1"), 128);
    EXPECT_EQ(Codes(text), U"A\u3042\uFF71");
    EXPECT_EQ(text[1].units, 2);
    EXPECT_EQ(text[2].units, 1);
}

TEST(Charsets, WhatASetDoesNotHoldIsMarked) {
    EXPECT_EQ(Codes(DecodeBytes(BytesOf("\x81"), 204)).size(), 1U);
    EXPECT_EQ(Codes(DecodeBytes(BytesOf("\x82"), 128)), U"\uFFFD") << "half a character";
}

TEST(Charsets, Utf16JoinsPairs) {
    const auto text = DecodeUtf16(Bytes{0x41, 0, 0x3D, 0xD8, 0x00, 0xDE, 0x3D, 0xD8, 0x42, 0});
    EXPECT_EQ(Codes(text), U"A\U0001F600\uFFFDB");
    EXPECT_EQ(text[1].units, 2);
}

TEST(SymbolFonts, KnownSigns) {
    EXPECT_EQ(SymbolToUnicode("Symbol", 'a'), U'\u03B1');
    EXPECT_EQ(SymbolToUnicode("SYMBOL", 0xF0A5), U'\u221E');
    EXPECT_EQ(SymbolToUnicode("Symbol", 0xFE), U'\u23AD');
    EXPECT_EQ(SymbolToUnicode("Wingdings", 0xFC), U'\u2713');
    EXPECT_EQ(SymbolToUnicode("Wingdings", 0xA7), U'\u25AA');
    EXPECT_EQ(SymbolToUnicode("Wingdings", 'l'), U'\u25CF');
    EXPECT_EQ(SymbolToUnicode("MT Extra", '&'), U'\u02D9');
    EXPECT_EQ(SymbolToUnicode("Arial", 'a'), U'a');
}

TEST(Utf8, AllLengths) {
    std::string text;
    for (const char32_t code : {U'A', U'\u00E4', U'\u20AC', U'\U0001F600'}) AppendUtf8(text, code);
    EXPECT_EQ(text, "A\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
}

}  // namespace
}  // namespace lumo::imaging::codecs::metafile
