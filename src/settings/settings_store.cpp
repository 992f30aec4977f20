#include "settings/settings_store.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>

#include "platform/environment.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "settings/settings_fields.h"
#include "settings/temp_slots.h"

namespace lumo::settings {
namespace {

namespace fs = std::filesystem;
using platform::Durability;
using platform::Status;

constexpr std::uint64_t kMaxFileBytes = std::uint64_t{4} << 20;
constexpr std::string_view kHead =
    "# Settings of Lumoscript. The program writes this file anew when it closes.\n\n";

// What is said of each table that cannot be written, in the order of saving.
constexpr std::array<std::string_view, 6> kWriteErrors{
    "registry write error_2679",  // 1.0
    "registry write error_2677",  // its Logs
    "registry write error_2677",  // Settings, under the same number
    "registry write error_2697",  // Dialogs
    "registry write error_2675",  // MRU
    "registry write error_2676",  // Cmds
};
constexpr std::string_view kListsWriteError = "registry write error_2675a";

// The file itself where the settings are a link, as in a kept folder of a user's dot files.
std::string FileBehind(const std::string& path) {
    std::error_code failed;
    const fs::path real = fs::canonical(path, failed);
    return failed ? path : real.string();
}

// A name beside the file that nothing has yet; empty if it could not be moved there.
std::string PutAside(const std::string& file) {
    constexpr int kMostKept = 1000;
    for (int n = 1; n <= kMostKept; ++n) {
        const std::string aside = n == 1 ? file + ".broken" : fmt::format("{}.broken-{}", file, n);
        std::error_code ignored;
        if (fs::symlink_status(aside, ignored).type() != fs::file_type::not_found) continue;
        if (platform::RenameNoReplace(file, aside)) return aside;
    }
    return {};
}

struct Stored {
    Document document;
    bool replaceable = true;  // false: a file that we cannot read stands there
    Messages messages;
};

Stored ReadStore(StoreAccess access) {
    Stored stored;
    const std::string file = FileBehind(SettingsPath());
    if (!platform::GetFileStatus(file)) return stored;
    std::string reason;
    if (const auto text = platform::ReadTextFile(file, kMaxFileBytes)) {
        auto document = ParseDocument(*text);
        if (document) {
            stored.document = *std::move(document);
            return stored;
        }
        reason = platform::Printable(file) + ": " + platform::Printable(document.Message());
    } else {
        reason = text.Message();
    }
    const bool plain = platform::FileExists(file);
    const std::string aside =
        access == StoreAccess::ReadAndWrite && plain ? PutAside(file) : std::string();
    stored.replaceable = !aside.empty();
    std::string told = "The settings cannot be read, and defaults are used. " + reason;
    if (!aside.empty()) told += " The file is kept as " + platform::Printable(aside);
    stored.messages.push_back(std::move(told));
    return stored;
}

using Change = std::function<Document(const Document& before)>;

// Reads, changes and writes. What is read is only what another program may have added since.
Messages UpdateStore(const Change& change, std::span<const std::string_view> failureTexts) {
    Stored stored = ReadStore(StoreAccess::ReadAndWrite);
    Messages messages = std::move(stored.messages);
    const std::string path = SettingsPath();
    const Status folder = platform::MakeFolders(platform::GetFolderPath(path));
    Status written = folder;
    if (folder && stored.replaceable) {
        const std::string text = std::string(kHead) + change(stored.document).Text();
        written = platform::WriteTextFile(FileBehind(path), text, Durability::Sync);
    }
    if (written && stored.replaceable) return messages;
    messages.insert(messages.end(), failureTexts.begin(), failureTexts.end());
    if (!written) messages.push_back(written.Message());
    return messages;
}

}  // namespace

std::string SettingsPath() {
    return platform::ConfigFolder() + "/settings.toml";
}

Messages OpenSettings(Settings& settings, StoreAccess access, std::time_t now) {
    settings.installFolder = platform::InstallFolder();
    LoadOutcome loaded = LoadSettings(settings, access, now);
    Messages messages = loaded.messages;
    if (!loaded.firstBoot) return messages;
    const auto append = [&](const Messages& more) {
        for (const std::string& text : more) {
            // A file that can be neither read nor put aside was told of when it was loaded.
            const auto& told = loaded.messages;
            if (std::find(told.begin(), told.end(), text) == told.end()) messages.push_back(text);
        }
    };
    append(FirstBootSettings(settings, access));
    if (access == StoreAccess::ReadAndWrite) {
        append(SaveSettings(settings, SaveKind::FirstBoot, now));
    }
    return messages;
}

LoadOutcome LoadSettings(Settings& settings, StoreAccess access, std::time_t now) {
    Stored stored = ReadStore(access);
    LoadOutcome outcome{.messages = std::move(stored.messages)};
    const Document& document = stored.document;
    ReadUsers(document, settings);
    ReadWindowsAndLimits(document, settings);
    if (!IsSaved(document)) {
        outcome.firstBoot = true;
        return outcome;
    }
    ReadFields(document, settings);
    if (access == StoreAccess::ReadAndWrite && AreSlotsStale(LastSave(document, now), now)) {
        (void)EmptyTempFolder(settings, {});
    }
    return outcome;
}

Messages SaveSettings(const Settings& settings, SaveKind kind, std::time_t now) {
    const SaveStamp stamp{.moment = now, .firstBoot = kind == SaveKind::FirstBoot};
    return UpdateStore([&](const Document& before) { return WriteFields(settings, before, stamp); },
                       kWriteErrors);
}

void LoadRecentLists(Settings& settings) {
    ReadRecentLists(ReadStore(StoreAccess::ReadOnly).document, settings);
}

Messages SaveRecentLists(const Settings& settings) {
    return UpdateStore([&](const Document& before) { return WriteRecentLists(settings, before); },
                       std::span(&kListsWriteError, 1));
}

void SaveWindowStates(const Settings& settings) {
    (void)UpdateStore([&](const Document& before) { return WriteWindows(settings, before); }, {});
}

}  // namespace lumo::settings
