#pragma once

// Characters of the texts that stand in picture files.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// The character of a byte of Western European Windows text (code page 1252).
char32_t FromWestern(std::uint8_t byte);

void AppendUtf8(std::string& text, char32_t code);

/// The characters of UTF-8; none if the bytes are something else: overlong forms, halves of
/// UTF-16 pairs and codes beyond U+10FFFF are.
std::optional<std::u32string> DecodeUtf8(std::string_view bytes);

/// A text of which nobody says how it is coded: UTF-8 if it is that, else Western European. Never
/// fails; texts of before the days of Unicode come out right for most users.
std::u32string DecodeText(std::string_view bytes);
/// The same as UTF-8.
std::string TextAsUtf8(std::string_view bytes);

/// DecodeText as UTF-16, low byte first, with a closing zero.
Bytes TextAsUtf16(std::string_view bytes);

}  // namespace lumo::imaging::codecs
