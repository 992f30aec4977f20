#pragma once

// Trying a Script on the sample image: one command, all of them step by step, or the batch
// machinery over the sample alone. The first two run on the thread of the interface, with the
// flags of the test walk in place of the tables of a run.

#include "engine/view.h"

namespace lumo::engine {

/// Runs the selected command on the working image and selects the next one; behind the last one,
/// the one at index 1.
void TestOne(CLumoscriptView& view);

/// Begins a walk over the commands between the two markers. False, after a message, for a Script
/// whose blocks are not in order. Whoever walks calls StepTestAll until it says that the walk is
/// over, with a pause between, so that each step is seen.
bool BeginTestAll(CLumoscriptView& view);

/// Runs the next command. False: there was none left, and the walk has ended.
bool StepTestAll(CLumoscriptView& view);

/// Ends a walk before its last command.
void AbortTestAll(CLumoscriptView& view);

/// True between BeginTestAll and the end of the walk.
bool IsTestAllActive(const CLumoscriptView& view);

/// The Script over the sample as the only input, by the machinery of a batch run; nothing is
/// written. Nothing happens while a run is active.
void RunOnSample(CLumoscriptView& view);

}  // namespace lumo::engine
