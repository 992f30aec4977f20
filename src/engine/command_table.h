#pragma once

#include <span>

#include "engine/command.h"

namespace lumo::engine {

/// A name of the catalogue and what stands behind it. The run loop handles both markers of the
/// image loop itself: START has a row for its dialog and panel but no handler, END is null. A
/// command that is still to come is null too.
struct CommandRow {
    std::string_view name;
    const Command* command;
};

/// The 91 commands in menu order.
std::span<const CommandRow> CommandTable();

}  // namespace lumo::engine
