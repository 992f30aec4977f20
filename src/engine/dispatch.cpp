#include "engine/dispatch.h"

#include <string>
#include <unordered_map>

#include "engine/command.h"
#include "engine/command_table.h"
#include "imaging/last_error.h"
#include "io/run_logs.h"
#include "script/fields.h"

namespace lumo::engine {
namespace {

const std::unordered_map<std::string_view, const Command*>& CommandsByName() {
    static const auto* const map = [] {
        auto* commands = new std::unordered_map<std::string_view, const Command*>;
        for (const CommandRow& row : CommandTable())
            if (row.command != nullptr) commands->emplace(row.name, row.command);
        return commands;
    }();
    return *map;
}

}  // namespace

const Command* FindCommand(std::string_view name) {
    const auto& commands = CommandsByName();
    const auto found = commands.find(name);
    return found == commands.end() ? nullptr : found->second;
}

Outcome ExecuteCommand(CLumoscriptView& view, std::string_view name, std::string_view params) {
    return ExecuteCommand(view, FindCommand(name), name, params);
}

Outcome ExecuteCommand(CLumoscriptView& view, const Command* command, std::string_view name,
                       std::string_view params) {
    io::LogDebugCommand(view, name, params);
    RunState& run = view.run;
    run.prevPc = run.pc;
    const bool ownFlow = command != nullptr && command->opening.ownFlow;
    // The step to the next command comes first, so that a failure never repeats one.
    if (run.inRun && !ownFlow) run.pc = run.nextPc[static_cast<std::size_t>(run.pc)];
    if (command == nullptr || command->run == nullptr) return Outcome::Failed;

    const Opening& opening = command->opening;
    if ((run.inRun ? opening.skipInRun : opening.skipInTest) && SkipTest(view))
        return Outcome::Succeeded;
    if (opening.needsImage && !HasMainImage(view)) return Outcome::Failed;
    const script::Fields fields = script::ParseParams(params);
    if (ownFlow || !opening.waitCursor) return command->run(view, fields);
    const WaitCursor cursor(view.ui);
    return command->run(view, fields);
}

bool SkipTest(const CLumoscriptView& view) {
    const TestWalk& test = view.test;
    return test.ifFlag == 0 || test.doFlag == 0 || test.exitFlag != 0 || test.subSkip != 0;
}

bool HasMainImage(CLumoscriptView& view) {
    if (!view.working.main.IsEmpty()) return true;
    io::LogEmptyImage(view);
    return false;
}

void OnCommandFailure(CLumoscriptView& view, std::string_view text, LibraryError libraryError) {
    std::string words(text);
    if (libraryError == LibraryError::Append) words += "  IS_error " + imaging::LastError();
    if (!view.run.batchRunning) {
        view.ui.ShowMessage(words);
        return;
    }
    ++view.run.failureReports;
    io::LogLine(view, io::kNoNumber, words);
    if (view.run.noPrompts) view.ui.Notice(words);
}

void ReplaceMainImage(CLumoscriptView& view, imaging::Image image) {
    view.working.main = std::move(image);
    if (!view.run.batchRunning) ShowMainSize(view);
}

void ShowMainSize(CLumoscriptView& view) {
    const imaging::Size size = view.working.main.Extent();
    view.ui.SetSizeText(std::to_string(size.width) + "x" + std::to_string(size.height));
}

void SetFullColour(CLumoscriptView& view) {
    view.working.imageBits = 24;
    view.working.imageBitsForced = 0;
    view.working.grey = false;
}

}  // namespace lumo::engine
