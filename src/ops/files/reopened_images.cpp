// "Input fixed image" and "Reload image file": the working image is read anew, from a named file or
// from the input. The input file in hand and what was read of its metadata stay as they are.

#include <array>

#include "engine/sample.h"
#include "io/input.h"
#include "io/panel_text.h"
#include "io/run_logs.h"
#include "ops/files/files_commands.h"
#include "ops/files/support.h"
#include "ops/panel_lines.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

using namespace engine;
using namespace script;

constexpr int kPath = 0;
constexpr std::array kFields{Path("Image file:", "")};
constexpr DialogSpec kDialog{
    .title = "Input fixed image file", .windowState = "WS51", .helpTopic = "Inputfixedimage"};

std::string PanelOf(const Fields& fields) {
    const std::string& path = fields.Text(kPath);
    return PanelLines()
        .Line("Image file to open:")
        .Line(path.empty() ? "No image selected" : io::ShortenPath(path, 29, 25))
        .Text();
}

Outcome RunInputFixed(CLumoscriptView& view, const Fields& fields) {
    view.working.main.Reset();
    auto opened = io::OpenImageFile(view, io::NativePath(view, fields.Text(kPath)));
    if (!opened) {
        OnCommandFailure(
            view, "Cmd_51 Input fixed image: open file failure L15359: ", LibraryError::Append);
        return Outcome::Failed;
    }
    InstallOpened(view, std::move(opened->image));
    return Outcome::Succeeded;
}

Outcome RunReload(CLumoscriptView& view, const Fields&) {
    if (view.run.onLeftImage || !view.run.batchRunning) {
        CopyLeftToMain(view, view.run.onLeftImage ? Force::Yes : Force::No);
        SetFullColour(view);
        return Outcome::Succeeded;
    }
    view.working.main.Reset();
    auto opened = InputFileExists(view) ? io::OpenImageFile(view, view.input.path) : std::nullopt;
    SetFullColour(view);
    if (opened) {
        ReplaceMainImage(view, std::move(opened->image));
    } else {
        io::LogBlock(view, "Cmd_65 Reload", "Reload failed", "Image not found?");
        io::SaveLogs(view);
    }
    io::ShowCounts(view);
    return ToOutcome(opened.has_value());
}

}  // namespace

const Command kInputFixedImageCommand{.spec = {.name = names::kInputFixedImage,
                                               .fields = kFields,
                                               .panelText = PanelOf,
                                               .dialog = &kDialog},
                                      .opening = openings::kNoImage,
                                      .run = RunInputFixed};

const Command kReloadImageFileCommand{
    .spec = {.name = names::kReloadImageFile}, .opening = openings::kNoImage, .run = RunReload};

}  // namespace lumo::ops::files
