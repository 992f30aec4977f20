#pragma once

#include <string>
#include <string_view>

namespace lumo::io {

/// A path for a narrow panel: "..." and its last `kept` characters if it has `longest` characters
/// or more, else as it is. Characters are those of UTF-8; other bytes count one each.
std::string ShortenPath(std::string_view path, int longest, int kept);

}  // namespace lumo::io
