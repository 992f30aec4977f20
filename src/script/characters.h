#pragma once

// Texts counted in characters, as a user counts them: UTF-8, where a byte that does not continue a
// character begins one. Bytes that are no UTF-8 are characters of their own or part of the one
// before them, so that any text can be counted and cut.

#include <cstddef>
#include <string_view>

namespace lumo::script {

std::size_t CountCharacters(std::string_view text);

/// The first `count` characters, never half of one.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

}  // namespace lumo::script
