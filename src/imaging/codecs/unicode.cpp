#include "imaging/codecs/unicode.h"

#include <array>

namespace lumo::imaging::codecs {
namespace {

// The 32 codes in which Western European Windows text differs from the first 256 of Unicode.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

/// Bytes behind the first one of a character, and the smallest code that needs as many.
struct Form {
    int more;
    char32_t smallest;
};

std::optional<Form> FormOf(std::uint8_t first) {
    if (first < 0x80) return Form{0, 0};
    if (first >= 0xC0 && first < 0xE0) return Form{1, 0x80};
    if (first >= 0xE0 && first < 0xF0) return Form{2, 0x800};
    if (first >= 0xF0 && first < 0xF8) return Form{3, 0x10000};
    return std::nullopt;
}

bool IsCharacter(char32_t code) {
    return code < 0xD800 || (code >= 0xE000 && code <= 0x10FFFF);
}

}  // namespace

char32_t FromWestern(std::uint8_t byte) {
    return byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte;
}

void AppendUtf8(std::string& text, char32_t code) {
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

std::optional<std::u32string> DecodeUtf8(std::string_view bytes) {
    std::u32string text;
    text.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size();) {
        const auto first = static_cast<std::uint8_t>(bytes[i++]);
        const auto form = FormOf(first);
        if (!form || bytes.size() - i < static_cast<std::size_t>(form->more)) return std::nullopt;
        char32_t code = form->more == 0 ? first : first & (0x3FU >> form->more);
        for (int k = 0; k < form->more; ++k) {
            const auto next = static_cast<std::uint8_t>(bytes[i++]);
            if ((next & 0xC0U) != 0x80U) return std::nullopt;
            code = code << 6 | (next & 0x3FU);
        }
        if (code < form->smallest || !IsCharacter(code)) return std::nullopt;
        text.push_back(code);
    }
    return text;
}

std::u32string DecodeText(std::string_view bytes) {
    if (auto text = DecodeUtf8(bytes)) return std::move(*text);
    std::u32string text;
    text.reserve(bytes.size());
    for (const char c : bytes) text.push_back(FromWestern(static_cast<std::uint8_t>(c)));
    return text;
}

std::string TextAsUtf8(std::string_view bytes) {
    if (DecodeUtf8(bytes)) return std::string(bytes);
    std::string text;
    for (const char32_t code : DecodeText(bytes)) AppendUtf8(text, code);
    return text;
}

Bytes TextAsUtf16(std::string_view bytes) {
    Bytes units;
    const auto put = [&](char32_t unit) {
        units.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        units.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
    };
    for (const char32_t code : DecodeText(bytes)) {
        if (code < 0x10000) {
            put(code);
        } else {
            put(0xD800 + ((code - 0x10000) >> 10));
            put(0xDC00 + ((code - 0x10000) & 0x3FF));
        }
    }
    put(0);
    return units;
}

}  // namespace lumo::imaging::codecs
