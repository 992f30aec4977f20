#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumo::imaging {

/// The lines of a text as they are drawn; at least one. CR LF, CR and LF each end a line. What is
/// no UTF-8 becomes U+FFFD; control characters, which have no shape, are left out, and the line
/// breaks of Unicode that are no line feeds become blanks.
std::vector<std::string> SplitTextLines(std::string_view text);

}  // namespace lumo::imaging
