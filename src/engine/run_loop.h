#pragma once

#include "engine/view.h"

namespace lumo::engine {

/// Walks the run list section by section and image by image until it ends, fails fatally or
/// `keepRunning` is 0. Needs a list that PreprocessRun has accepted.
void RunLoop(CLumoscriptView& view);

/// Closing lines, logs to disk, idle status. Also ends a run that was refused.
void EndOfRun(CLumoscriptView& view);

}  // namespace lumo::engine
