#pragma once

// A batch run from the press of Run to the idle state.

#include "engine/view.h"

namespace lumo::engine {

/// The Run command. Idle: checks the Script, prepares the run and starts its worker thread, then
/// returns. During a run: the abort; the worker stops before its next command.
void RunBatch(CLumoscriptView& view);

/// All of RunBatch but the thread. True: RunThreadEntry must be called next, on any thread. False:
/// the run was refused or called off, whoever is there knows why, and the view is idle again; a
/// program that is to end behind its run has asked for timer 2.
bool PrepareBatch(CLumoscriptView& view);

/// The life of the worker: the loop, then the return to the idle state. 1 for an aborted run.
int RunThreadEntry(CLumoscriptView& view);

/// Waits until the worker has ended, if there is one.
void JoinWorker(CLumoscriptView& view);

/// Timer 2: begins an unattended run, or ends the program after one.
void OnTimer2(CLumoscriptView& view);

}  // namespace lumo::engine
