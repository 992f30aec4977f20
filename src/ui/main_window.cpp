#include "ui/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGroupBox>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QWindow>
#include <ctime>
#include <utility>

#include "engine/command.h"
#include "engine/editing.h"
#include "engine/open_sample.h"
#include "engine/run_batch.h"
#include "engine/start.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "settings/recent.h"
#include "settings/settings_store.h"
#include "ui/command_form.h"
#include "ui/command_tree.h"
#include "ui/elided_label.h"
#include "ui/icons.h"
#include "ui/image_frame.h"
#include "ui/main_form.h"
#include "ui/parameter_panel.h"
#include "ui/progress_panel.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/text_window.h"
#include "ui/theme.h"

namespace lumo::ui {
namespace {

constexpr char kPlacement[] = "Main";
constexpr int kMaximised = 3;
constexpr QSize kUsualSize(1120, 760);

}  // namespace

MainWindow::MainWindow(const StartRequest& request)
    : ui_(*this),
      view_(ui_),
      desk_{view_, *this},
      files_(desk_),
      form_(new MainForm(this)),
      actions_(this),
      request_(request) {
    ui_.SetView(view_);
    setCentralWidget(form_);
    setAcceptDrops(true);
    form_->scriptList->SetScript(view_.script.commands);
    toolBar_ = addToolBar(QStringLiteral("Toolbar"));
    toolBar_->setMovable(false);
    toolBar_->setIconSize({20, 20});
    toolBar_->setContextMenuPolicy(Qt::PreventContextMenu);
    statusBar()->setSizeGripEnabled(true);
    walkTimer_.setSingleShot(true);
    connect(&walkTimer_, &QTimer::timeout, this, &MainWindow::StepWalk);

    view_.run.noPrompts = request.noPrompts;
    view_.logs.debugOn = request.debugLog;  // before the menu shows it
    engine::StartView(view_, engine::SettingsFile::ReadAndWrite);
    ApplyTheme(static_cast<Theme>(view_.settings.theme));
    BindActions();
    ConnectForm();
    RestorePlacement();
    StartUp();
}

MainWindow::~MainWindow() {
    // A run that still lasts ends before what it works on does; nobody answers it any more.
    ui_.Abandon();
    view_.run.keepRunning = 0;
    engine::JoinWorker(view_);
}

void MainWindow::StartUp() {
    files_.NoteSaved();
    ScriptHasChanged();
    engine::SelectCommand(view_, 0);
    std::string sample = view_.settings.files.sample;
    if (!platform::FileExists(sample)) sample = view_.settings.installFolder + "/Frame1.jpg";
    if (platform::FileExists(sample)) engine::OpenSample(view_, sample);
    const bool opened = request_.scriptPath.empty() ||
                        files_.OpenPath(engine::StatedScriptPath(view_, request_.scriptPath),
                                        script::words::kCannotOpenScript);
    view_.run.noPrompts = false;
    exitAfterRun_ = request_.runAtOnce && request_.exitAfterRun;
    if (request_.runAtOnce && opened) {
        TakeRequest();
        view_.run.autoRun = true;
        view_.run.autoExit = request_.exitAfterRun;
        StartTimer2(0);
    } else if (exitAfterRun_) {
        exitStatus_ = 3;
        QTimer::singleShot(0, this, &MainWindow::QuitProgram);
    }
    UpdateActions();
}

void MainWindow::RestorePlacement() {
    const QSize room = screen()->availableSize();
    resize(kUsualSize.boundedTo(room));
    const auto found = view_.settings.windows.find(kPlacement);
    if (found != view_.settings.windows.end() && found->second.saved) {
        const settings::WindowState& state = found->second;
        const QRect place(QPoint(state.left, state.top), QPoint(state.right - 1, state.bottom - 1));
        if (screen()->availableGeometry().intersects(place)) setGeometry(place);
        if (state.showCommand == kMaximised) setWindowState(Qt::WindowMaximized);
    } else if (room.width() <= kUsualSize.width() || room.height() <= kUsualSize.height()) {
        setWindowState(Qt::WindowMaximized);
    }
}

void MainWindow::SaveSettings() {
    const QRect place = normalGeometry().isValid() ? normalGeometry() : geometry();
    view_.settings.windows[kPlacement] = {.saved = true,
                                          .showCommand = isMaximized() ? kMaximised : 1,
                                          .left = place.left(),
                                          .top = place.top(),
                                          .right = place.left() + place.width(),
                                          .bottom = place.top() + place.height()};
    for (const std::string& message :
         settings::SaveSettings(view_.settings, settings::SaveKind::Normal, std::time(nullptr)))
        view_.ui.Notice(message);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (running_) {
        event->ignore();
        if (closeWhenEnded_) return;
        if (!quitting_ &&
            !ui::AskYesNo(desk_, "A batch run is active. Abort it and close Lumoscript?"))
            return;
        closeWhenEnded_ = true;
        view_.run.keepRunning = 0;
        ShowStatus(QStringLiteral("Aborting..."));
        if (!running_) QTimer::singleShot(0, this, &QWidget::close);  // it ended meanwhile
        return;
    }
    AbortWalk();
    if (!quitting_ && !files_.MayLeaveScript()) {
        event->ignore();
        return;
    }
    SaveSettings();
    event->accept();
}

void MainWindow::QuitProgram() {
    quitting_ = true;
    close();
}

void MainWindow::EndBySignal(int signalNumber) {
    exitStatus_ = 128 + signalNumber;
    exitAfterRun_ = false;
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) dialog->reject();
    // The dialog's own loop has to end first.
    QTimer::singleShot(0, this, &MainWindow::QuitProgram);
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!std::exchange(screenWatched_, true))
        connect(windowHandle(), &QWindow::screenChanged, this, [this] {
            form_->PlaceControls(screen()->geometry().width());
            RebuildLeft();
            RebuildRight();
        });
}

