#pragma once

#include <QToolButton>
#include <functional>

namespace lumo::ui {

/// The button "Insert info" with a menu of the macros that a text may hold; `insert` is given the
/// one that was picked.
QToolButton* MakeInsertInfo(const std::function<void(const QString& macro)>& insert);

}  // namespace lumo::ui
