#include "ops/files/support.h"

#include <utility>

#include "engine/command.h"
#include "io/input.h"
#include "io/run_logs.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace lumo::ops::files {

using engine::CLumoscriptView;

void ReportBlock(CLumoscriptView& view, std::string_view command, const std::string& path,
                 std::string_view text) {
    if (view.run.batchRunning)
        io::LogBlock(view, command, path, text);
    else
        view.ui.ShowMessage(std::string(text).append("\n").append(platform::Printable(path)));
}

bool InputFileExists(const CLumoscriptView& view) {
    const std::string& path = view.input.path;
    if (path == io::kPathBeforeImages || path == io::kPathAfterImages) return false;
    return platform::FileExists(path);
}

void InstallOpened(CLumoscriptView& view, imaging::Image picture) {
    engine::ReplaceMainImage(view, std::move(picture));
    engine::SetFullColour(view);
}

}  // namespace lumo::ops::files