// ---- What the engine shows ----------------------------------------------------------------------

void MainWindow::ShowMessageBox(const QString& text, const QString& caption,
                                engine::MessageIcon icon) {
    const auto picture = icon == engine::MessageIcon::Stop      ? QMessageBox::Critical
                         : icon == engine::MessageIcon::Warning ? QMessageBox::Warning
                                                                : QMessageBox::NoIcon;
    QMessageBox box(picture, caption.isEmpty() ? QStringLiteral("Lumoscript") : caption, text,
                    QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool MainWindow::AskYesNo(const QString& question) {
    return ui::AskYesNo(desk_, FromQt(question));
}

void MainWindow::ShowNotice(const QString& text) {
    statusBar()->showMessage(text);
}

void MainWindow::ShowReport(const QString& title, std::string_view text) {
    ShowTextWindow(this, title, text);
}

bool MainWindow::EditParameters(std::string_view name, std::string& params, bool& makeDefault) {
    const engine::Command* command = engine::FindCommand(name);
    return command && ui::EditParameters(this, view_, *command, params, makeDefault);
}

bool MainWindow::EditCommandAt(int index) {
    engine::SelectCommand(view_, index);
    return engine::EditCommandAt(view_, index);
}

void MainWindow::ShowTitle(const QString& text) {
    runTitle_ = text;
    UpdateTitle();
}

void MainWindow::ShowStatus(const QString& text) {
    form_->progress->SetStatus(text);
}

void MainWindow::ShowRunButton(const QString& text) {
    QString withMnemonic = text;
    const qsizetype at = text.indexOf(QLatin1Char('b'), 0, Qt::CaseInsensitive);
    if (at >= 0) withMnemonic.insert(at, QLatin1Char('&'));
    form_->run->setText(withMnemonic);
    actions_[Act::RunBatch]->setText(withMnemonic);
    actions_[Act::RunBatch]->setIcon(
        GlyphIcon(text.startsWith(QLatin1String("Abort")) ? Glyph::Stop : Glyph::Run));
}

void MainWindow::ShowSizeText(const QString& text) {
    rightSize_ = text;
    UpdateCaptions();
}

void MainWindow::ShowCounts(const engine::RunCounts& counts) {
    form_->progress->ShowCounts(counts);
}

void MainWindow::CloseControls(engine::Controls controls) {
    // They open again when the worker has ended, not when it says that it is about to.
    if (controls == engine::Controls::Open && running_) return;
    controlsClosed_ = controls == engine::Controls::Closed;
    UpdateActions();
}

void MainWindow::ScriptHasChanged() {
    form_->scriptList->Reload();
    form_->scriptTitle->setText(ToQt(platform::Printable(view_.script.caption)));
    UpdateTitle();
    UpdateRecent();
}

void MainWindow::ShowSelection(int index) {
    view_.script.selected = index;
    view_.script.selected = engine::SelectedCommand(view_);
    form_->scriptList->Select(view_.script.selected);
    form_->panel->SetText(ToQt(engine::ShowParameterPanel(view_, view_.script.selected).text));
    UpdateActions();
}

void MainWindow::EmptyPanel() {
    form_->panel->SetText({});
}

void MainWindow::RebuildLeft() {
    form_->leftFrame->SetPicture(
        MakeDisplayPicture(view_.sample.left.View(), form_->leftFrame->PixelSize()));
    UpdateCaptions();
}

void MainWindow::RebuildRight() {
    ui_.SetRightFrame(form_->rightFrame->PixelSize());
    if (running_) return;  // the picture is the worker's
    form_->rightFrame->SetPicture(
        MakeDisplayPicture(view_.working.main.View(), form_->rightFrame->PixelSize()));
    UpdateCaptions();
}

void MainWindow::ShowRight(const DisplayPicture& picture) {
    if (running_) form_->rightFrame->SetPicture(picture);
}

void MainWindow::PlayAsterisk() {
    QApplication::beep();
}

void MainWindow::StartTimer2(int milliseconds) {
    QTimer::singleShot(milliseconds, this, [this] {
        starting_ = true;
        engine::OnTimer2(view_);
        starting_ = false;
        AfterStart();
    });
}

// ---- What the window shows ----------------------------------------------------------------------

void MainWindow::UpdateTitle() {
    if (!runTitle_.isEmpty()) {
        setWindowTitle(runTitle_);
        return;
    }
    const QString script =
        view_.script.hasFile ? ToQt(platform::Printable(platform::GetFileTitle(view_.script.path)))
                             : QStringLiteral("unsaved");
    setWindowTitle(QStringLiteral("%1[*] - Lumoscript").arg(script));
    setWindowModified(files_.HasUnsavedChanges());
}

void MainWindow::UpdateCaptions() {
    if (running_) {
        form_->rightCaption->setText(rightSize_);
        return;
    }
    const auto caption = [](imaging::Size size, const std::string& depth) {
        if (size.IsEmpty()) return QString();
        return QStringLiteral("%1x%2  %3").arg(size.width).arg(size.height).arg(ToQt(depth));
    };
    const std::string name =
        platform::Printable(view_.sample.path.substr(view_.sample.path.rfind('/') + 1));
    const QString left = caption(view_.sample.left.Extent(), view_.sample.leftDepthLabel);
    form_->leftCaption->setText(left.isEmpty() ? left : ToQt(name) + QStringLiteral("  ") + left);
    form_->leftCaption->SetShortText(left);
    form_->rightCaption->setText(
        caption(view_.working.main.Extent(), view_.sample.rightDepthLabel));
}

void MainWindow::UpdateRecent() {
    menus_.scripts->Show(view_.settings.recentScripts);
    menus_.lists->Show(view_.settings.recentLists);
    menus_.pictures->Show(view_.settings.recentPictures);
}

void MainWindow::UpdateActions() {
    QWidget* const focus = focusWidget();  // before anything is closed
    const bool walking = IsWalking();
    const bool busy = controlsClosed_ || running_ || walking;
    const QString why = walking ? QStringLiteral("while the script is tried on the sample")
                                : QStringLiteral("while a batch run lasts");
    for (const Act act :
         {Act::NewScript, Act::OpenScript, Act::SaveScript, Act::SaveScriptAs, Act::LoadSubroutine,
          Act::SaveSubroutineAs, Act::EditSubroutine, Act::OpenSubroutineAsScript,
          Act::NewSubroutine, Act::Paste, Act::OpenImage, Act::KeepErrorLog, Act::KeepBatchLog,
          Act::KeepDebugLog, Act::ShowEachImage, Act::Preferences, Act::Writer, Act::Reader,
          Act::EmptyTemp})
        actions_.Enable(act, !busy, why);

    const engine::EditButtons may = engine::UpdateButtons(view_);
    const auto edit = [&](Act act, bool allowed, const char* reason) {
        actions_.Enable(act, !busy && allowed, busy ? why : QString::fromUtf8(reason));
    };
    edit(Act::Undo, may.undo, "there is nothing to take back");
    edit(Act::SwapUp, may.swapUp, "the command is the first one");
    edit(Act::SwapDown, may.swapDown, "the command is the last one");
    edit(Act::EditCommand, may.edit, "the command has no parameters");
    edit(Act::DeleteCommand, may.remove, "START and END stay");
    edit(Act::Copy, may.copy, "nothing is selected");
    edit(Act::Cut, may.copy, "nothing is selected");
    edit(Act::AddSelection, form_->tree->CommandIsSelected(), "no command is selected in the tree");

    const bool hasLeft = !view_.sample.left.IsEmpty();
    const bool hasRight = !busy && !view_.working.main.IsEmpty();
    constexpr char kNoImage[] = "there is no image";
    edit(Act::TestOne, may.copy, "nothing is selected");
    edit(Act::TestAll, true, "");
    edit(Act::RunOnSample, hasLeft, kNoImage);
    edit(Act::ReloadImage, !view_.sample.held.IsEmpty(), kNoImage);
    edit(Act::CopyToRight, hasLeft, kNoImage);
    edit(Act::CopyToLeft, hasRight, kNoImage);
    edit(Act::SaveRightImage, hasRight, kNoImage);
    edit(Act::SaveLeftImage, hasLeft, kNoImage);
    edit(Act::SetDefaultImage, hasLeft, kNoImage);
    edit(Act::FullScreenLeft, hasLeft, kNoImage);
    edit(Act::FullScreenRight, hasRight, kNoImage);
    for (const Act act : {Act::ImageInfo, Act::FileProperties, Act::ExifInfo, Act::IptcInfo})
        edit(act, hasLeft, kNoImage);
    actions_.Enable(Act::RunBatch, !walking, why);

    EnableAddCommands(menus_, !busy, why);
    menus_.scripts->SetEnabled(!busy, why);
    menus_.pictures->SetEnabled(!busy, why);
    CloseAreas(busy, focus);
}

/// A control that is closed loses the keyboard; it gets it back, unless the user has taken it
/// elsewhere meanwhile.
void MainWindow::CloseAreas(bool busy, QWidget* focus) {
    for (QWidget* area :
         {static_cast<QWidget*>(form_->scriptList), static_cast<QWidget*>(form_->leftFrame),
          static_cast<QWidget*>(form_->rightFrame)})
        area->setEnabled(!busy);
    if (busy && focus && !focus->isEnabled()) {
        focusLost_ = focus;
        focusTaken_ = focusWidget();
    } else if (!busy && focusLost_) {
        if (focusWidget() == focusTaken_) focusLost_->setFocus();
        focusLost_.clear();
    }
}

}  // namespace lumo::ui
