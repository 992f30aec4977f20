#pragma once

// What the commands on files share.

#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::ops::files {

/// A warning or error with the file that it is about: a block in both logs of a batch run; outside
/// of one, a message.
void ReportBlock(engine::CLumoscriptView& view, std::string_view command, const std::string& path,
                 std::string_view text);

/// True if the input file is still there. The names that stand for it outside of the image loop are
/// no files, even if the current folder has some that are called so.
bool InputFileExists(const engine::CLumoscriptView& view);

/// Makes an opened picture the working image: 24 bits, grey flag clear.
void InstallOpened(engine::CLumoscriptView& view, imaging::Image picture);

}  // namespace lumo::ops::files
