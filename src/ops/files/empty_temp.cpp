#include "ops/files/empty_temp.h"

#include <string>
#include <vector>

#include "io/input.h"
#include "io/output.h"
#include "io/output_path.h"
#include "platform/paths.h"
#include "script/names.h"
#include "settings/temp_slots.h"

namespace lumo::ops::files {
namespace {

using engine::CLumoscriptView;
namespace names = script::names;

constexpr int kCopyMoveFolder = 1;  // field of "Copy/Move"

/// The folders that the Script at hand names, and those of the sample and the input.
std::vector<std::string> FoldersInUse(const CLumoscriptView& view) {
    std::vector<std::string> folders{platform::GetFolderPath(view.sample.path), view.input.folder};
    const script::Script& commands = view.script.commands;
    for (int i = 0; i < commands.Count(); ++i) {
        const std::string& name = commands.NameAt(i);
        const script::Fields fields = script::ParseParams(commands.ParamsAt(i));
        for (int field = 0; field < script::Fields::kSlots; ++field)
            if (!fields.IsEmpty(field)) folders.push_back(io::NativePath(view, fields.Text(field)));
        // These have forms of their own, such as the folder of the input.
        if (name == names::kOutputSetup)
            folders.push_back(io::ExpandOutputFolder(view, fields.Text(io::output::kFolder)));
        if (name == names::kCopyMove)
            folders.push_back(io::ExpandOutputFolder(view, fields.Text(kCopyMoveFolder)));
    }
    return folders;
}

}  // namespace

platform::Result<int> EmptyTempFolderNow(CLumoscriptView& view) {
    platform::Result<int> emptied =
        view.run.batchRunning ? platform::Error{"A run may need the temporary images."}
                              : settings::EmptyTempFolder(view.settings, FoldersInUse(view));
    view.ui.Play(emptied ? engine::Sound::Recycle : engine::Sound::Asterisk);
    return emptied;
}

}  // namespace lumo::ops::files
