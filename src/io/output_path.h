#pragma once

// Where output goes: folders, made when they are missing, and the parts of names.

#include <optional>
#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::io {

using engine::CLumoscriptView;

/// The folder that a parameter states, made native. "<original folder path>" at its start stands
/// for the folder of the input file, "<..original folder path>" for the one above it; both keep
/// what follows. Empty if no folder is stated, or the input has none.
std::string ExpandOutputFolder(const CLumoscriptView& view, std::string_view text);

/// AutoNumeric: `count` with zeros in front, as wide as `autoPad` is long (at most 9) or as `total`
/// has digits (1 to 5), whichever is more. A longer count loses its leading digits.
std::string AutoNumericText(std::string_view autoPad, int count, int total);
std::string AutoNumericText(const CLumoscriptView& view);

/// The incremental count with zeros in front up to four digits; then adds 1 to it.
std::string IncrementalText(CLumoscriptView& view);

/// A prefix or suffix with its macros replaced; none if the text itself holds a separator.
std::optional<std::string> ExpandNamePart(const CLumoscriptView& view, std::string_view text);

/// Makes all missing folders of a path. 1 if it is a folder now; 0, after a message, if not. A
/// path that begins with a drive letter is no path here: nothing is made for it.
int CreateFolderPath(CLumoscriptView& view, std::string_view path);

/// Makes an output folder, after a question where the settings ask for it. False if the user
/// refuses; the run then ends before its next command. Unattended, the question goes to the logs
/// and counts as refused.
bool PrepareOutputFolder(CLumoscriptView& view, const std::string& folder);

/// Outside of a batch run the name macros read the sample's path.
void RefreshInputMembers(CLumoscriptView& view);

}  // namespace lumo::io
