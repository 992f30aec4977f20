#pragma once

// What the window says and offers around the files of Scripts.

#include <string_view>

namespace lumo::script::words {

inline constexpr std::string_view kNotAScript = "Not a valid script or subroutine file!";
inline constexpr std::string_view kNotASubroutine = "Not a valid subroutine file!";
inline constexpr std::string_view kCannotOpenScript =
    "Unable to find or open named Lumoscript script file (.whs), check file path?";
inline constexpr std::string_view kCannotOpenSubroutine =
    "Unable to find or open named Lumoscript subroutine file (.sbr), check file path?";

/// Asked before a Script of this many commands or fewer is saved.
inline constexpr int kFewCommands = 2;
inline constexpr std::string_view kFewCommandsInScript = "Few commands in script! Continue anyway?";
inline constexpr std::string_view kFewCommandsInSubroutine =
    "No commands except Input and Output in script! Continue anyway?";

inline constexpr std::string_view kUnsavedCaption = "Batch script: (unsaved)";
inline constexpr std::string_view kNewSubroutineCaption = "subroutine new script";

inline constexpr std::string_view kSaveAsTitle = "SaveAs (Lumoscript script file)";
inline constexpr std::string_view kSaveAsName = "Script";  // proposed to a Script without a file
inline constexpr std::string_view kSaveAsExtension = "whs";
inline constexpr std::string_view kSaveAsFilter =
    "Lumoscript script file (*.whs)|*.whs|Subroutine script (*.sbr)|*.sbr||";
inline constexpr std::string_view kSaveSubroutineFilter = "Subroutine file (*.sbr)|*.sbr||";
inline constexpr std::string_view kLoadSubroutineFilter =
    "Subroutine file (*.sbr)|*.sbr|All files (*.*)|*.*||";
inline constexpr std::string_view kOpenSubroutineTitle = "Open (Lumoscript subroutine script file)";

}  // namespace lumo::script::words
