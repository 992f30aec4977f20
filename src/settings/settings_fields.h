#pragma once

// Every value of the settings file: its table, its name, its default, in the order of saving.
// No file is touched here.

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>

#include "settings/settings.h"
#include "settings/settings_document.h"

namespace lumo::settings {

/// A text is read up to this many bytes; older programs read it into a buffer of 256. A longer one
/// is written whole.
inline constexpr std::size_t kMaxTextBytes = 255;

/// The folder that holds a user's own files: the stated one of several users, else Lumoscript in
/// the documents folder.
std::string DataFolder(const Settings& settings);

/// A stored path as a native one: tokens replaced; "\" separates only where no "/" does, so that
/// the name of a file may hold one.
std::string NativePath(const Settings& settings, std::string_view stated);

/// Which folder holds the data of users; table "Multiuser". Absent values leave members alone.
void ReadUsers(const Document& document, Settings& settings);
/// Tables "WinState" and "Limits", which no first start resets.
void ReadWindowsAndLimits(const Document& document, Settings& settings);
/// All the rest. A value that is absent, or of a kind that makes no sense, takes its default, so
/// that an empty document gives the factory settings. A flag takes its default unless it is
/// exactly the opposite, "Yes" or "No".
void ReadFields(const Document& document, Settings& settings);
void ReadRecentLists(const Document& document, Settings& settings);

struct SaveStamp {
    std::time_t moment = 0;
    bool firstBoot = false;  // MainPath too
};
/// The whole store in the order of saving. What `before` holds besides is taken over behind it; a
/// path that means what it meant before keeps its form, tokens and all.
Document WriteFields(const Settings& settings, const Document& before, const SaveStamp& stamp);
/// `before` with the recent Image lists of the settings.
Document WriteRecentLists(const Settings& settings, const Document& before);
/// `before` with the placements of the dialogs.
Document WriteWindows(const Settings& settings, const Document& before);

/// False: these values were never saved whole, and the first start is still to come.
bool IsSaved(const Document& document);
/// The moment of the last save; that of `now` if none is told.
std::time_t LastSave(const Document& document, std::time_t now);

}  // namespace lumo::settings
