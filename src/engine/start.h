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

/// The file that a Script's name on a command line means: that file; else the name with ".whs"; and
/// for a name without a folder the file of either name among the user's Scripts, then among the
/// shipped ones. The name itself where there is none of them.
std::string FindScript(const CLumoscriptView& view, const std::string& stated);

/// The absolute path of what FindScript finds, here also for a name in the spelling of Scripts
/// ("..\Web.whs"). Menus show it again at the next start, which may be in another folder.
std::string StatedScriptPath(const CLumoscriptView& view, const std::string& stated);

/// Opens the Script file that FindScript names in place of the present one, which undo brings back,
/// and gives it its two markers. False: the words of `failure` have been shown, for an unattended
/// run the reason too, and the present Script stands, its undo too.
bool OpenScript(CLumoscriptView& view, const std::string& stated,
                std::string_view failure = script::words::kCannotOpenScript);

}  // namespace lumo::engine
