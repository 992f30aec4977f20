#include "ui/dropped_files.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/paths.h"

namespace lumo::ui {

Dropped KindOfDropped(std::string_view path) {
    if (path.find('.') == std::string_view::npos) return Dropped::Nothing;
    std::string end(path.substr(path.size() - std::min<std::size_t>(4, path.size())));
    for (char& c : end)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    constexpr std::array<std::string_view, 14> kImages{".bmp", ".jpg", ".jpe", "jpeg", ".jif",
                                                       ".png", ".tga", ".tif", "tiff", ".pcx",
                                                       ".psd", ".wmf", ".emf", ".gif"};
    if (std::ranges::find(kImages, end) != kImages.end() || platform::IsRaw(path))
        return Dropped::Image;
    return end == ".whs" ? Dropped::Script : Dropped::Other;
}

}  // namespace lumo::ui
