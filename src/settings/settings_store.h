#pragma once

// Where the settings live: settings.toml in the user's configuration folder, read once at start,
// written whole when the program closes, when the preferences close, and in part when a dialog or
// the list editor closes. Each table and value is told in docs/settings.md.
//
// Nothing here asks or shows: what a user should be told comes back as texts, in order. A store
// that cannot be read or written is no obstacle, the settings then have their defaults.

#include <ctime>
#include <string>
#include <vector>

#include "settings/settings.h"

namespace lumo::settings {

enum class StoreAccess {
    ReadAndWrite,
    ReadOnly,  // nothing on disk changes: no folders are made, no file is put aside or emptied
};

using Messages = std::vector<std::string>;

std::string SettingsPath();

/// The start of the program: sets the installation folder and loads; on a first start makes the
/// user's folders and saves.
Messages OpenSettings(Settings& settings, StoreAccess access, std::time_t now);

struct LoadOutcome {
    bool firstBoot = false;  // nothing but users, placements and limits has been read
    Messages messages;
};

/// Reads all values; settings.installFolder is set already. A file that is no settings file is
/// given another name beside its own and reported, and counts as absent. Empties the folder of
/// temporary pictures if the last save is more than eight whole hours ago.
LoadOutcome LoadSettings(Settings& settings, StoreAccess access, std::time_t now);

/// All values become those of a first start. A user's six folders are made and the shipped Scripts,
/// Subroutines, filters and lists copied into them, unless userMode says that this was done before.
/// No file is ever overwritten.
Messages FirstBootSettings(Settings& settings, StoreAccess access);

enum class SaveKind { Normal, FirstBoot };

/// Writes all values, synced; what a newer program or the user put into the file besides stays.
Messages SaveSettings(const Settings& settings, SaveKind kind, std::time_t now);

/// The recent Image lists alone.
void LoadRecentLists(Settings& settings);
Messages SaveRecentLists(const Settings& settings);

/// The placement of the dialogs alone; a failure is silent.
void SaveWindowStates(const Settings& settings);

}  // namespace lumo::settings
