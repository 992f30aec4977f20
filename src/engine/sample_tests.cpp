#include "engine/sample_tests.h"

#include <algorithm>
#include <utility>

#include "engine/command.h"
#include "engine/editing.h"
#include "engine/run_batch.h"
#include "engine/script_structure.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

void ResetWalk(CLumoscriptView& view) {
    TestWalk& test = view.test;
    test.running = true;
    test.ifFlag = test.doFlag = 1;
    test.subSkip = test.subDepth = test.exitFlag = 0;
    test.ifStack.clear();
    test.elseStack.clear();
    test.subReturnList.clear();
    view.working.imageBitsForced = 0;
}

void ExecuteOnSample(CLumoscriptView& view, int index) {
    // Copies: a command of the walk may append a subroutine to the Script.
    const std::string name = view.script.commands.NameAt(index);
    const std::string params = view.script.commands.ParamsAt(index);
    const Outcome outcome = ExecuteCommand(view, name, params);
    if (outcome == Outcome::Succeeded && view.working.main.IsEmpty())
        view.ui.ShowMessage("rgbBuf2=NULL 1");
    // A command that failed may have taken the picture away: nothing is shown of what is gone.
    if (outcome == Outcome::Succeeded || view.working.main.IsEmpty()) view.ui.RebuildRightDisplay();
}

/// The check may load subroutines that the Script calls: they stay, as a change that the user can
/// take back and is asked about.
bool CheckAndShowScript(CLumoscriptView& view) {
    script::Script before = view.script.commands;
    const bool inOrder = CheckScriptStructure(view);
    if (view.script.commands.Count() == before.Count()) return inOrder;
    view.script.undo = std::move(before);
    view.script.undoValid = true;
    view.script.modified = true;
    view.ui.ScriptChanged();
    SelectCommand(view, SelectedCommand(view));
    return inOrder;
}

void EndWalk(CLumoscriptView& view) {
    view.run.mode = RunMode::Idle;
    view.ui.Play(Sound::Asterisk);
}

}  // namespace

void TestOne(CLumoscriptView& view) {
    const int count = view.script.commands.Count();
    const int selected = SelectedCommand(view);
    if (view.run.batchRunning || selected < 0) return;
    ResetWalk(view);
    if (view.working.main.IsEmpty()) {
        view.ui.ShowMessage("You must have an image...?");
        return;
    }
    view.run.mode = RunMode::OneCommand;
    ExecuteOnSample(view, selected);
    SelectCommand(view, selected + 1 < count ? selected + 1 : std::min(1, count - 1));
    view.run.mode = RunMode::Idle;
}

bool BeginTestAll(CLumoscriptView& view) {
    if (view.run.batchRunning || IsTestAllActive(view)) return false;
    view.test.running = true;
    view.counters.fill(0);
    if (!CheckAndShowScript(view)) return false;
    ResetWalk(view);
    view.run.mode = RunMode::WholeScript;
    view.ui.ClearPanel();
    view.ui.SetStatus("Press A key to abort");
    view.test.next = view.script.commands.Find(script::names::kStartImageLoop) + 1;
    return true;
}

bool StepTestAll(CLumoscriptView& view) {
    TestWalk& test = view.test;
    const int count = view.script.commands.Count();
    const int marker = view.script.commands.Find(script::names::kEndImageLoop);
    const int end = marker < 0 ? count : marker;
    // Inside of a called subroutine the walk follows the subroutine; outside it follows itself,
    // so a place that a loop's end sets there is not taken.
    if (test.next < end) {
        if (test.subDepth == 0)
            test.testPc = test.next++;
        else
            ++test.testPc;
        if (test.testPc >= 0 && test.testPc < count) {
            SelectCommand(view, test.testPc);
            ExecuteOnSample(view, test.testPc);
            return true;
        }
    }
    if (end > 0) SelectCommand(view, end - 1);
    EndWalk(view);
    return false;
}

void AbortTestAll(CLumoscriptView& view) {
    if (!IsTestAllActive(view)) return;
    view.ui.ClearPanel();
    view.ui.Redraw();
    EndWalk(view);
}

bool IsTestAllActive(const CLumoscriptView& view) {
    return view.run.mode == RunMode::WholeScript;
}

void RunOnSample(CLumoscriptView& view) {
    RunState& run = view.run;
    if (run.batchRunning) return;
    run.onLeftImage = true;
    run.mode = RunMode::BatchOnSample;
    RunBatch(view);
    // A run that did not start leaves nothing behind for the next one.
    if (run.batchRunning || run.worker.joinable()) return;
    run.onLeftImage = false;
    run.mode = RunMode::Idle;
}

}  // namespace lumo::engine
