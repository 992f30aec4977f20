#pragma once

// Everything that the user can ask for, each thing once: menus, context menus, tool bar and buttons
// show the same actions. An action without a deed is disabled, and its hint says why.

#include <QAction>
#include <QObject>
#include <array>
#include <functional>

namespace lumo::ui {

enum class Act {
    NewScript,
    OpenScript,
    SaveScript,
    SaveScriptAs,
    LoadSubroutine,
    SaveSubroutineAs,
    EditSubroutine,
    OpenSubroutineAsScript,
    NewSubroutine,
    Exit,
    Undo,
    Cut,
    Copy,
    Paste,
    EditCommand,
    DeleteCommand,
    SwapUp,
    SwapDown,
    ImageList,
    BatchLog,
    ErrorLog,
    LogFile,
    ToolBar,
    StatusBar,
    ScriptAsText,
    ListAsText,
    FullScreenLeft,
    FullScreenRight,
    ThemeOfDesktop,
    ThemeLight,
    ThemeDark,
    FindCommand,
    AddSelection,
    RunBatch,
    OpenImage,
    ReloadImage,
    SaveRightImage,
    SaveLeftImage,
    SetDefaultImage,
    CopyToRight,
    CopyToLeft,
    TestOne,
    TestAll,
    RunOnSample,
    ImageInfo,
    FileProperties,
    ExifInfo,
    IptcInfo,
    KeepErrorLog,
    KeepBatchLog,
    KeepDebugLog,
    ShowEachImage,
    Preferences,
    Writer,
    Reader,
    RenameFiles,
    ViewTemp,
    EmptyTemp,
    Keys,
    About,
    Count
};

class Actions : public QObject {
    Q_OBJECT

  public:
    explicit Actions(QWidget* window);

    QAction* operator[](Act act) const { return actions_[static_cast<std::size_t>(act)]; }

    /// What the action does. Until this is told it stays disabled.
    void Bind(Act act, std::function<void()> deed);
    /// An action with a check mark; the deed is told the new state.
    void BindToggle(Act act, bool on, std::function<void(bool)> deed);
    /// Whether the user can have it now; `reason` is added to the hint of one that cannot be had.
    void Enable(Act act, bool enabled, const QString& reason = {});

  private:
    std::array<QAction*, static_cast<std::size_t>(Act::Count)> actions_{};
    std::array<bool, static_cast<std::size_t>(Act::Count)> bound_{};
};

/// True if the action does something when it is triggered.
bool HasDeed(const QAction& action);

}  // namespace lumo::ui
