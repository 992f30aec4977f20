#include "settings/toml_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace lumo::settings {
namespace {

constexpr std::uint32_t kFirstPrivate = 0xEF80;  // stands for byte 80
constexpr std::uint32_t kLastPrivate = 0xEFFF;   // stands for byte FF
constexpr std::uint32_t kPrivateBase = 0xEF00;

struct Character {
    std::uint32_t code = 0;
    std::size_t length = 0;  // in bytes; 0: no character of UTF-8 begins here
};

// Refuses what strict UTF-8 refuses: overlong forms, surrogates, codes above 10FFFF.
Character CharacterAt(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() - at < length) return {};
    std::uint32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) return {};
        code = code << 6 | (byte(i) & 0x3FU);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (overlong || surrogate || code > 0x10FFFF) return {};
    return {code, length};
}

bool IsPrivate(std::uint32_t code) {
    return code >= kFirstPrivate && code <= kLastPrivate;
}

void AppendPrivate(std::string& text, unsigned char byte) {
    const std::uint32_t code = kPrivateBase + byte;
    text += static_cast<char>(0xE0U | code >> 12);
    text += static_cast<char>(0x80U | (code >> 6 & 0x3FU));
    text += static_cast<char>(0x80U | (code & 0x3FU));
}

void AppendEscape(std::string& text, std::uint32_t code) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[code >> shift & 0xFU];
}

char ShortEscape(std::uint32_t code) {
    switch (code) {
        case '"':
        case '\\':
            return static_cast<char>(code);
        case '\t':
            return 't';
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        default:
            return 0;
    }
}

}  // namespace

std::string EscapeBytes(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const Character character = CharacterAt(text, i);
        if (character.length == 0) {
            AppendPrivate(escaped, static_cast<unsigned char>(text[i++]));
            continue;
        }
        const std::string_view bytes = text.substr(i, character.length);
        if (IsPrivate(character.code)) {
            for (const char byte : bytes) AppendPrivate(escaped, static_cast<unsigned char>(byte));
        } else {
            escaped += bytes;
        }
        i += character.length;
    }
    return escaped;
}

std::string UnescapeBytes(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const Character character = CharacterAt(text, i);
        const std::size_t length = character.length == 0 ? 1 : character.length;
        if (IsPrivate(character.code)) {
            bytes += static_cast<char>(character.code - kPrivateBase);
        } else {
            bytes += text.substr(i, length);
        }
        i += length;
    }
    return bytes;
}

std::string QuoteToml(std::string_view text) {
    const std::string escaped = EscapeBytes(text);
    std::string quoted = "\"";
    quoted.reserve(escaped.size() + 2);
    for (std::size_t i = 0; i < escaped.size();) {
        const Character character = CharacterAt(escaped, i);
        if (const char letter = ShortEscape(character.code)) {
            quoted.append({'\\', letter});
        } else if (character.code < 0x20 || (character.code >= 0x7F && character.code < 0xA0) ||
                   IsPrivate(character.code)) {
            AppendEscape(quoted, character.code);
        } else {
            quoted.append(escaped, i, character.length);
        }
        i += character.length;
    }
    return quoted += '"';
}

std::string FloatText(double value) {
    if (!std::isfinite(value)) return "0.0";
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::string text(digits.data(), end);
    if (text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

}  // namespace lumo::settings
