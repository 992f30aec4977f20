#pragma once

// The macros of texts that a Script puts into pictures, names, logs and headers: "$(filename)".

#include <array>
#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/view.h"
#include "imaging/geometry.h"

namespace lumo::io {

/// What the macros stand for.
struct MacroValues {
    std::string dateFormat;  // strftime, of "$(date)"
    std::string filePath;
    std::string fileName;   // with extension
    std::string fileTitle;  // without
    imaging::Size size;
    std::array<std::int32_t, 10> counters{};  // A to J
    std::time_t now = 0;
};

/// The values of this moment: the input file, the size of the working image, the counters, the
/// clock.
MacroValues MacrosOf(const engine::CLumoscriptView& view);

/// `text` with its macros replaced: $(filename) $(filetitle) $(filepath) $(width) $(height)
/// $(size) ("640x480") $(date) $(counterA) ... $(counterJ), and $(date%Y%m%d) with any strftime
/// format behind "date". What is no macro stays as it stands; what a macro brings in is not looked
/// at again, so a file called "$(date).jpg" keeps its name.
std::string ParseLine(std::string_view text, const MacroValues& values);

/// A macro as it is put into a text, and what it stands for.
struct OfferedMacro {
    std::string_view macro;
    std::string_view meaning;
};

/// What a form offers to put into a text, in the order shown.
std::span<const OfferedMacro> OfferedMacros();

/// As ParseLine, for a part of a file name. Separators that a macro brings in become "-"; none if
/// the text itself holds one, since a name must never leave its folder.
std::optional<std::string> ParseNamePart(std::string_view text, const MacroValues& values);

/// True for the bytes that no name of a file may hold: "/", "\" and zero.
bool HasSeparator(std::string_view text);

}  // namespace lumo::io
