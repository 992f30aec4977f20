#include "io/output_setup.h"

#include <array>

#include "io/input.h"
#include "io/output.h"
#include "io/output_path.h"
#include "io/panel_text.h"
#include "io/parse_line.h"
#include "io/run_logs.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::io {
namespace {

using namespace script;
using engine::CLumoscriptView;
using engine::Command;
using engine::Outcome;

constexpr std::string_view kExtensions[] = {"jpg", "bmp", "gif", "pcx", "png",
                                            "tga", "tif", "psd", "wmf", "emf"};
constexpr std::string_view kNameModes[] = {"Use input filename (normal method)",
                                           "Use AutoNumeric numbering",
                                           "Input filename + AutoNumeric", "Neither"};
constexpr std::array kFields{
    Flag("Set ouput folder at runtime", "0"),
    Folder("Output folder", "").MaxLength(255),
    Flag("Save in original folder", "0"),
    Choice("File type", "jpg", kExtensions, kExtensions),
    Reserved("0"),
    Choice("File name", "0", kNameModes),
    Text("Suffix", "").Quoted().MaxLength(40),
    Text("Prefix", "").Quoted().MaxLength(40),
    Flag("Add Incremental output count numbering", "0"),
    Flag("No output - skip this command  (for testing script)", "0"),
    Flag("Allow overwrite of existing file.", "0"),
};
static_assert(kFields.size() == output::kFieldCount);

constexpr std::string_view kNotes[] = {"This may cause input file to be overwritten."};
constexpr ShownWhen kShown[] = {{output::kFolder, output::kOriginalFolder, "0"}};
constexpr DialogSpec kDialog{.title = "Output setup",
                             .windowState = "WS63",
                             .helpTopic = "Outputsetup",
                             .notes = kNotes,
                             .shownWhen = kShown,
                             .notesWhen = {.whenField = output::kOriginalFolder, .text = "1"}};

std::string PanelOf(const Fields& fields) {
    std::string text;
    const auto line = [&text](std::string_view words) { text.append(words) += '\n'; };
    if (fields.Is(output::kSkip, "1"))
        line("No output - skip command");
    else
        line(fields.Is(output::kAtRunTime, "1") ? "Set the folder at runtime"
                                                : "Folder to output images:");
    if (fields.Is(output::kOriginalFolder, "1"))
        line("Use input folder.");
    else if (fields.IsEmpty(output::kFolder))
        line("No folder selected");
    else
        line(ShortenPath(fields.Text(output::kFolder), 29, 25));
    line(fields.Text(output::kExtension));
    if (fields.Is(output::kNameMode, "0")) line("Use Input filename");
    if (fields.Is(output::kNameMode, "1")) line("Use AutoNumeric numbering");
    if (fields.Is(output::kNameMode, "2")) line("Input filename + AutoNumeric");
    if (!fields.IsEmpty(output::kPrefix)) line("Prefix: " + fields.Text(output::kPrefix));
    if (!fields.IsEmpty(output::kSuffix)) line("Suffix: " + fields.Text(output::kSuffix));
    if (fields.Is(output::kIncremental, "1")) line("Add incremental numbering");
    line(fields.Is(output::kOverwrite, "1") ? "Allow overwrite" : "No overwrite");
    return text;
}

/// A warning or error of the saving. These two look at the setting of Error.log alone: an
/// unattended run that forces the log on does not bring them into it. A test on the sample has no
/// logs; whoever started it is there to be told.
void ReportNoOutput(CLumoscriptView& view, const std::string& path, std::string_view text) {
    if (!view.run.batchRunning) {
        if (path.empty()) return;  // that no folder is named was said when it was to be made
        view.ui.ShowMessage(std::string(text).append("\n").append(platform::Printable(path)));
        return;
    }
    const int number = ImageInHand(view);
    if (BatchErrorsOn(view)) LogBatchError(view, number, names::kOutputSetup, path, text);
    if (view.settings.logs.errorLog) LogErrorBlock(view, number, names::kOutputSetup, path, text);
    if (view.run.noPrompts) view.ui.Notice(platform::Printable(path).append(": ").append(text));
}

Outcome SaveFailed(CLumoscriptView& view, const std::string& path) {
    ++view.run.errorCount;
    ReportNoOutput(view, path, "Error:1004 Cmd_63 - Save file failure");
    ShowCounts(view);
    return Outcome::Succeeded;  // the run goes on and counts the error, no failed command
}

Outcome WriteTo(CLumoscriptView& view, const std::string& path, bool overwrite) {
    if (!overwrite && platform::GetFileStatus(path)) {
        ++view.run.warningCount;
        ReportNoOutput(
            view, path,
            "Warning:101 - Output file exists, Output setup command set for no overwrite");
        return Outcome::Succeeded;
    }
    if (WriteMainImage(view, path) == 0) return SaveFailed(view, path);
    if (!view.run.batchRunning) return Outcome::Succeeded;
    ++view.run.statOutputs;
    const int number = view.run.imageIndex + 1;
    if (BatchLogOn(view) && view.settings.logs.outputName) LogOutput(view, number, path);
    if (BatchLogOn(view) && view.settings.logs.outputSize)
        LogOutputSize(view, number, view.working.main.Extent());
    ShowCounts(view);
    return Outcome::Succeeded;
}

Outcome RunOutputSetup(CLumoscriptView& view, const Fields& fields) {
    using engine::RunMode;
    const RunMode mode = view.run.mode;
    if (view.run.inRun && mode != RunMode::Batch && mode != RunMode::Idle)
        return Outcome::Succeeded;
    if (view.run.onLeftImage) return Outcome::Succeeded;
    if (!engine::HasMainImage(view)) return Outcome::Failed;
    if (fields.Is(output::kSkip, "1")) return Outcome::Succeeded;
    if (!view.run.batchRunning && fields.Is(output::kAtRunTime, "1")) return Outcome::Succeeded;

    RefreshInputMembers(view);
    const bool beside = fields.Is(output::kOriginalFolder, "1");
    const std::string folder = platform::AddBackSlash(
        beside ? view.input.folder : ExpandOutputFolder(view, fields.Text(output::kFolder)));
    if (!PrepareOutputFolder(view, folder)) return Outcome::Failed;
    const auto name = BuildOutputName(view, fields);
    if (!name || folder.empty()) return SaveFailed(view, folder);
    return WriteTo(view, folder + *name, fields.Is(output::kOverwrite, "1"));
}

}  // namespace

std::optional<std::string> BuildOutputName(CLumoscriptView& view, const Fields& fields) {
    const std::string& mode = fields.Text(output::kNameMode);
    const auto prefix = ExpandNamePart(view, fields.Text(output::kPrefix));
    const auto suffix = ExpandNamePart(view, fields.Text(output::kSuffix));
    const std::string& extension = fields.Text(output::kExtension);
    if (!prefix || !suffix || HasSeparator(extension)) return std::nullopt;

    std::string name = *prefix;
    if (mode == "0" || mode == "2") name += view.input.title;
    if (mode == "1" || mode == "2") name += AutoNumericText(view);
    name += *suffix;
    if (fields.Is(output::kIncremental, "1")) name += IncrementalText(view);
    return name.append(".").append(extension);
}

const Command kOutputSetupCommand{.spec = {.name = names::kOutputSetup,
                                           .fields = kFields,
                                           .panelText = PanelOf,
                                           .dialog = &kDialog},
                                  .opening = engine::openings::kNoSkipNoImage,
                                  .run = RunOutputSetup};

}  // namespace lumo::io
