#include <array>
#include <filesystem>
#include <utility>

#include "platform/files.h"
#include "platform/paths.h"
#include "settings/command_defaults.h"
#include "settings/settings_fields.h"
#include "settings/settings_store.h"

namespace lumo::settings {
namespace {

constexpr int kFolderForEachUser = 2;

// As the folders of an Output setup are made, with its words.
void MakeFolder(const std::string& folder, Messages& messages) {
    const platform::Status made = platform::MakeFolders(folder);
    if (made) return;
    const bool inTheWay = platform::FileExists(folder);
    messages.emplace_back(inTheWay ? "error 9755 in creating directory"
                                   : " failed to create folder, invalid_handle2");
    messages.push_back(made.Message());
}

bool IsAnythingAt(const std::string& path) {
    std::error_code ignored;
    return std::filesystem::symlink_status(path, ignored).type() !=
           std::filesystem::file_type::not_found;
}

// Plain files only, none from folders below, and silently: what does not come over is missing from
// the user's folder and can still be opened where it shipped.
void CopyShipped(const std::string& from, const std::string& to) {
    for (const platform::FolderEntry& entry : platform::ListFolder(from)) {
        const std::string target = platform::AddBackSlash(to) + entry.name;
        if (entry.isFolder || IsAnythingAt(target)) continue;
        if (const auto bytes = platform::ReadFile(platform::AddBackSlash(from) + entry.name)) {
            (void)platform::WriteFile(target, *bytes);
        }
    }
}

void MakeUserFolders(const Settings& settings, Messages& messages) {
    const Folders& folders = settings.folders;
    for (const std::string* folder :
         {&folders.scripts, &folders.subroutines, &folders.customFilters, &folders.lists,
          &folders.logs, &folders.temp}) {
        MakeFolder(*folder, messages);
    }
    for (const auto& [name, folder] : {std::pair{"/Scripts", &folders.scripts},
                                       {"/Subroutines", &folders.subroutines},
                                       {"/CustomFilters", &folders.customFilters},
                                       {"/Lists", &folders.lists},
                                       {"/Logs", &folders.logs}}) {
        CopyShipped(settings.installFolder + name, *folder);
    }
}

}  // namespace

Messages FirstBootSettings(Settings& settings, StoreAccess access) {
    ReadFields(Document(), settings);
    SetFirstBootDefaults(settings);
    Messages messages;
    if (settings.userMode != kFolderForEachUser) {
        settings.userMode = kFolderForEachUser;
        if (access == StoreAccess::ReadAndWrite) MakeUserFolders(settings, messages);
    }
    return messages;
}

}  // namespace lumo::settings
