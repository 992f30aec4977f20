#pragma once

// "JPG file header": which metadata the JPG files carry that are written from the picture in hand,
// and the rewriting of that in its original. docs/metadata.md tells what goes where.

#include "engine/command.h"

namespace lumo::io {

extern const engine::Command kJpgHeaderCommand;

}  // namespace lumo::io
