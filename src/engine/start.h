#pragma once

// From nothing to a view that can work: settings, folders, the Script named on the command line.

#include <string>
#include <string_view>

#include "engine/view.h"
#include "script/file_words.h"

namespace lumo::engine {

enum class SettingsFile { ReadAndWrite, ReadOnly };

/// Loads the settings (on a first start makes the folder tree and saves them, unless read-only),
/// applies the memory limits, seeds the random generator and makes a new Script.
void StartView(CLumoscriptView& view, SettingsFile settingsFile);

/// Opens a Script file in place of the present one, which undo brings back, and gives it its two
/// markers. False: the words of `failure` have been shown and the present Script stands, its undo
/// too.
bool OpenScript(CLumoscriptView& view, const std::string& path,
                std::string_view failure = script::words::kCannotOpenScript);

}  // namespace lumo::engine
