#include "imaging/codecs/one_line.h"

#include "platform/paths.h"

namespace lumo::imaging::codecs {

std::string OneLine(std::string text, std::size_t most) {
    constexpr std::string_view kEmpty("\0 \r\n\t", 5);
    text.resize(text.find_last_not_of(kEmpty) + 1);  // to nothing if there is no other character
    if (text.size() > most) {
        std::size_t end = most;
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) --end;
        text.resize(end);
        text += "...";
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') text.erase(i, 1);
        if (text[i] == '\r' || text[i] == '\n' || text[i] == '\t') text[i] = ' ';
    }
    return platform::Printable(text);
}

}  // namespace lumo::imaging::codecs
