#pragma once

// "Output setup": writes the working image to a file and leaves it as it is in memory.

#include <optional>
#include <string>

#include "engine/command.h"

namespace lumo::io {

/// The name of an output file, extension included, as the fields build it: prefix, input title,
/// AutoNumeric, suffix, incremental count, ".", extension. None if a typed part holds a separator.
/// Uses up one incremental count where the fields ask for it.
std::optional<std::string> BuildOutputName(engine::CLumoscriptView& view,
                                           const script::Fields& fields);

extern const engine::Command kOutputSetupCommand;

}  // namespace lumo::io
