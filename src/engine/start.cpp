#include "engine/start.h"

#include <ctime>

#include "engine/editing.h"
#include "imaging/pixel_buffer.h"
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

bool OpenScript(CLumoscriptView& view, const std::string& path, std::string_view failure) {
    script::Script loaded;
    const auto status = script::LoadScript(
        path, loaded, [&](std::string_view words) { view.ui.ShowMessage(words); });
    if (!status) {
        view.ui.ShowMessage(failure);
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
