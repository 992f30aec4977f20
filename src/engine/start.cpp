#include "engine/start.h"

#include <ctime>
#include <filesystem>
#include <system_error>
#include <vector>

#include "engine/editing.h"
#include "imaging/pixel_buffer.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "script/names.h"
#include "script/script_file.h"
#include "script/templates.h"
#include "settings/settings_store.h"

namespace lumo::engine {

void StartView(CLumoscriptView& view, SettingsFile settingsFile) {
    const auto access = settingsFile == SettingsFile::ReadOnly
                            ? settings::StoreAccess::ReadOnly
                            : settings::StoreAccess::ReadAndWrite;
    for (const std::string& message :
         settings::OpenSettings(view.settings, access, std::time(nullptr)))
        view.ui.Notice(message);
    if (view.settings.memoryBudgetMegabytes > 0)
        imaging::SetMemoryBudget(static_cast<std::size_t>(view.settings.memoryBudgetMegabytes)
                                 << 20);
    view.run.showEachImage = view.settings.showEachImage;
    view.random.Seed(2);
    view.script.commands = script::NewScript(DefaultParams(view, script::names::kStartImageLoop),
                                             DefaultParams(view, script::names::kOutputSetup));
    view.script.modified = true;  // nothing of it is in a file
}

std::string FindScript(const CLumoscriptView& view, const std::string& stated) {
    if (stated.empty() || platform::GetFileStatus(stated)) return stated;
    std::vector<std::string> folders{""};
    if (stated.find('/') == std::string::npos)
        folders.insert(folders.end(), {platform::AddBackSlash(view.settings.folders.scripts),
                                       view.settings.installFolder + "/Scripts/"});
    for (const std::string& folder : folders)
        for (const std::string_view extension : {"", ".whs"})
            if (std::string path = (folder + stated).append(extension); platform::FileExists(path))
                return path;
    return stated;
}

std::string StatedScriptPath(const CLumoscriptView& view, const std::string& stated) {
    std::string found = FindScript(view, stated);
    if (!platform::FileExists(found))
        found = FindScript(view, platform::ParsePath(stated, view.settings.installFolder,
                                                     view.settings.folders.temp));
    std::error_code failure;
    const auto absolute = std::filesystem::absolute(found, failure);
    return failure ? found : absolute.lexically_normal().string();
}

bool OpenScript(CLumoscriptView& view, const std::string& stated, std::string_view failure) {
    const std::string path = FindScript(view, stated);
    script::Script loaded;
    const auto status = script::LoadScript(
        path, loaded, [&](std::string_view words) { view.ui.ShowMessage(words); });
    if (!status) {
        view.ui.ShowMessage(failure);
        // The words tell neither file nor reason, and on a terminal nobody sees a file dialog.
        if (view.run.noPrompts) view.ui.Notice(status.Message());
        return false;
    }
    script::EnsureMarkers(loaded, DefaultParams(view, script::names::kStartImageLoop));
    TakeUndoCopy(view);
    view.script.commands = std::move(loaded);
    view.script.path = path;
    view.script.caption = script::ScriptCaption(platform::GetFileTitle(path));
    view.script.hasFile = true;
    view.script.modified = false;
    SelectCommand(view, 0);
    return true;
}

}  // namespace lumo::engine
