#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include "engine/view.h"
#include "ui/actions.h"
#include "ui/application.h"
#include "ui/desk.h"
#include "ui/menus.h"
#include "ui/qt_interface.h"
#include "ui/sample_pictures.h"
#include "ui/screen.h"
#include "ui/script_files.h"

namespace lumo::ui {

class MainForm;

/// The window of the program, and the owner of its state.
class MainWindow : public QMainWindow, private Screen {
    Q_OBJECT

  public:
    /// Loads the settings, opens the default sample and the Script that the request names.
    explicit MainWindow(const StartRequest& request);
    ~MainWindow() override;

    MainForm& Form() { return *form_; }
    engine::CLumoscriptView& View() { return view_; }
    QAction* ActionOf(Act act) const { return actions_[act]; }
    /// From the start of a run until its worker has ended and the window is usable again.
    bool IsRunning() const { return running_; }
    /// What the program ends with: that of its run, if the command line asked for one and an end.
    int ExitStatus() const { return exitStatus_; }

    /// Ends the program without a question, a run with its logs closed.
    void EndBySignal(int signalNumber);

  protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // What the engine asks for.
    void ShowMessageBox(const QString& text, const QString& caption,
                        engine::MessageIcon icon) override;
    bool AskYesNo(const QString& question) override;
    void ShowNotice(const QString& text) override;
    void ShowReport(const QString& title, std::string_view text) override;
    bool EditParameters(std::string_view name, std::string& params, bool& makeDefault) override;
    bool EditCommandAt(int index) override;
    void ShowTitle(const QString& text) override;
    void ShowStatus(const QString& text) override;
    void ShowRunButton(const QString& text) override;
    void ShowSizeText(const QString& text) override;
    void ShowCounts(const engine::RunCounts& counts) override;
    void CloseControls(engine::Controls controls) override;
    void ScriptHasChanged() override;
    void ShowSelection(int index) override;
    void EmptyPanel() override;
    void RebuildLeft() override;
    void RebuildRight() override;
    void ShowRight(const DisplayPicture& picture) override;
    void PlayAsterisk() override;
    void StartTimer2(int milliseconds) override;
    void RunHasEnded() override;
    void QuitProgram() override;

    // main_window_actions.cpp: what the user asks for.
    void BindActions();
    void BindScriptActions();
    void BindEditActions();
    void BindViewActions();
    void BindImageActions();
    void BindOtherActions();
    void ConnectForm();
    void ShowSettings();
    void ShowFullScreen(Side side);

    // main_window_files.cpp: lists, logs, the Temp folder, dropped files.
    void ShowTextFileOf(std::string_view title, std::string_view filter, std::string folder);
    void OpenRecentList(int n);
    void EditList(const std::string& path);
    std::string ListAtHand() const;
    void EmptyTempFolder();
    void OpenDropped(const std::string& path);

    // main_window_runs.cpp
    void PressRun();
    void PressRunOnSample();
    void TakeRequest();
    void AfterStart();
    void StartWalk();
    void StepWalk();
    void AbortWalk();
    void EndWalk();
    bool IsWalking() const;

    void StartUp();
    void UpdateActions();
    void CloseAreas(bool busy, QWidget* focus);
    void UpdateTitle();
    void UpdateCaptions();
    void UpdateRecent();
    void RestorePlacement();
    void SaveSettings();

    QtInterface ui_;
    engine::CLumoscriptView view_;
    Desk desk_;
    ScriptFiles files_;
    MainForm* form_;
    Actions actions_;
    Menus menus_;
    QToolBar* toolBar_ = nullptr;
    QTimer walkTimer_;
    QString runTitle_;  // "33% Done" during a run
    QString rightSize_;
    Side infoSide_ = Side::Right;  // the frame that was asked about last
    bool screenWatched_ = false;
    // What had the keyboard until a run or a walk closed it, and what took it over.
    QPointer<QWidget> focusLost_, focusTaken_;
    bool running_ = false;
    bool starting_ = false;
    bool controlsClosed_ = false;
    bool closeWhenEnded_ = false;
    bool quitting_ = false;
    StartRequest request_;
    bool exitAfterRun_ = false;
    int exitStatus_ = 0;
};

}  // namespace lumo::ui
