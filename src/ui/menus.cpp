#include "ui/menus.h"

#include <QMenuBar>
#include <QToolBar>
#include <initializer_list>

#include "script/catalogue.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

constexpr char kHintProperty[] = "hint";

QString WithReason(const QString& hint, bool enabled, const QString& reason) {
    return enabled ? hint : QStringLiteral("%1 (%2)").arg(hint, reason);
}

/// An action, or a separator.
constexpr Act kSeparator = Act::Count;

void Fill(QMenu* menu, const Actions& actions, std::initializer_list<Act> acts) {
    for (const Act act : acts) {
        if (act == kSeparator)
            menu->addSeparator();
        else
            menu->addAction(actions[act]);
    }
}

/// Menus that add commands: by category, and all of them by number.
class CommandMenus {
  public:
    CommandMenus(QActionGroup* group, const std::function<void(std::string_view)>& add)
        : group_(group), add_(add) {}

    void AddNode(QMenu* parent, const script::CategoryNode& node) {
        QMenu* menu = parent->addMenu(Literally(ToQt(node.name)));
        for (const std::string_view name : node.commands) {
            const script::CatalogueRow* row = script::FindByName(name);
            AddItem(menu, *row, ToQt(row->menuText));
        }
        for (const script::CategoryNode& child : node.children) AddNode(menu, child);
    }

    void AddAll(QMenu* parent, const script::CategoryNode& all) {
        QMenu* menu = parent->addMenu(Literally(ToQt(all.name)));
        for (const std::string_view name : all.commands) {
            const script::CatalogueRow* row = script::FindByName(name);
            AddItem(menu, *row, ToQt(script::NumberedMenuText(*row)));
        }
    }

  private:
    void AddItem(QMenu* menu, const script::CatalogueRow& row, const QString& text) {
        QAction* item = menu->addAction(Literally(text));
        const QString hint =
            QStringLiteral("Adds the command \"%1\" below the selected one.").arg(ToQt(row.name));
        item->setStatusTip(hint);
        item->setProperty(kHintProperty, hint);
        item->setProperty("hasDeed", true);
        group_->addAction(item);
        const std::string_view name = row.name;
        QObject::connect(item, &QAction::triggered, group_, [add = add_, name] { add(name); });
    }

    QActionGroup* group_;
    std::function<void(std::string_view)> add_;
};

void FillCommands(QMenu* menu, QActionGroup* group, const Actions& actions,
                  const MenuDeeds& deeds) {
    CommandMenus commands(group, deeds.addCommand);
    QMenu* byCategory = menu->addMenu(QStringLiteral("Add to &batch script"));
    const auto& tree = script::CategoryTree();
    for (std::size_t i = 1; i < tree.size(); ++i) commands.AddNode(byCategory, tree[i]);
    commands.AddAll(menu, tree.front());
    Fill(menu, actions,
         {kSeparator, Act::FindCommand, Act::AddSelection, kSeparator, Act::TestOne, Act::TestAll,
          Act::RunOnSample, kSeparator, Act::RunBatch});
}

void ShowMenu(QMenu* menu, QPoint globalPlace) {
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(globalPlace);
}

}  // namespace

RecentItems::RecentItems(QMenu* menu, const QString& hint, const std::function<void(int)>& open)
    : QObject(menu), separator_(menu->addSeparator()), hint_(hint) {
    for (int n = 1; n <= 4; ++n) {
        QAction* item = menu->addAction(QString());
        item->setProperty("hasDeed", true);
        connect(item, &QAction::triggered, this, [open, n] { open(n); });
        items_[static_cast<std::size_t>(n - 1)] = item;
    }
}

void RecentItems::Show(const settings::RecentFiles& files) {
    bool any = false;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const bool there = !files[i].empty();
        any = any || there;
        items_[i]->setVisible(there);
        QString text = Literally(ToQt(settings::RecentMenuText(static_cast<int>(i) + 1, files[i])));
        if (there) text.prepend(QLatin1Char('&'));
        items_[i]->setText(text);
        hints_[i] = hint_.arg(ToQt(files[i]));
        items_[i]->setEnabled(there && enabled_);
    }
    separator_->setVisible(any);
    ShowHints();
}

void RecentItems::SetEnabled(bool enabled, const QString& reason) {
    enabled_ = enabled;
    reason_ = reason;
    for (QAction* item : items_) item->setEnabled(enabled && item->isVisible());
    ShowHints();
}

void RecentItems::ShowHints() {
    for (std::size_t i = 0; i < items_.size(); ++i)
        items_[i]->setStatusTip(WithReason(hints_[i], enabled_, reason_));
}

void EnableAddCommands(const Menus& menus, bool enabled, const QString& reason) {
    QActionGroup* group = menus.addCommands;
    if (group->isEnabled() == enabled) return;  // hundreds of items, asked for at each selection
    group->setEnabled(enabled);
    for (QAction* item : group->actions())
        item->setStatusTip(WithReason(item->property(kHintProperty).toString(), enabled, reason));
}

