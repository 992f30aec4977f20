#pragma once

// The text of metafiles as Unicode.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/unicode.h"

namespace lumo::imaging::codecs::metafile {

/// A character and how many units (bytes or 16-bit words) the file spends on it.
struct Character {
    char32_t code = 0;
    int units = 1;
};

inline constexpr std::uint8_t kSymbolCharset = 2;

/// Text of a Windows character set; what the set does not hold becomes U+FFFD. Without the tables
/// of the system for it, bytes above 127 are read as Western European.
std::vector<Character> DecodeBytes(ByteView bytes, std::uint8_t charset);
std::vector<Character> DecodeUtf16(ByteView bytes);

/// The character that a font with an alphabet of its own shows for a code, where Unicode has it.
/// Such fonts are seldom installed; another font shows their signs by this. Other fonts: the code.
char32_t SymbolToUnicode(std::string_view face, char32_t code);
/// True if the face is one that SymbolToUnicode knows.
bool IsSymbolFace(std::string_view face);

}  // namespace lumo::imaging::codecs::metafile
