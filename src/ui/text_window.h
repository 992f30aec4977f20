#pragma once

// Texts to read: logs, lists, reports.

#include <string>
#include <string_view>

#include "ui/desk.h"

namespace lumo::ui {

/// A window of its own with a text that can be read, searched, selected and copied. It closes
/// with Escape and when the program does.
QWidget* ShowTextWindow(QWidget* owner, const QString& title, std::string_view text);

/// Shows a text file: by the desktop's opener, or in a window of our own where the desktop has
/// none or it fails. A file that is not there is told.
void ShowTextFile(const Desk& desk, const std::string& path);

/// Opens a folder in the desktop's file manager; where there is none, a dialog lists it.
void ShowFolder(const Desk& desk, const std::string& path);

}  // namespace lumo::ui
