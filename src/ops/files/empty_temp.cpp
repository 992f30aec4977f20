#include "ops/files/empty_temp.h"

#include <string>
#include <vector>

#include "io/input.h"
#include "io/output.h"
#include "io/output_path.h"
#include "io/start_setup.h"
#include "platform/paths.h"
#include "script/names.h"
#include "settings/temp_slots.h"

namespace lumo::ops::files {
namespace {

using engine::CLumoscriptView;
namespace names = script::names;

constexpr int kCopyMoveFolder = 1;  // field of "Copy/Move"

/// The folders that the Script at hand reads pictures from and puts them into.
std::vector<std::string> FoldersInUse(const CLumoscriptView& view) {
    std::vector<std::string> folders{platform::GetFolderPath(view.sample.path), view.input.folder};
    const script::Script& commands = view.script.commands;
    for (int i = 0; i < commands.Count(); ++i) {
        const std::string& name = commands.NameAt(i);
        const script::Fields fields = script::ParseParams(commands.ParamsAt(i));
        if (name == names::kStartImageLoop)
            folders.push_back(io::NativePath(view, fields.Text(io::start::kFolderPath)));
        if (name == names::kOutputSetup)
            folders.push_back(io::ExpandOutputFolder(view, fields.Text(io::output::kFolder)));
        if (name == names::kCopyMove)
            folders.push_back(io::ExpandOutputFolder(view, fields.Text(kCopyMoveFolder)));
    }
    return folders;
}

}  // namespace

bool EmptyTempFolderNow(CLumoscriptView& view) {
    const bool emptied =
        !view.run.batchRunning && settings::EmptyTempFolder(view.settings, FoldersInUse(view));
    view.ui.Play(emptied ? engine::Sound::Recycle : engine::Sound::Asterisk);
    return emptied;
}

}  // namespace lumo::ops::files
