#pragma once

#include <QWidget>
#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::ui {

/// The dialog of a command on these parameters. True on OK: `params` is what it holds now, and
/// `makeDefault` whether new commands are to begin with it. False on Cancel and for a name that
/// has no dialog.
bool AskParameters(QWidget* parent, engine::CLumoscriptView& view, std::string_view name,
                   std::string& params, bool& makeDefault);

}  // namespace lumo::ui
