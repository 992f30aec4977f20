#include "imaging/text_lines.h"

#include <glib.h>

#include <memory>
#include <string>

namespace lumo::imaging {
namespace {

struct GlibFree {
    void operator()(char* text) const { g_free(text); }
};

constexpr gunichar kNextLine = 0x85, kLineSeparator = 0x2028, kParagraphSeparator = 0x2029;

bool IsPlain(std::string_view bytes) {
    for (const char c : bytes)
        if (c < ' ' || c == 0x7F) return false;  // a byte of UTF-8's longer forms is negative
    return true;
}

std::string Drawable(std::string_view bytes) {
    if (IsPlain(bytes)) return std::string(bytes);
    std::string known(bytes);
    std::erase(known, '\0');  // would end the text below
    const std::unique_ptr<char, GlibFree> mended(
        g_utf8_make_valid(known.data(), static_cast<gssize>(known.size())));
    std::string line;
    for (const char *at = mended.get(), *next = at; *at != '\0'; at = next) {
        next = g_utf8_next_char(at);
        const gunichar code = g_utf8_get_char(at);
        if (code == kNextLine || code == kLineSeparator || code == kParagraphSeparator)
            line += ' ';
        else if (!g_unichar_iscntrl(code))
            line.append(at, next);
    }
    return line;
}

}  // namespace

std::vector<std::string> SplitTextLines(std::string_view text) {
    std::vector<std::string> lines;
    for (;;) {
        const std::size_t end = text.find_first_of("\r\n");
        lines.push_back(Drawable(text.substr(0, end)));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + (text.substr(end, 2) == "\r\n" ? 2 : 1));
    }
}

}  // namespace lumo::imaging
