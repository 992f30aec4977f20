#include "script/characters.h"

#include <algorithm>

namespace lumo::script {

namespace {

bool BeginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
}

}  // namespace

std::size_t CountCharacters(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, BeginsCharacter));
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
    for (std::size_t i = 0; i < text.size(); ++i)
        if (BeginsCharacter(text[i]) && count-- == 0) return text.substr(0, i);
    return text;
}

}  // namespace lumo::script
