#pragma once

// The commands that act on files: parked, fixed and reloaded pictures, and the input file itself.

#include "engine/command.h"

namespace lumo::ops::files {

extern const engine::Command kOutputTemporaryCommand;
extern const engine::Command kInputTemporaryCommand;
extern const engine::Command kInputFixedImageCommand;
extern const engine::Command kReloadImageFileCommand;

extern const engine::Command kCopyMoveCommand;
extern const engine::Command kDeleteInputFileCommand;

}  // namespace lumo::ops::files
