#pragma once

// The Scripts that the user begins with, and the two markers of the image loop that every Script
// has and no Subroutine.

#include <string>
#include <string_view>

#include "script/script.h"

namespace lumo::script {

/// START, "Output setup" and END, with the default parameter strings of the first two.
Script NewScript(std::string_view startDefault, std::string_view outputDefault);

/// One "Script info" that says what a Subroutine is.
Script NewSubroutine();

/// After a file was opened or saved as a Script: adds the markers that are missing, END behind all
/// others, START with its default parameter string before them.
void EnsureMarkers(Script& script, std::string_view startDefault);

/// For editing a Script file as a Subroutine: removes all markers.
void RemoveMarkers(Script& script);

/// True for the names of the two markers.
bool IsMarker(std::string_view name);

/// What the window calls a Script with a file, `fileTitle` being its name without folder and
/// extension: "Script name: " and the title, or the title alone where that takes more than 30
/// characters.
std::string ScriptCaption(std::string_view fileTitle);

}  // namespace lumo::script
