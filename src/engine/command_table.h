#pragma once

#include <span>

#include "engine/command.h"

namespace lumo::engine {

/// A name of the catalogue and what stands behind it; null for the two markers of the image loop,
/// which the run loop handles itself, and for a command that is still to come.
struct CommandRow {
    std::string_view name;
    const Command* command;
};

/// The 91 commands in menu order.
std::span<const CommandRow> CommandTable();

}  // namespace lumo::engine
