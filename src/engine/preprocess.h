#pragma once

// From the Script to the executable form: the run list with its subroutines, checked, and the
// tables by which the run moves.

#include "engine/view.h"

namespace lumo::engine {

/// Clears the run list and fills it with the Script's commands; notes where the markers stand.
/// "Script info" is a comment and never gets into a run list, from subroutines neither.
void FillRunList(CLumoscriptView& view);

/// Loads each called subroutine that the run list lacks, from the user's Subroutines folder, the
/// Scripts folder or the shipped Subroutines, and appends it; also those that subroutines call.
/// False, with a line for each, if one is found nowhere. Stops at kMaxRunCommands commands.
bool LoadCalledSubroutines(CLumoscriptView& view);

/// True if a subroutine's "Output setup" would write and names no folder.
bool SubroutineOutputLeftOpen(const CLumoscriptView& view);

/// All steps between the filling of the run list and the first command. False: the run must end,
/// and its faults have been told.
bool PreprocessRun(CLumoscriptView& view);

}  // namespace lumo::engine
