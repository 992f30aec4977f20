// Runs and tests from the window.

#include <QApplication>
#include <QKeyEvent>
#include <QStatusBar>
#include <utility>

#include "engine/run_batch.h"
#include "engine/sample_tests.h"
#include "ui/main_form.h"
#include "ui/main_window.h"
#include "ui/progress_panel.h"

namespace lumo::ui {
namespace {

constexpr int kWalkPause = 500;  // milliseconds: each step is to be seen

/// Exit statuses of a run that the command line asked for.
int StatusOf(const engine::RunState& run) {
    if (run.refused) return 3;
    if (run.fatalCode != 0) return 4;
    return run.errorCount > 0 || run.failureReports > 0 ? 1 : 0;
}

}  // namespace

/// What the command line asks for the first run holds for that one, whoever starts it.
void MainWindow::TakeRequest() {
    view_.run.noPrompts = std::exchange(request_.noPrompts, false);
    view_.run.forceErrorLog = std::exchange(request_.forceErrorLog, false);
}

void MainWindow::PressRun() {
    if (starting_ || IsWalking()) return;
    if (running_) {
        if (!view_.run.batchRunning) return;  // it is ending already
        engine::RunBatch(view_);
        ShowStatus(QStringLiteral("Aborting..."));
        return;
    }
    starting_ = true;
    TakeRequest();
    engine::RunBatch(view_);
    starting_ = false;
    AfterStart();
}

void MainWindow::PressRunOnSample() {
    if (starting_ || running_ || IsWalking()) return;
    starting_ = true;
    TakeRequest();
    engine::RunOnSample(view_);
    starting_ = false;
    AfterStart();
}

void MainWindow::AfterStart() {
    running_ = view_.run.worker.joinable();
    if (exitAfterRun_ && view_.run.refused) exitStatus_ = StatusOf(view_.run);
    if (running_) {
        form_->progress->Begin();
    } else if (view_.run.refused) {
        // The words, if there were any, have been shown; others are in the log.
        statusBar()->showMessage(QStringLiteral("The run was refused, see Error.log."));
        view_.run.autoExit = view_.run.noPrompts && view_.run.autoExit;
        RebuildRight();
    }
    UpdateActions();
}

void MainWindow::RunHasEnded() {
    engine::JoinWorker(view_);
    view_.run.keepRunning = 1;  // "Abort" may have come behind the last command
    running_ = false;
    controlsClosed_ = false;
    if (std::exchange(exitAfterRun_, false)) exitStatus_ = StatusOf(view_.run);
    form_->progress->End();
    RebuildLeft();
    RebuildRight();
    UpdateActions();
    if (closeWhenEnded_) {
        closeWhenEnded_ = false;
        close();
    }
}

bool MainWindow::IsWalking() const {
    return !running_ && engine::IsTestAllActive(view_);  // a run's state is the worker's
}

void MainWindow::StartWalk() {
    if (starting_ || running_ || !engine::BeginTestAll(view_)) return;
    qApp->installEventFilter(this);  // key A, wherever the focus is
    UpdateActions();
    StepWalk();
}

void MainWindow::StepWalk() {
    if (!IsWalking()) return;
    if (engine::StepTestAll(view_))
        walkTimer_.start(kWalkPause);
    else
        EndWalk();
}

void MainWindow::AbortWalk() {
    if (!IsWalking()) return;
    engine::AbortTestAll(view_);
    EndWalk();
}

void MainWindow::EndWalk() {
    walkTimer_.stop();
    qApp->removeEventFilter(this);
    ShowStatus({});
    ScriptHasChanged();  // a missing subroutine may have been loaded
    UpdateActions();
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (IsWalking() &&
        (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride)) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool plain =
            key->modifiers() == Qt::NoModifier || key->modifiers() == Qt::ShiftModifier;
        if ((key->key() == Qt::Key_A && plain) || key->key() == Qt::Key_Escape) {
            AbortWalk();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

}  // namespace lumo::ui