Menus BuildMenus(QMainWindow& window, const Actions& actions, const MenuDeeds& deeds) {
    Menus menus;
    QMenuBar* bar = window.menuBar();

    QMenu* script = bar->addMenu(QStringLiteral("&Script"));
    Fill(script, actions, {Act::NewScript, Act::OpenScript, Act::SaveScript, Act::SaveScriptAs});
    menus.scripts =
        new RecentItems(script, QStringLiteral("Opens the script %1"), deeds.openRecentScript);
    script->addSeparator();
    QMenu* subroutine = script->addMenu(QStringLiteral("Su&broutine"));
    Fill(subroutine, actions,
         {Act::LoadSubroutine, Act::SaveSubroutineAs, Act::EditSubroutine,
          Act::OpenSubroutineAsScript, Act::NewSubroutine});
    Fill(script, actions, {kSeparator, Act::Exit});

    QMenu* edit = bar->addMenu(QStringLiteral("&Edit"));
    Fill(edit, actions,
         {Act::Undo, kSeparator, Act::Cut, Act::Copy, Act::Paste, kSeparator, Act::EditCommand,
          Act::DeleteCommand, Act::SwapUp, Act::SwapDown, kSeparator, Act::ImageList});
    menus.lists =
        new RecentItems(edit, QStringLiteral("Opens the Image list %1"), deeds.openRecentList);
    Fill(edit, actions, {kSeparator, Act::BatchLog, Act::ErrorLog, Act::LogFile});

    QMenu* view = bar->addMenu(QStringLiteral("&View"));
    Fill(view, actions,
         {Act::ToolBar, Act::StatusBar, kSeparator, Act::ScriptAsText, Act::ListAsText,
          Act::BatchLog, Act::ErrorLog, Act::LogFile, kSeparator, Act::FullScreenLeft,
          Act::FullScreenRight, kSeparator});
    Fill(view->addMenu(QStringLiteral("T&heme")), actions,
         {Act::ThemeOfDesktop, Act::ThemeLight, Act::ThemeDark});

    QMenu* commands = bar->addMenu(QStringLiteral("&Commands"));
    menus.addCommands = new QActionGroup(&window);
    menus.addCommands->setExclusionPolicy(QActionGroup::ExclusionPolicy::None);
    FillCommands(commands, menus.addCommands, actions, deeds);

    QMenu* image = bar->addMenu(QStringLiteral("&Image"));
    Fill(image, actions,
         {Act::OpenImage, Act::ReloadImage, Act::SaveRightImage, Act::SaveLeftImage,
          Act::SetDefaultImage, kSeparator, Act::CopyToRight, Act::CopyToLeft, kSeparator,
          Act::ImageInfo, Act::FileProperties, Act::ExifInfo, Act::IptcInfo});
    menus.pictures =
        new RecentItems(image, QStringLiteral("Opens the image %1"), deeds.openRecentPicture);

    Fill(bar->addMenu(QStringLiteral("&Options")), actions,
         {Act::KeepErrorLog, Act::KeepBatchLog, Act::KeepDebugLog, kSeparator, Act::ShowEachImage,
          kSeparator, Act::Preferences, Act::Writer, Act::Reader});
    Fill(bar->addMenu(QStringLiteral("&Tools")), actions,
         {Act::RenameFiles, kSeparator, Act::ViewTemp, Act::EmptyTemp});
    Fill(bar->addMenu(QStringLiteral("&Help")), actions, {Act::Keys, Act::About});
    return menus;
}

void BuildToolBar(QToolBar& bar, const Actions& actions) {
    for (const Act act :
         {Act::NewScript, Act::OpenScript, Act::SaveScript, kSeparator, Act::Undo, Act::Cut,
          Act::Copy, Act::Paste, kSeparator, Act::OpenImage, Act::ReloadImage, kSeparator,
          Act::TestOne, Act::TestAll, Act::RunOnSample, kSeparator, Act::RunBatch}) {
        if (act == kSeparator)
            bar.addSeparator();
        else
            bar.addAction(actions[act]);
    }
}

void ShowScriptMenu(QWidget* owner, const Actions& actions, QPoint globalPlace) {
    auto* menu = new QMenu(owner);
    Fill(menu, actions,
         {Act::EditCommand, Act::DeleteCommand, Act::SwapUp, Act::SwapDown, kSeparator, Act::Undo,
          Act::Cut, Act::Copy, Act::Paste, kSeparator, Act::TestOne, kSeparator, Act::NewScript,
          Act::OpenScript, Act::SaveScript, Act::SaveScriptAs});
    ShowMenu(menu, globalPlace);
}

void ShowTreeMenu(QWidget* owner, const Actions& actions, QPoint globalPlace) {
    auto* menu = new QMenu(owner);
    Fill(menu, actions, {Act::AddSelection});
    ShowMenu(menu, globalPlace);
}

void ShowFrameMenu(QWidget* owner, const Actions& actions, Act fullScreen, QPoint globalPlace) {
    auto* menu = new QMenu(owner);
    // The same deed under the words of this menu, where the frame needs no name.
    QAction* full = menu->addAction(QStringLiteral("&Full screen"));
    full->setStatusTip(actions[fullScreen]->statusTip());
    full->setEnabled(actions[fullScreen]->isEnabled());
    full->setProperty("hasDeed", true);
    QObject::connect(full, &QAction::triggered, actions[fullScreen], &QAction::trigger);
    Fill(menu, actions,
         {Act::ImageInfo, Act::FileProperties, Act::ExifInfo, Act::IptcInfo, Act::SetDefaultImage,
          Act::OpenImage, Act::ReloadImage});
    ShowMenu(menu, globalPlace);
}

}  // namespace lumo::ui
