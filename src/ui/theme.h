#pragma once

namespace lumo::ui {

enum class Theme { OfDesktop = 0, Light = 1, Dark = 2 };

/// Colours of all windows, at once.
void ApplyTheme(Theme theme);

}  // namespace lumo::ui
