#pragma once

// What the author of a Script should be told where nobody watches, and what no log says: a run
// takes a name that is no command for a command that fails, and a folder that is not there for an
// empty one.

#include <string>
#include <string_view>
#include <vector>

#include "engine/view.h"

namespace lumo::cli {

/// The command that was probably meant by a name that is none: the same letters and digits, the
/// beginning of one command alone, or a slip or two. Empty where nothing is near.
std::string_view NearestCommand(std::string_view name);

/// A line for each name that is no command, of the run list where it was made (it holds the
/// subroutines too), else of the Script. Each name once.
std::vector<std::string> RemarkUnknownCommands(const engine::CLumoscriptView& view);

/// A line if START names a folder or an Image list that is not there; else empty, also where START
/// names nothing. It is to be asked behind the run: what stands above START may make the folder.
std::string RemarkMissingInput(const engine::CLumoscriptView& view);

}  // namespace lumo::cli
