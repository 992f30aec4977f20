#pragma once

// The four files of each kind that the menus offer again. Entry 1 is the newest; an empty text is
// a free place.

#include <array>
#include <string>
#include <string_view>

#include "settings/settings.h"

namespace lumo::settings {

using RecentFiles = std::array<std::string, 4>;

/// Puts the path first. Equal paths, byte by byte, make one entry; a fifth one falls out. An
/// empty path is none.
void AddRecent(RecentFiles& files, std::string_view path);
/// Takes entry n, 1 to 4, out; later ones move up. Any other n changes nothing.
void RemoveRecent(RecentFiles& files, int n);

void AddRecentScript(Settings& settings, std::string_view path);
void AddRecentPicture(Settings& settings, std::string_view path);
void AddRecentList(Settings& settings, std::string_view path);

/// The item of entry n: its number and the path without its last four characters; of a path of 27
/// characters and more the first 14, "..." and its end from the last separator on. Empty for an
/// empty path: no item. Control characters show as "?".
std::string RecentMenuText(int n, std::string_view path);

/// What is said where Script entry n cannot be opened.
std::string_view RecentScriptFailure(int n);

}  // namespace lumo::settings
