#include "engine/preprocess.h"

#include <algorithm>
#include <array>
#include <string>

#include "engine/block_checks.h"
#include "engine/branch_tables.h"
#include "engine/run_reports.h"
#include "engine/subroutines.h"
#include "io/output.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

int FindFrom(const script::Script& list, std::string_view name, int from) {
    for (int i = from; i < list.Count(); ++i)
        if (list.NameAt(i) == name) return i;
    return -1;
}

void NoteMarkers(RunState& run) {
    run.startIdx = run.list.Find(names::kStartImageLoop);
    run.endIdx = run.list.Find(names::kEndImageLoop);
    run.runCount = run.list.Count();
}

/// Adds commands to a run list, but no "Script info": it is a comment, and what stands around it,
/// as an IF_END and its ELSE_START, belongs together.
void AddWithoutComments(const script::Script& commands, script::Script& list) {
    for (int i = 0; i < commands.Count(); ++i)
        if (commands.NameAt(i) != names::kScriptInfo)
            list.Add(commands.NameAt(i), commands.ParamsAt(i));
}

bool LoadSubroutine(CLumoscriptView& view, const std::string& name) {
    const settings::Settings& settings = view.settings;
    const std::array<std::string, 3> folders{settings.folders.subroutines, settings.folders.scripts,
                                             settings.installFolder + "/Subroutines"};
    script::Script read;
    const bool loaded = std::ranges::any_of(folders, [&](const std::string& folder) {
        return AppendSubroutineFrom(folder, name, settings, read);
    });
    AddWithoutComments(read, view.run.list);
    return loaded;
}

/// What is wrong with the markers, or an empty text. The tables need one of each, in order.
std::string_view MarkerFault(const RunState& run) {
    if (run.startIdx < 0) return "No 'START Image loop (setup)'. Not a batch script. No batching.";
    if (run.endIdx < 0) return "Preprocessing error: no 'END image loop' in script";
    if (FindFrom(run.list, names::kStartImageLoop, run.startIdx + 1) >= 0)
        return "Preprocessing error: more than one 'START image loop (setup)' in script";
    if (FindFrom(run.list, names::kEndImageLoop, run.endIdx + 1) >= 0)
        return "Preprocessing error: more than one 'END image loop' in script";
    if (run.endIdx < run.startIdx)
        return "Preprocessing error: 'END image loop' before 'START image loop (setup)'";
    return {};
}

/// The five checks, all of them, so that one run tells all its faults; their results are looked at
/// together.
bool CheckBlockStructure(CLumoscriptView& view) {
    bool told = false;
    const FaultSink fault = [&](std::string_view line) {
        told = true;
        ReportFault(view, line);
    };
    const RunList list{view.run.list, view.run.startIdx, view.run.endIdx};
    bool ok = CheckLoops(list, fault);
    ok = CheckDoWhile(list, fault) && ok;
    ok = CheckIf(list, fault) && ok;
    ok = CheckElse(list, fault) && ok;
    ok = CheckSubroutines(list, fault) && ok;
    // Some faults have no line in the log; nobody should have to guess at them.
    if (!ok && !told)
        view.ui.Notice(
            "The Script was refused: a first-file or last-file IF outside of the image loop, or an "
            "ELSE_START that does not follow its IF_END.");
    return ok;
}

}  // namespace

void FillRunList(CLumoscriptView& view) {
    RunState& run = view.run;
    run.list.Clear();
    AddWithoutComments(view.script.commands, run.list);
    NoteMarkers(run);
    run.startIdxBefore = run.startIdx;
    run.endIdxBefore = run.endIdx;
}

bool LoadCalledSubroutines(CLumoscriptView& view) {
    RunState& run = view.run;
    bool allFound = true;
    for (int i = 0; i < run.list.Count() && run.list.Count() <= kMaxRunCommands; ++i) {
        if (run.list.NameAt(i) != names::kSubroutineExecute) continue;
        const std::string name = SubroutineNameAt(run.list, i);
        if (FindSubroutine(run.list, name, 0) >= 0 || LoadSubroutine(view, name)) continue;
        allFound = false;
        ReportFault(view, "Preprocessing error: Unable to load called subroutine; " + name);
    }
    return allFound;
}

bool SubroutineOutputLeftOpen(const CLumoscriptView& view) {
    if (view.run.onLeftImage) return false;
    const script::Script& list = view.run.list;
    for (int i = 0; i < list.Count(); ++i)
        if (list.NameAt(i) == names::kOutputSetup && io::OutputFolderLeftOpen(list.ParamsAt(i)))
            return true;
    return false;
}

bool PreprocessRun(CLumoscriptView& view) {
    RunState& run = view.run;
    if (const std::string_view fault = MarkerFault(run); !fault.empty()) {
        ReportFault(view, fault);
        return false;
    }
    const bool loaded = LoadCalledSubroutines(view);
    NoteMarkers(run);
    if (run.runCount > kMaxRunCommands) {
        ReportFault(view, "Preprocessing error: more than " + std::to_string(kMaxRunCommands) +
                              " commands in script and subroutines");
        return false;
    }
    const bool blocksInOrder = CheckBlockStructure(view);
    if (!loaded || !blocksInOrder) return false;
    if (SubroutineOutputLeftOpen(view)) {
        constexpr std::string_view kText =
            "In subroutine 'Output setup' command(s) you must uncheck 'Set at runtime' and set the "
            "output folder. Then run again";
        ReportRefusal(view, kText, kText);
        return false;
    }
    BuildTables({run.list, run.startIdxBefore, run.endIdxBefore}, run.nextPc, run.branchPc);
    run.loopsAround = LoopsAroundCalls(run.list);
    run.stack.fill(0);
    run.stack[0] = -1;
    run.stackIndex = 0;
    return true;
}

}  // namespace lumo::engine
