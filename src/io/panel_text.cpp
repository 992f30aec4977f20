#include "io/panel_text.h"

#include <algorithm>

namespace lumo::io {
namespace {

bool BeginsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
}

}  // namespace

std::string ShortenPath(std::string_view path, int longest, int kept) {
    if (std::count_if(path.begin(), path.end(), BeginsCharacter) < longest)
        return std::string(path);
    std::size_t from = path.size();
    for (int left = kept; left > 0 && from > 0;)
        if (BeginsCharacter(path[--from])) --left;
    return "..." + std::string(path.substr(from));
}

}  // namespace lumo::io
