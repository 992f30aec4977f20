#include "engine/run_loop.h"

#include <string_view>
#include <vector>

#include "engine/dispatch.h"
#include "engine/run_reports.h"
#include "io/input.h"
#include "io/run_logs.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

/// A place of the run list, looked up once for the whole run.
struct Step {
    enum class Kind : std::uint8_t { Command, StartMarker, EndMarker };
    Kind kind = Kind::Command;
    const Command* command = nullptr;
};

std::vector<Step> ResolveSteps(const script::Script& list) {
    std::vector<Step> steps(static_cast<std::size_t>(list.Count()));
    for (int i = 0; i < list.Count(); ++i) {
        const std::string& name = list.NameAt(i);
        Step& step = steps[static_cast<std::size_t>(i)];
        if (name == names::kStartImageLoop)
            step.kind = Step::Kind::StartMarker;
        else if (name == names::kEndImageLoop)
            step.kind = Step::Kind::EndMarker;
        else
            step.command = FindCommand(name);
    }
    return steps;
}

/// The marker at the top of the image loop: the next image, or past the end of the loop.
void TakeNextImage(CLumoscriptView& view) {
    RunState& run = view.run;
    if (run.imageIndex == -1) io::BuildInputList(view);
    if (run.imageIndex >= run.imageCount - 1) {
        run.imageLoopOver = true;
        run.pc = run.endIdx + 1;
        io::SplitInputPath(view, io::kPathAfterImages);
        return;
    }
    ++run.imageIndex;
    switch (io::OpenNextImage(view)) {
        case io::kImageOpened:
            ++run.pc;
            break;
        case io::kImageNotOpened:
        case io::kFileMissing:
            ++run.errorCount;
            break;
        default:
            break;  // filtered: neither an image nor an error
    }
}

}  // namespace

void RunLoop(CLumoscriptView& view) {
    RunState& run = view.run;
    run.inRun = true;
    run.pc = 0;
    run.imageIndex = -1;
    run.imageLoopOver = false;
    io::SplitInputPath(view, io::kPathBeforeImages);
    const std::vector<Step> steps = ResolveSteps(run.list);

    while (run.keepRunning != 0 && run.pc >= 0 && run.pc < run.runCount) {
        const Step& step = steps[static_cast<std::size_t>(run.pc)];
        switch (step.kind) {
            case Step::Kind::StartMarker:
                TakeNextImage(view);
                break;
            case Step::Kind::EndMarker:
                run.pc = run.startIdx;
                break;
            case Step::Kind::Command: {
                const Outcome outcome = ExecuteCommand(view, step.command, run.list.NameAt(run.pc),
                                                       run.list.ParamsAt(run.pc));
                if (outcome == Outcome::Failed) ReportCommandFailure(view);
                break;
            }
        }
    }
    run.inRun = false;
    if (run.pc < 0 || run.pc > run.runCount) ReportFatal(view, run.pc);
    // A run that was refused half-way (a folder that nobody may make) ends without an abort.
    if (run.keepRunning == 0 && !run.refused) {
        run.aborted = true;
        io::LogAbort(view);
    }
    EndOfRun(view);
}

void EndOfRun(CLumoscriptView& view) {
    io::CloseLogs(view);
    view.ui.SetStatus("Done!");
    RunState& run = view.run;
    view.ui.ShowCounts({run.statFiles, run.statInputs, run.statOutputs, run.errorCount});
    run.mode = RunMode::Idle;
    run.list.Clear();
    run.inputList.clear();
}

}  // namespace lumo::engine
