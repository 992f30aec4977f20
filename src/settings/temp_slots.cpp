#include "settings/temp_slots.h"

#include <vector>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/temp_folder.h"
#include "script/fields.h"
#include "settings/settings_fields.h"

namespace lumo::settings {
namespace {

// Where the default parameter strings keep the folder of an input or output.
constexpr int kInputFolderField = 2;
constexpr int kOutputFolderField = 1;
constexpr int kCopyFolderField = 1;

std::string DefaultFolder(const Settings& settings, std::string_view key, int field) {
    const auto found = settings.commandDefaults.find(key);
    if (found == settings.commandDefaults.end()) return {};
    return NativePath(settings, script::ParseParams(found->second).Text(field));
}

}  // namespace

bool AreSlotsStale(std::time_t lastSave, std::time_t now) {
    constexpr std::time_t kHour = 3600;
    constexpr std::time_t kWholeHours = 8;
    if (lastSave < 0 || lastSave > now) return false;
    return (now - lastSave) / kHour > kWholeHours;
}

platform::Result<int> EmptyTempFolder(const Settings& settings,
                                      std::span<const std::string> alsoNever) {
    const Folders& folders = settings.folders;
    std::vector<std::string> never{folders.photos,
                                   folders.scripts,
                                   folders.subroutines,
                                   folders.masks,
                                   folders.frames,
                                   folders.customFilters,
                                   folders.lists,
                                   folders.overlays,
                                   folders.logs,
                                   settings.lastInFolder,
                                   settings.lastOutFolder,
                                   settings.installFolder,
                                   DataFolder(settings),
                                   platform::HomeFolder(),
                                   platform::DocumentsFolder(),
                                   DefaultFolder(settings, "STARTDef", kInputFolderField),
                                   DefaultFolder(settings, "OutlocDef", kOutputFolderField),
                                   DefaultFolder(settings, "Copy", kCopyFolderField)};
    never.insert(never.end(), alsoNever.begin(), alsoNever.end());

    const auto own = platform::FolderIdentity(DataFolder(settings) + "/Temp");
    const bool isOwn = own && own == platform::FolderIdentity(folders.temp);
    return platform::EmptyTempFolder(
        folders.temp, isOwn ? platform::TempSlots::AllBmp : platform::TempSlots::Numbered, never);
}

}  // namespace lumo::settings
