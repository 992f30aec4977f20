#pragma once

// The commands as somebody needs to know them who writes a Script by hand.

#include <string>
#include <string_view>

namespace lumo::engine {

/// What a command does, one sentence; empty for a name that is no command.
std::string_view CommandSummary(std::string_view name);

/// All commands in menu order, in Markdown: what each does, its lines in a Script with the default
/// parameters, and its fields, numbered from 1 behind the count. Made from the schemas, so that it
/// says what the forms show and the parser reads. docs/commands.md is this text.
std::string CommandReference();

}  // namespace lumo::engine
