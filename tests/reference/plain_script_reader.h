#pragma once

// The readers of src/script once more, one character at a time and with nothing clever in them.

#include <string>
#include <string_view>
#include <vector>

namespace lumo::reference {

struct PlainFields {
    bool complete = false;
    std::vector<std::string> slots = std::vector<std::string>(32);
};

PlainFields ReadParams(std::string_view text);

struct PlainScript {
    bool complete = false;
    std::vector<std::string> names, params;
};

PlainScript ReadScript(std::string_view bytes);
/// The commands that a Subroutine of this title adds to an empty Script.
PlainScript ReadSubroutine(std::string_view bytes, std::string_view title);

}  // namespace lumo::reference
