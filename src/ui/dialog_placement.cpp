#include "ui/dialog_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <string>

#include "settings/settings_store.h"

namespace lumo::ui {
namespace {

constexpr int kFirstLeft = 10, kFirstTop = 10;
// How a window was shown, as the settings name it.
constexpr int kShowNormal = 1, kShowMaximised = 3;

const settings::WindowState* Saved(const settings::Settings& settings, std::string_view key) {
    const auto found = settings.windows.find(key);
    return found != settings.windows.end() && found->second.saved ? &found->second : nullptr;
}

/// The screen may have changed since the placement was kept.
QRect Inside(QRect rectangle, const QRect& screen) {
    rectangle.setSize(rectangle.size().boundedTo(screen.size()));
    rectangle.moveLeft(
        std::clamp(rectangle.left(), screen.left(), screen.right() + 1 - rectangle.width()));
    rectangle.moveTop(
        std::clamp(rectangle.top(), screen.top(), screen.bottom() + 1 - rectangle.height()));
    return rectangle;
}

}  // namespace

void RestorePlacement(QDialog& dialog, const settings::Settings& settings, std::string_view key) {
    if (key.empty()) return;
    const QScreen* screen = dialog.screen();
    const settings::WindowState* saved = Saved(settings, key);
    QRect rectangle;
    if (saved) {
        rectangle = QRect(saved->left, saved->top, std::max(1, saved->right - saved->left),
                          std::max(1, saved->bottom - saved->top));
        if (const QScreen* its = QGuiApplication::screenAt(rectangle.center())) screen = its;
    } else {
        const QRect whole = screen->geometry();
        rectangle = QRect(whole.left() + kFirstLeft, whole.top() + kFirstTop,
                          whole.width() / 2 - kFirstLeft, whole.height() / 2 - kFirstTop);
    }
    rectangle = Inside(rectangle, screen->availableGeometry());
    dialog.resize(rectangle.size());
    dialog.move(rectangle.topLeft());
    if (saved && saved->showCommand == kShowMaximised) dialog.setWindowState(Qt::WindowMaximized);
}

void SavePlacement(const QDialog& dialog, settings::Settings& settings, std::string_view key) {
    if (key.empty()) return;
    const bool maximised = dialog.isMaximized();
    const QRect rectangle =
        maximised ? dialog.normalGeometry() : QRect(dialog.pos(), dialog.size());
    settings.windows[std::string(key)] = {
        .saved = true,
        .showCommand = maximised ? kShowMaximised : kShowNormal,
        .left = rectangle.left(),
        .top = rectangle.top(),
        .right = rectangle.left() + rectangle.width(),
        .bottom = rectangle.top() + rectangle.height(),
    };
    settings::SaveWindowStates(settings);
}

}  // namespace lumo::ui
