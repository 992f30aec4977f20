#pragma once

#include <string_view>

namespace lumo::ui {

enum class Dropped { Nothing, Image, Script, Other };

/// What a file is for, by the last four characters of its path; nothing if it has no dot.
Dropped KindOfDropped(std::string_view path);

}  // namespace lumo::ui
