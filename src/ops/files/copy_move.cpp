// "Copy/Move": files the input file away, whatever became of the picture that was read from it.

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <optional>

#include "imaging/last_error.h"
#include "io/input.h"
#include "io/output_path.h"
#include "io/panel_text.h"
#include "ops/files/files_commands.h"
#include "ops/files/support.h"
#include "ops/panel_lines.h"
#include "platform/file_transfer.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

using namespace engine;
using namespace script;
using platform::Existing;

enum Field { kOperation, kFolder, kNameMode, kPrefix, kSuffix, kOverwrite };

constexpr std::string_view kCopy = "1";  // anything else moves
constexpr std::string_view kOperations[] = {"Copy", "Move"};
constexpr std::string_view kOperationTexts[] = {"1", "0"};
constexpr std::string_view kNameModes[] = {"Use Input filename", "Use AutoNumeric numbering",
                                           "Input filename + AutoNumeric"};
constexpr std::array kFields{
    Choice("Operation", "1", kOperations, kOperationTexts),
    Folder("Image folder", "").BrowseTitle("Choose image folder for copy/move."),
    Choice("File name", "0", kNameModes),
    Text("Prefix", "").Quoted(),
    Text("Suffix", "").Quoted(),
    Flag("Allow overwrite", "1"),
};

std::string_view QuestionOf(const Fields& fields) {
    if (!fields.IsEmpty(kFolder)) return {};
    return "Warning, no output folder specified. Continue anyway?";
}

constexpr DialogSpec kDialog{.title = "Copy - Move (original image file)",
                             .windowState = "WS20",
                             .helpTopic = "Copymove",
                             .question = QuestionOf};

std::string_view NameLine(const Fields& fields) {
    if (fields.Is(kNameMode, "0")) return kNameModes[0];
    return fields.Is(kNameMode, "2") ? kNameModes[2] : kNameModes[1];
}

std::string PanelOf(const Fields& fields) {
    const bool copy = fields.Is(kOperation, kCopy);
    PanelLines lines;
    lines.Line(copy ? "Copy" : "Move");
    lines.Line(copy ? "Folder to copy image file:" : "Folder to move image file:");
    lines.Line(fields.IsEmpty(kFolder) ? "No folder selected"
                                       : io::ShortenPath(fields.Text(kFolder), 29, 25));
    lines.Line(NameLine(fields));
    if (!fields.IsEmpty(kPrefix)) lines.Line("Prefix: ", fields.Text(kPrefix));
    if (!fields.IsEmpty(kSuffix)) lines.Line("Suffix: ", fields.Text(kSuffix));
    lines.Line(fields.Is(kOverwrite, "1") ? "Allow overwrite" : "No overwrite");
    return lines.Text();
}

/// None if a typed part holds a separator: the file would leave its folder.
std::optional<std::string> BuildTargetName(const CLumoscriptView& view, const Fields& fields) {
    const auto prefix = io::ExpandNamePart(view, fields.Text(kPrefix));
    const auto suffix = io::ExpandNamePart(view, fields.Text(kSuffix));
    if (!prefix || !suffix) return std::nullopt;
    std::string name = *prefix;
    if (fields.Is(kNameMode, "0") || fields.Is(kNameMode, "2")) name += view.input.title;
    if (!fields.Is(kNameMode, "0")) name += io::AutoNumericText(view);
    return name.append(*suffix).append(view.input.extension);
}

Outcome Warn(CLumoscriptView& view, const std::string& path, std::string_view text) {
    ++view.run.warningCount;
    ReportBlock(view, names::kCopyMove, path, text);
    io::ShowCounts(view);
    return Outcome::Failed;
}

Outcome WarnExists(CLumoscriptView& view, const std::string& target) {
    return Warn(view, target, "Warning:1123 Cmd_20 - Copy/move to file exists, no overwrite");
}

Outcome ShellFailure(CLumoscriptView& view, const platform::Error& error) {
    imaging::SetLastError(error.message);
    OnCommandFailure(view, fmt::format("Cmd_20 Copy 27352: shell error {}", error.number),
                     LibraryError::Append);
    io::ShowCounts(view);
    return Outcome::Failed;
}

Outcome CopyOrMove(CLumoscriptView& view, const std::string& target, const Fields& fields) {
    const Existing existing = fields.Is(kOverwrite, "1") ? Existing::Replace : Existing::Keep;
    if (existing == Existing::Keep && platform::GetFileStatus(target))
        return WarnExists(view, target);
    const bool copy = fields.Is(kOperation, kCopy);
    const auto done = copy ? platform::CopyFile(view.input.path, target, existing)
                           : platform::MoveFile(view.input.path, target, existing);
    if (!done) {
        // Something may have taken the name since; a link that leads nowhere has it as well.
        const bool taken = existing == Existing::Keep && done.Reason().number == EEXIST;
        return taken ? WarnExists(view, target) : ShellFailure(view, done.Reason());
    }
    io::ShowCounts(view);
    return Outcome::Succeeded;
}

Outcome RunCopyMove(CLumoscriptView& view, const Fields& fields) {
    if (view.run.onLeftImage || view.run.mode == RunMode::BatchOnSample) return Outcome::Succeeded;
    if (!HasMainImage(view)) return Outcome::Failed;
    io::RefreshInputMembers(view);
    if (!InputFileExists(view))
        return Warn(view, view.input.path,
                    "Warning:1125 Cmd_20 - Original file no longer exists (Delete/Move?)");
    const std::string folder =
        platform::AddBackSlash(io::ExpandOutputFolder(view, fields.Text(kFolder)));
    // A zero byte would cut the path short on its way to the file system.
    if (folder.find('\0') != std::string::npos)
        return ShellFailure(view, {"A path cannot hold a zero byte", EINVAL});
    if (!io::PrepareOutputFolder(view, folder)) return Outcome::Failed;
    const auto name = BuildTargetName(view, fields);
    if (folder.empty()) return ShellFailure(view, {"No folder for the copy or move", ENOENT});
    if (!name) return ShellFailure(view, {"A name cannot hold a separator of folders", EINVAL});
    return CopyOrMove(view, folder + *name, fields);
}

}  // namespace

const Command kCopyMoveCommand{
    .spec = {.name = names::kCopyMove, .fields = kFields, .panelText = PanelOf, .dialog = &kDialog},
    .opening = openings::kNoImage,
    .run = RunCopyMove};

}  // namespace lumo::ops::files
