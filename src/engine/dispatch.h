#pragma once

#include "engine/command.h"

namespace lumo::engine {

/// ExecuteCommand for a command that has been looked up already: `command` is what FindCommand
/// gives for `name`. The run loop looks each command up once for a whole run.
Outcome ExecuteCommand(CLumoscriptView& view, const Command* command, std::string_view name,
                       std::string_view params);

}  // namespace lumo::engine
