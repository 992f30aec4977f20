#pragma once

// Texts and numbers in the form that the settings file has them, byte for byte and in every locale.
// A path may hold any bytes, a TOML text only UTF-8: bytes that are no UTF-8 are written as the
// private characters U+EF80 to U+EFFF, one for each byte 80 to FF. A text that holds such a
// character itself has its three bytes written that way, so that every text comes back as it was.

#include <string>
#include <string_view>

namespace lumo::settings {

/// Any bytes as UTF-8; a text without stray bytes and private characters is returned unchanged.
std::string EscapeBytes(std::string_view text);
/// The inverse of EscapeBytes.
std::string UnescapeBytes(std::string_view text);

/// Any bytes as a TOML text in double quotes, on one line, without control characters.
std::string QuoteToml(std::string_view text);

/// The shortest decimal text that reads back the same, as a TOML float: "2.2", "3.0", "1e+300".
/// Infinities and NaN are written as 0.0: no setting has a use for them.
std::string FloatText(double value);

}  // namespace lumo::settings
