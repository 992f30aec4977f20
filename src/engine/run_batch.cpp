#include "engine/run_batch.h"

#include <string>
#include <utility>

#include "engine/command.h"
#include "engine/editing.h"
#include "engine/preprocess.h"
#include "engine/run_loop.h"
#include "engine/run_reports.h"
#include "engine/sample.h"
#include "io/input.h"
#include "io/output.h"
#include "io/run_logs.h"
#include "io/second_picture.h"
#include "script/fields.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

constexpr int kTimer2Milliseconds = 1000;

void RefuseStart(CLumoscriptView& view, std::string_view words, std::string_view unattended) {
    view.run.refused = true;
    ReportRefusal(view, words, unattended);
}
void RefuseStart(CLumoscriptView& view, std::string_view text) {
    RefuseStart(view, text, text);
}

/// Few commands mean that somebody pressed Run too early; false: the run does not start.
bool EnoughCommands(CLumoscriptView& view) {
    if (view.script.commands.Count() >= 3) return true;
    if (!view.run.noPrompts)
        return view.ui.Ask(
            "No commands except 'Start (Image loop)' and 'End (Image loop)' in script! Continue "
            "anyway?");
    RefuseStart(view, "No commands except 'Start (Image loop)' and 'End (Image loop)' in script");
    return false;
}

/// The source of the images is named, or asked for now; false: the run does not start.
bool InputIsNamed(CLumoscriptView& view, int start) {
    RunState& run = view.run;
    if (run.onLeftImage) return true;
    // Only the fixed place behind a two-digit count is looked at.
    const std::string& params = view.script.commands.ParamsAt(start);
    if (params.size() <= 3 || params[3] != '0') return true;
    if (!run.noPrompts) return view.ui.PromptStart(start);
    RefuseStart(view,
                "In 'START Image loop setup' command you must uncheck 'Set at runtime' and set "
                "input folder. Then run again.");
    return false;
}

/// Every "Output setup" that would write names its folder; one that is set to be skipped is worth
/// a question. False: the run does not start.
bool OutputsAreNamed(CLumoscriptView& view) {
    RunState& run = view.run;
    if (run.onLeftImage) return true;
    const script::Script& script = view.script.commands;
    for (int i = 0; i < script.Count(); ++i) {
        if (script.NameAt(i) != names::kOutputSetup) continue;
        if (io::OutputFolderLeftOpen(script.ParamsAt(i))) {
            RefuseStart(view,
                        "In 'Output setup' command(s) you must uncheck 'Set at runtime' and set "
                        "the output folder. Then run again",
                        "In 'Output setup' command(s) you must uncheck 'Set at runtime' and set "
                        "output folder. Then run again");
            if (!run.noPrompts) view.ui.EditCommand(i);
            return false;
        }
        if (!run.noPrompts && script::ParseParams(script.ParamsAt(i)).Is(9, "1")) {
            SelectCommand(view, i);
            if (view.ui.Ask("Selected Output setup command is set to be skipped. Do you wish to "
                            "change this? If 'Yes' you will have to run again after making "
                            "changes.")) {
                view.ui.EditCommand(i);
                return false;
            }
        }
    }
    return true;
}

void ZeroStatistics(RunState& run) {
    run.statFiles = run.statOutputs = run.errorCount = run.statInputs = run.warningCount = 0;
    run.failureReports = 0;
    run.fatalCode = 0;
    run.refused = run.aborted = false;
    run.imageIndex = -1;
    run.imageCount = 0;
    run.pc = 0;
    run.prevPc = -1;
}

/// The ornament that the window shows while the first images are read; nobody sees it unattended,
/// and a run over the sample shows the sample soon enough.
void ShowOrnament(CLumoscriptView& view) {
    if (view.run.noPrompts || view.run.onLeftImage) return;
    auto ornament = io::OpenImageFile(view, view.settings.installFolder + "/Frame2.jpg");
    if (!ornament) {
        CopyLeftToMain(view, Force::Yes);
        return;
    }
    view.working.main = std::move(ornament->image);
    SetFullColour(view);
    view.ui.RebuildRightDisplay();
}

