// What each action of the window does.

#include <QLineEdit>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>

#include "engine/editing.h"
#include "engine/open_sample.h"
#include "engine/sample.h"
#include "engine/sample_tests.h"
#include "io/metadata_report.h"
#include "platform/paths.h"
#include "ui/command_tree.h"
#include "ui/image_frame.h"
#include "ui/image_window.h"
#include "ui/main_form.h"
#include "ui/main_window.h"
#include "ui/preference_dialog.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/text_window.h"
#include "ui/theme.h"

namespace lumo::ui {

void MainWindow::BindActions() {
    menus_ = BuildMenus(*this, actions_,
                        {.addCommand =
                             [this](std::string_view name) {
                                 engine::AddCommand(view_, name, engine::AddFrom::Menu);
                             },
                         .openRecentScript =
                             [this](int n) {
                                 files_.OpenRecent(n);
                                 UpdateRecent();
                             },
                         .openRecentList = [this](int n) { OpenRecentList(n); },
                         .openRecentPicture =
                             [this](int n) {
                                 OpenRecentPicture(desk_, n);
                                 UpdateRecent();
                                 UpdateActions();
                             }});
    BuildToolBar(*toolBar_, actions_);
    BindScriptActions();
    BindEditActions();
    BindViewActions();
    BindImageActions();
    BindOtherActions();
}

void MainWindow::BindScriptActions() {
    const auto bind = [this](Act act, auto deed) {
        actions_.Bind(act, [this, deed] {
            (files_.*deed)();
            UpdateTitle();
            UpdateRecent();
            UpdateActions();
        });
    };
    bind(Act::NewScript, &ScriptFiles::New);
    bind(Act::OpenScript, &ScriptFiles::Open);
    bind(Act::SaveScript, &ScriptFiles::Save);
    bind(Act::SaveScriptAs, &ScriptFiles::SaveAs);
    bind(Act::LoadSubroutine, &ScriptFiles::LoadSubroutine);
    bind(Act::SaveSubroutineAs, &ScriptFiles::SaveSubroutineAs);
    bind(Act::EditSubroutine, &ScriptFiles::OpenSubroutineToEdit);
    bind(Act::OpenSubroutineAsScript, &ScriptFiles::OpenSubroutineAsScript);
    bind(Act::NewSubroutine, &ScriptFiles::NewSubroutine);
    actions_.Bind(Act::Exit, [this] { close(); });
}

void MainWindow::BindEditActions() {
    const auto bind = [this](Act act, auto operation) {
        actions_.Bind(act, [this, operation] {
            operation(view_);
            UpdateTitle();
            UpdateActions();  // a cancelled dialog leaves something to take back, too
        });
    };
    bind(Act::Undo, engine::RestoreUndoCopy);
    bind(Act::Cut, engine::CutCommand);
    bind(Act::Copy, engine::CopyCommand);
    bind(Act::Paste, engine::PasteCommand);
    bind(Act::EditCommand, engine::EditSelected);
    bind(Act::DeleteCommand, engine::DeleteSelected);
    bind(Act::SwapUp, engine::SwapUp);
    bind(Act::SwapDown, engine::SwapDown);
    actions_.Bind(Act::AddSelection, [this] {
        engine::AddCommand(view_, form_->tree->SelectedName(), engine::AddFrom::Tree);
    });
    actions_.Bind(Act::FindCommand, [this] {
        form_->filter->setFocus();
        form_->filter->selectAll();
    });
}

void MainWindow::BindViewActions() {
    settings::Settings& settings = view_.settings;
    const auto showLog = [this](const char* name) {
        ShowTextFile(desk_, platform::AddBackSlash(view_.settings.folders.logs) + name);
    };
    actions_.Bind(Act::BatchLog, [showLog] { showLog("Batch.log"); });
    actions_.Bind(Act::ErrorLog, [showLog] { showLog("Error.log"); });
    actions_.Bind(Act::LogFile, [this] {
        ShowTextFileOf("Open (Lumoscript log file)",
                       "Lumoscript log file (*.log)|*.log|All files (*.*)|*.*||",
                       view_.settings.folders.logs);
    });
    actions_.Bind(Act::ImageList, [this] { EditList(ListAtHand()); });
    actions_.Bind(Act::ListAsText, [this] {
        ShowTextFileOf("Open (Lumoscript Image list file)",
                       "Image list file (*.lst)|*.lst|All files (*.*)|*.*||",
                       view_.settings.folders.lists);
    });
    actions_.Bind(Act::ScriptAsText, [this] {
        ShowTextFileOf("Open (Batch script file as text file)",
                       "Batch script file (*.whs)|*.whs|All files (*.*)|*.*||",
                       view_.settings.folders.scripts);
    });
    actions_.BindToggle(Act::ToolBar, settings.toolBar, [this](bool on) {
        view_.settings.toolBar = on;
        toolBar_->setVisible(on);
    });
    toolBar_->setVisible(settings.toolBar);
    actions_.BindToggle(Act::StatusBar, settings.statusBar, [this](bool on) {
        view_.settings.statusBar = on;
        statusBar()->setVisible(on);
    });
    statusBar()->setVisible(settings.statusBar);
    auto* themes = new QActionGroup(this);
    for (const auto& [act, theme] :
         {std::pair{Act::ThemeOfDesktop, Theme::OfDesktop},
          std::pair{Act::ThemeLight, Theme::Light}, std::pair{Act::ThemeDark, Theme::Dark}}) {
        actions_.BindToggle(act, settings.theme == static_cast<int>(theme), [this, theme](bool) {
            view_.settings.theme = static_cast<int>(theme);
            ApplyTheme(theme);
        });
        themes->addAction(actions_[act]);
    }
    actions_.Bind(Act::FullScreenLeft, [this] { ShowFullScreen(Side::Left); });
    actions_.Bind(Act::FullScreenRight, [this] { ShowFullScreen(Side::Right); });
}

void MainWindow::BindImageActions() {
    const auto bind = [this](Act act, auto deed) {
        actions_.Bind(act, [this, deed] {
            deed();
            UpdateRecent();
            UpdateActions();
        });
    };
    bind(Act::OpenImage, [this] { OpenSampleImage(desk_); });
    bind(Act::ReloadImage, [this] { engine::ReloadLeft(view_); });
    bind(Act::CopyToRight, [this] { engine::CopyLeftToMain(view_, engine::Force::No); });
    bind(Act::CopyToLeft, [this] { engine::CopyRightToLeft(view_); });
    bind(Act::SaveRightImage, [this] { SaveSampleImage(desk_, Side::Right); });
    bind(Act::SaveLeftImage, [this] { SaveSampleImage(desk_, Side::Left); });
    bind(Act::SetDefaultImage, [this] {
        SetDefaultSample(desk_);
        statusBar()->showMessage(QStringLiteral("Lumoscript will start with this image."));
    });
    bind(Act::TestOne, [this] { engine::TestOne(view_); });
    actions_.Bind(Act::TestAll, [this] { StartWalk(); });
    actions_.Bind(Act::RunOnSample, [this] { PressRunOnSample(); });
    actions_.Bind(Act::RunBatch, [this] { PressRun(); });
    actions_.Bind(Act::ImageInfo, [this] {
        ShowTextWindow(this, QStringLiteral("Image info"), ImageInfoText(view_, infoSide_));
    });
    actions_.Bind(Act::ExifInfo, [this] { io::ShowExifReport(view_); });
    actions_.Bind(Act::IptcInfo, [this] { io::ShowIptcReport(view_); });
    actions_.Bind(Act::FileProperties, [this] {
        ShowTextWindow(this, QStringLiteral("File properties"), FilePropertiesText(view_));
    });
}

void MainWindow::BindOtherActions() {
    settings::Settings& settings = view_.settings;
    actions_.BindToggle(Act::KeepErrorLog, settings.logs.errorLog,
                        [this](bool on) { view_.settings.logs.errorLog = on; });
    actions_.BindToggle(Act::KeepBatchLog, settings.logs.batchLog,
                        [this](bool on) { view_.settings.logs.batchLog = on; });
    actions_.BindToggle(Act::KeepDebugLog, view_.logs.debugOn,
                        [this](bool on) { view_.logs.debugOn = on; });
    actions_.BindToggle(Act::ShowEachImage, settings.showEachImage, [this](bool on) {
        view_.settings.showEachImage = view_.run.showEachImage = on;
    });
    const auto sheet = [this](Act act, const PreferenceSheet& pages) {
        actions_.Bind(act, [this, &pages] {
            if (EditPreferences(this, view_, pages)) ShowSettings();
        });
    };
    sheet(Act::Preferences, kGeneralSheet);
    sheet(Act::Writer, kWriterSheet);
    sheet(Act::Reader, kReaderSheet);
    actions_.Bind(Act::RenameFiles, [this] {
        const std::string path = view_.settings.installFolder + "/Namewright.exe";
        if (!QProcess::startDetached(ToQt(path), {}))
            Tell(desk_, "Unable to find Namewright.exe at:" + platform::Printable(path));
    });
    actions_.Bind(Act::ViewTemp, [this] { ShowFolder(desk_, view_.settings.folders.temp); });
    actions_.Bind(Act::EmptyTemp, [this] { EmptyTempFolder(); });
    actions_.Bind(Act::Keys, [this] {
        QString text;
        for (const QAction* action : actions()) {
            if (action->shortcut().isEmpty()) continue;
            text += action->shortcut().toString(QKeySequence::NativeText).leftJustified(16) +
                    VisibleText(action->text()) + QLatin1Char('\n');
        }
        text += QStringLiteral("A").leftJustified(16) + QStringLiteral("ends Test All\n");
        text += QStringLiteral("\nIn the enlarged view\n");
        for (const QString& line :
             QString::fromUtf8(ImageWindow::Keys()).split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            text += line.section(QLatin1Char('\t'), 0, 0).leftJustified(16) +
                    line.section(QLatin1Char('\t'), 1) + QLatin1Char('\n');
        ShowTextWindow(this, QStringLiteral("Keyboard"), FromQt(text));
    });
    actions_.Bind(Act::About, [this] {
        QMessageBox::about(
            this, QStringLiteral("About Lumoscript"),
            QStringLiteral("<h3>Lumoscript %1</h3><p>Processes folders of pictures by a script of "
                           "commands.</p><p>Free software under the GNU General Public License, "
                           "version 3 or later.</p>")
                .arg(QStringLiteral(LUMO_VERSION)));
    });
}

/// In the menu, what a sheet of preferences has changed.
void MainWindow::ShowSettings() {
    const settings::Settings& settings = view_.settings;
    actions_[Act::KeepErrorLog]->setChecked(settings.logs.errorLog);
    actions_[Act::KeepBatchLog]->setChecked(settings.logs.batchLog);
    actions_[Act::ShowEachImage]->setChecked(settings.showEachImage);
    view_.run.showEachImage = settings.showEachImage;
}

void MainWindow::ConnectForm() {
    TieToAction(form_->add, actions_[Act::AddSelection]);
    TieToAction(form_->swapUp, actions_[Act::SwapUp]);
    TieToAction(form_->swapDown, actions_[Act::SwapDown]);
    TieToAction(form_->edit, actions_[Act::EditCommand]);
    TieToAction(form_->remove, actions_[Act::DeleteCommand]);
    TieToAction(form_->open, actions_[Act::OpenImage]);
    TieToAction(form_->reload, actions_[Act::ReloadImage]);
    TieToAction(form_->copyToRight, actions_[Act::CopyToRight]);
    TieToAction(form_->copyToLeft, actions_[Act::CopyToLeft]);
    TieToAction(form_->testOne, actions_[Act::TestOne]);
    TieToAction(form_->testAll, actions_[Act::TestAll]);
    TieToAction(form_->saveAs, actions_[Act::SaveRightImage]);
    TieToAction(form_->runOnSample, actions_[Act::RunOnSample]);
    TieToAction(form_->run, actions_[Act::RunBatch]);

    connect(form_->filter, &QLineEdit::textChanged, form_->tree, &CommandTree::SetFilter);
    connect(form_->filter, &QLineEdit::returnPressed, form_->tree, qOverload<>(&QWidget::setFocus));
    connect(form_->tree, &CommandTree::SelectionChanged, this, &MainWindow::UpdateActions);
    connect(form_->tree, &CommandTree::CommandChosen, actions_[Act::AddSelection],
            &QAction::trigger);
    connect(form_->scriptList, &ScriptList::RowSelected, this,
            [this](int row) { engine::SelectCommand(view_, row); });
    connect(form_->scriptList, &ScriptList::RowChosen, actions_[Act::EditCommand],
            &QAction::trigger);
    connect(form_->scriptList, &ScriptList::RowMoved, this,
            [this](int from, int to) { engine::MoveCommand(view_, from, to); });

    const auto menuAt = [](QWidget* widget, const std::function<void(QPoint)>& show) {
        widget->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(widget, &QWidget::customContextMenuRequested, widget,
                [widget, show](QPoint at) { show(widget->mapToGlobal(at)); });
    };
    menuAt(form_->tree, [this](QPoint at) { ShowTreeMenu(this, actions_, at); });
    menuAt(form_->scriptList, [this](QPoint at) { ShowScriptMenu(this, actions_, at); });
    for (const Side side : {Side::Left, Side::Right}) {
        ImageFrame* frame = side == Side::Left ? form_->leftFrame : form_->rightFrame;
        const Act full = side == Side::Left ? Act::FullScreenLeft : Act::FullScreenRight;
        frame->SetEmptyText(QStringLiteral("Open an image, or drop one here"));
        menuAt(frame, [this, side, full](QPoint at) {
            infoSide_ = side;
            ShowFrameMenu(this, actions_, full, at);
        });
        connect(frame, &ImageFrame::Enlarge, actions_[full], &QAction::trigger);
        connect(frame, &ImageFrame::Resized, this,
                side == Side::Left ? &MainWindow::RebuildLeft : &MainWindow::RebuildRight);
    }
}

void MainWindow::ShowFullScreen(Side side) {
    auto* window =
        new ImageWindow(this, view_.sample.left.View(), view_.working.main.View(),
                        side == Side::Left ? ImageWindow::Show::Before : ImageWindow::Show::After);
    window->setWindowTitle(ToQt(platform::Printable(view_.sample.path)));
    window->showFullScreen();
}

}  // namespace lumo::ui
