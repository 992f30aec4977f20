#pragma once

#include <QActionGroup>
#include <QMainWindow>
#include <QMenu>
#include <functional>
#include <string>
#include <string_view>

#include "settings/recent.h"
#include "ui/actions.h"

namespace lumo::ui {

/// Up to four items that open a file again; none for an empty place.
class RecentItems : public QObject {
    Q_OBJECT

  public:
    /// The items stand at the end of the menu as it is now, behind a separator.
    RecentItems(QMenu* menu, const QString& hint, const std::function<void(int)>& open);

    void Show(const settings::RecentFiles& files);
    /// `reason` is added to the hints of items that cannot be had.
    void SetEnabled(bool enabled, const QString& reason);

  private:
    void ShowHints();

    std::array<QAction*, 4> items_{};
    std::array<QString, 4> hints_;
    QAction* separator_;
    QString hint_, reason_;
    bool enabled_ = true;
};

/// What the menu bar needs beside the actions.
struct MenuDeeds {
    std::function<void(std::string_view name)> addCommand;
    std::function<void(int)> openRecentScript, openRecentList, openRecentPicture;
};

/// What the window keeps of its menus.
struct Menus {
    RecentItems* scripts = nullptr;
    RecentItems* lists = nullptr;
    RecentItems* pictures = nullptr;
    QActionGroup* addCommands = nullptr;  // all items that add a command
};

Menus BuildMenus(QMainWindow& window, const Actions& actions, const MenuDeeds& deeds);
/// Opens or closes all items that add a command; `reason` is added to the hints of closed ones.
void EnableAddCommands(const Menus& menus, bool enabled, const QString& reason);
void BuildToolBar(QToolBar& bar, const Actions& actions);

/// Context menus; they delete themselves when they close.
void ShowScriptMenu(QWidget* owner, const Actions& actions, QPoint globalPlace);
void ShowTreeMenu(QWidget* owner, const Actions& actions, QPoint globalPlace);
void ShowFrameMenu(QWidget* owner, const Actions& actions, Act fullScreen, QPoint globalPlace);

}  // namespace lumo::ui