/// What both ends of a run have in common.
void ReturnToIdle(CLumoscriptView& view) {
    RunState& run = view.run;
    run.inRun = false;
    run.batchRunning = false;
    run.keepRunning = 1;
    view.metadata = std::exchange(view.waitingMetadata, {});
    view.counters.fill(0);
    io::ForgetSecondPictures(view);
    run.mode = RunMode::Idle;
    view.test.ifFlag = view.test.doFlag = 1;
    view.test.exitFlag = view.test.subSkip = view.test.subDepth = 0;
    view.settings.logs = run.logOptions;
    view.ui.SetRunButton("Run Batch script...");
    view.ui.SetControls(Controls::Open);
    SelectCommand(view, 0);
    view.ui.SetTitle("");
    view.ui.Play(Sound::Asterisk);
}

void ClearUnattendedFlags(RunState& run) {
    run.autoRun = run.autoExit = run.noPrompts = run.forceErrorLog = false;
    run.onLeftImage = false;
}

void FinishRun(CLumoscriptView& view) {
    ReturnToIdle(view);
    RunState& run = view.run;
    if (run.onLeftImage)
        ShowMainSize(view);
    else
        CopyLeftToMain(view, Force::No);
    const bool exit = run.autoExit;
    ClearUnattendedFlags(run);
    view.ui.RebuildRightDisplay();
    if (exit) view.ui.StartTimer2(kTimer2Milliseconds);
}

void FinishAbortedRun(CLumoscriptView& view) {
    ReturnToIdle(view);
    view.ui.SetStatus("User aborted!");
    view.run.inputList.clear();
    CopyLeftToMain(view, Force::No);
    ClearUnattendedFlags(view.run);
    view.ui.RebuildRightDisplay();
}

/// The steps of PrepareBatch; false: the run does not start.
bool TryPrepare(CLumoscriptView& view) {
    RunState& run = view.run;
    ZeroStatistics(run);
    io::ClearLogs(view);
    run.startTime = std::chrono::system_clock::now();
    view.test.running = false;
    view.counters.fill(0);
    view.script.undoValid = false;

    const int start = view.script.commands.Find(names::kStartImageLoop);
    if (start < 0) {
        RefuseStart(view, "No 'START Image loop (setup)'. Not a batch script. No batching.");
        return false;
    }
    if (!EnoughCommands(view) || !InputIsNamed(view, start)) return false;
    io::PrepareInput(view);
    if (!OutputsAreNamed(view)) return false;

    view.working.main.Reset();
    view.ui.Redraw();
    view.ui.ClearPanel();
    view.ui.SetStatus("Processing...");
    run.startTime = std::chrono::system_clock::now();
    FillRunList(view);
    io::OpenLogs(view);
    if (!PreprocessRun(view)) {
        run.refused = true;
        EndOfRun(view);
        CopyLeftToMain(view, Force::No);
        return false;
    }
    if (run.mode == RunMode::Idle) run.mode = RunMode::Batch;
    view.ui.SetRunButton("Abort processing");
    run.prevPc = -1;
    run.logOptions = view.settings.logs;
    view.ui.SetControls(Controls::Closed);
    ShowOrnament(view);
    // A sample that is saved after the run must not carry the header of the last input.
    view.waitingMetadata = std::exchange(view.metadata, {});
    run.keepRunning = 1;
    run.batchRunning = true;
    return true;
}

}  // namespace

bool PrepareBatch(CLumoscriptView& view) {
    if (TryPrepare(view)) return true;
    // What was asked for this run alone must not colour the next one, which somebody may start by
    // hand over the input.
    RunState& run = view.run;
    if (run.refused && run.noPrompts && run.autoExit) view.ui.StartTimer2(kTimer2Milliseconds);
    run.mode = RunMode::Idle;
    ClearUnattendedFlags(run);
    return false;
}

int RunThreadEntry(CLumoscriptView& view) {
    RunLoop(view);
    const bool aborted = view.run.aborted;
    if (aborted)
        FinishAbortedRun(view);
    else
        FinishRun(view);
    view.ui.RunEnded();
    return aborted ? 1 : 0;
}

void RunBatch(CLumoscriptView& view) {
    if (view.run.batchRunning) {
        view.run.keepRunning = 0;
        return;
    }
    JoinWorker(view);
    if (PrepareBatch(view)) view.run.worker = std::thread([&view] { RunThreadEntry(view); });
}

void JoinWorker(CLumoscriptView& view) {
    if (view.run.worker.joinable()) view.run.worker.join();
}

void OnTimer2(CLumoscriptView& view) {
    if (view.run.autoRun) {
        view.run.autoRun = false;
        RunBatch(view);
    } else {
        view.ui.Quit();
    }
}

}  // namespace lumo::engine
