// "Output (temporary)" and "Input (temporary)": the working image is parked in a file, for later in
// the Script, for the next image or for the next run.

#include <algorithm>
#include <array>

#include "engine/sample.h"
#include "imaging/codecs/codec.h"
#include "imaging/last_error.h"
#include "io/input.h"
#include "io/output_path.h"
#include "io/run_logs.h"
#include "ops/files/files_commands.h"
#include "ops/files/slots.h"
#include "ops/files/support.h"
#include "ops/panel_lines.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/names.h"

namespace lumo::ops::files {
namespace {

using namespace engine;
using namespace script;

constexpr std::string_view kSlotNames[] = {"Temp1", "Temp2", "Temp3", "Temp4",
                                           "Temp5", "Temp6", "Temp7", ""};
constexpr std::array kFields{Choice("File name", "0", kSlotNames),
                             Text("Other file name", "").Quoted()};
static_assert(kFields.size() == slot::kFieldCount);

constexpr std::string_view kOutputNotes[] = {"Path to use to input again:"};
constexpr std::string_view kInputNotes[] = {"Path:"};
constexpr DialogSpec kOutputDialog{.title = "Output tempory file - for use later in script",
                                   .helpTopic = "Outputtemporary",
                                   .notes = kOutputNotes,
                                   .line = StatedSlotPath};
constexpr DialogSpec kInputDialog{.title = "Input (temporary) - must be created earlier in script",
                                  .helpTopic = "Inputtemporary",
                                  .notes = kInputNotes,
                                  .line = StatedSlotPath};

std::string PanelOf(const Fields& fields) {
    std::string name = SlotFileName(fields).value_or("");
    name.resize(name.size() - std::min<std::size_t>(name.size(), 4));  // without ".bmp"
    return PanelLines()
        .Line("Reusable - deleted on close")
        .Line("File name: ", name)
        .Line("Path to open again:")
        .Line(StatedSlotPath(fields))
        .Text();
}

enum class Written { Yes, No, NotOpened };

Written WriteTemporaryBMP(const CLumoscriptView& view, const std::string& path) {
    const auto failed = [](const std::string& reason, Written how) {
        imaging::SetLastError(reason);
        return how;
    };
    auto file = platform::AtomicFile::Create(path);
    if (!file) return failed(file.Message(), Written::NotOpened);
    const auto bytes = imaging::codecs::EncodeBmp(view.working.main.View());
    if (!bytes) return failed(bytes.Message(), Written::No);
    if (auto status = file->Write(*bytes); !status) return failed(status.Message(), Written::No);
    const auto status = file->Commit(platform::Durability::Rename);
    return status ? Written::Yes : failed(status.Message(), Written::No);
}

Outcome OutputFailed(CLumoscriptView& view, const std::string& path, std::string_view text) {
    ReportBlock(view, names::kOutputTemporary, path, text);
    return Outcome::Failed;
}

Outcome NotOpened(CLumoscriptView& view) {
    OutputFailed(view, "File write", "Path does not exist");
    // The logs on disk are those of the last run; a test on the sample leaves them alone.
    if (view.run.batchRunning) io::SaveLogs(view);
    return Outcome::Failed;
}

Outcome RunOutputTemporary(CLumoscriptView& view, const Fields& fields) {
    const std::string& folder = view.settings.folders.temp;
    if (folder.empty() ||
        (!platform::GetFileStatus(folder + "/.") && io::CreateFolderPath(view, folder) == 0))
        return OutputFailed(view, folder, "Error:1036 - Path to Temp folder does not exist");
    const auto path = SlotPath(view.settings, fields);
    if (!path) return NotOpened(view);
    switch (WriteTemporaryBMP(view, *path)) {
        case Written::Yes:
            return Outcome::Succeeded;
        case Written::NotOpened:
            return NotOpened(view);
        case Written::No:
            break;
    }
    return OutputFailed(view, *path, "Error:1037 - Save Temp file failure");
}

// Each log has a number of its own, by which old logs can be told apart.
void LogOpenFailure(CLumoscriptView& view, const std::string& path) {
    constexpr std::string_view kBatchText = "Error:L8394 - Open Temp file failure";
    constexpr std::string_view kErrorText = "Error:L8398 - Open Temp file failure";
    const int number = io::ImageInHand(view);
    if (io::BatchErrorsOn(view))
        io::LogBatchError(view, number, names::kInputTemporary, path, kBatchText);
    if (io::ErrorLogOn(view))
        io::LogErrorBlock(view, number, names::kInputTemporary, path, kErrorText);
    if (view.run.noPrompts)
        view.ui.Notice(platform::Printable(path).append(": ").append(kErrorText));
}

Outcome RunInputTemporary(CLumoscriptView& view, const Fields& fields) {
    view.working.main.Reset();
    const auto path = SlotPath(view.settings, fields);
    auto opened = path ? io::OpenImageFile(view, *path) : std::nullopt;
    if (opened) {
        InstallOpened(view, std::move(opened->image));
        return Outcome::Succeeded;
    }
    if (view.run.batchRunning) {
        LogOpenFailure(view, path.value_or(""));
    } else {
        ReportBlock(view, names::kInputTemporary, path.value_or(""),
                    "Error:L8394 - Open Temp file failure");
        CopyLeftToMain(view, Force::No);
    }
    return Outcome::Failed;
}

}  // namespace

const Command kOutputTemporaryCommand{.spec = {.name = names::kOutputTemporary,
                                               .fields = kFields,
                                               .panelText = PanelOf,
                                               .dialog = &kOutputDialog},
                                      .opening = openings::kStandard,
                                      .run = RunOutputTemporary};

const Command kInputTemporaryCommand{.spec = {.name = names::kInputTemporary,
                                              .fields = kFields,
                                              .panelText = PanelOf,
                                              .dialog = &kInputDialog},
                                     .opening = openings::kNoImage,
                                     .run = RunInputTemporary};

}  // namespace lumo::ops::files
