#pragma once

#include <cstddef>
#include <string>

namespace lumo::imaging::codecs {

/// A UTF-8 text of a picture file as part of one line of a report: blanks and zeros behind it are
/// gone, line breaks are blanks, other control characters "?"; what is longer than `most` bytes is
/// cut between characters and ends in "...".
std::string OneLine(std::string text, std::size_t most);

}  // namespace lumo::imaging::codecs
