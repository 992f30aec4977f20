// "Delete input file": to the trash of the desktop, or for good.

#include <fmt/format.h>

#include <array>
#include <cerrno>

#include "ops/files/files_commands.h"
#include "ops/files/support.h"
#include "ops/panel_lines.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/trash.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

using namespace engine;
using namespace script;

enum Field { kNoConfirmation, kUndo };

constexpr std::array kFields{
    Flag("No confirmation", "1"),
    Flag("Allow for undo (file sent to recycle bin)", "1"),
};
constexpr std::string_view kConfirmationLines[] = {"Ask before deleting", "No confirmation"};
constexpr std::string_view kUndoLines[] = {"Delete for good", "File sent to recycle bin"};
constexpr DialogSpec kDialog{.title = "Delete input file", .helpTopic = "Deleteinputfile"};

std::string PanelOf(const Fields& fields) {
    return PanelLines()
        .Line(kConfirmationLines[fields.Is(kNoConfirmation, "1") ? 1 : 0])
        .Line(kUndoLines[fields.Is(kUndo, "1") ? 1 : 0])
        .Text();
}

bool IsConfirmed(CLumoscriptView& view, const Fields& fields) {
    if (fields.Is(kNoConfirmation, "1") || view.run.noPrompts) return true;
    const std::string path = platform::Printable(view.input.path);
    return view.ui.Ask(fields.Is(kUndo, "1") ? "Send this file to the recycle bin?\n" + path
                                             : "Delete this file for good?\n" + path);
}

Outcome RunDeleteInput(CLumoscriptView& view, const Fields& fields) {
    const RunMode mode = view.run.mode;
    if (mode == RunMode::OneCommand || mode == RunMode::WholeScript ||
        mode == RunMode::BatchOnSample || view.run.onLeftImage)
        return Outcome::Succeeded;

    int reason = ENOENT;
    if (InputFileExists(view)) {
        if (!IsConfirmed(view, fields)) return Outcome::Succeeded;
        const std::string& path = view.input.path;
        const auto deleted =
            fields.Is(kUndo, "1") ? platform::MoveToTrash(path) : platform::RemoveFile(path);
        if (deleted) return Outcome::Succeeded;
        reason = deleted.Reason().number;
    }
    OnCommandFailure(view, fmt::format("Cmd_25 Delete 4438: shell error {}", reason),
                     LibraryError::Omit);
    return Outcome::Failed;
}

}  // namespace

const Command kDeleteInputFileCommand{.spec = {.name = names::kDeleteInputFile,
                                               .fields = kFields,
                                               .panelText = PanelOf,
                                               .dialog = &kDialog},
                                      .opening = openings::kNoImage,
                                      .run = RunDeleteInput};

}  // namespace lumo::ops::files
