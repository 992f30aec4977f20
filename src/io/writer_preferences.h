#pragma once

// "Writer preferences": new writer settings from this place of the Script on, for all later
// writes until the program ends and, as they are the stored settings, beyond it.

#include "engine/command.h"

namespace lumo::io {

extern const engine::Command kWriterPreferencesCommand;

}  // namespace lumo::io
