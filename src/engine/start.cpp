#include "engine/start.h"

#include "imaging/pixel_buffer.h"
#include "platform/environment.h"
#include "platform/paths.h"
#include "script/templates.h"
#include "script/script_file.h"

namespace lumo::engine {
namespace {

constexpr std::size_t kLongestCaption = 30;

std::string CaptionOf(const std::string& path) {
    const std::string title = platform::GetFileTitle(path);
    std::string caption = "Script name: " + title;
    return caption.size() > kLongestCaption ? title : caption;
}

std::string StartDefault(const CLumoscriptView& view) {
    const auto found = view.settings.commandDefaults.find("STARTDef");
    return found == view.settings.commandDefaults.end() ? std::string() : found->second;
}

}  // namespace

void StartView(CLumoscriptView& view, SettingsFile) {
    settings::Settings& settings = view.settings;
    settings.installFolder = platform::InstallFolder();
    const std::string data = platform::DocumentsFolder() + "/Lumoscript";
    settings.folders.logs = data + "/Logs";
    settings.folders.temp = data + "/Temp";
    settings.folders.scripts = data + "/Scripts";
    settings.folders.subroutines = data + "/Subroutines";
    view.random.Seed(2);
}

bool OpenScript(CLumoscriptView& view, const std::string& path) {
    script::Script loaded;
    const auto status = script::LoadScript(
        path, loaded, [&](std::string_view words) { view.ui.ShowMessage(words); });
    if (!status) {
        view.ui.ShowMessage(
            "Unable to find or open named Lumoscript script file (.whs), check file path?");
        return false;
    }
    script::EnsureMarkers(loaded, StartDefault(view));
    view.script.commands = std::move(loaded);
    view.script.path = path;
    view.script.caption = CaptionOf(path);
    view.script.hasFile = true;
    view.script.modified = false;
    view.ui.SelectCommand(0);
    return true;
}

}  // namespace lumo::engine
