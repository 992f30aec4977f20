#pragma once

#include <QDialog>
#include <string_view>

#include "settings/settings.h"

namespace lumo::ui {

/// Places a dialog where its last OK left it, kept under `key` ("WS23"), or in the upper left
/// quarter of the screen the first time; always on a screen that is there, and no larger. An empty
/// key: the dialog keeps no placement, and is placed by the desktop.
void RestorePlacement(QDialog& dialog, const settings::Settings& settings, std::string_view key);

/// Keeps the placement for the next time, in the settings and on disk.
void SavePlacement(const QDialog& dialog, settings::Settings& settings, std::string_view key);

}  // namespace lumo::ui
