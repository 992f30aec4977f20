#include "ui/qt_interface.h"

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QThread>
#include <cstdio>
#include <memory>
#include <utility>

#include "platform/paths.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

using engine::MessageIcon;

/// The bytes of a command, beside the text: what is no UTF-8 would not come back from the text.
const QString kCommandMime = QStringLiteral("application/x-lumoscript-command");

}  // namespace

bool QtInterface::OnWindowThread() const {
    return QThread::currentThread() == thread();
}

void QtInterface::SetRightFrame(imaging::Size size) {
    const std::lock_guard lock(mutex_);
    rightFrame_ = size;
}

void QtInterface::Abandon() {
    const std::lock_guard lock(mutex_);
    abandoned_ = true;
    answered_.notify_all();
}

void QtInterface::Later(const std::function<void(Waiting&)>& change) {
    {
        const std::lock_guard lock(mutex_);
        if (abandoned_) return;
        change(waiting_);
        if (!OnWindowThread() && std::exchange(posted_, true)) return;
    }
    if (OnWindowThread())
        ShowWaiting();
    else
        QMetaObject::invokeMethod(this, [this] { ShowWaiting(); }, Qt::QueuedConnection);
}

void QtInterface::ShowWaiting() {
    Waiting now;
    {
        const std::lock_guard lock(mutex_);
        if (abandoned_) return;
        now = std::exchange(waiting_, {});
        posted_ = false;
    }
    for (const QString& notice : now.notices) screen_.ShowNotice(notice);
    if (now.controls) screen_.CloseControls(*now.controls);
    if (now.title) screen_.ShowTitle(*now.title);
    if (now.runButton) screen_.ShowRunButton(*now.runButton);
    if (now.status) screen_.ShowStatus(*now.status);
    if (now.counts) screen_.ShowCounts(*now.counts);
    if (now.sizeText) screen_.ShowSizeText(*now.sizeText);
    if (now.rebuildLeft) screen_.RebuildLeft();
    if (now.right) screen_.ShowRight(*now.right);
    if (now.clearPanel) screen_.EmptyPanel();
    if (now.selected) screen_.ShowSelection(*now.selected);
    if (now.asterisk) screen_.PlayAsterisk();
    if (now.timer2) screen_.StartTimer2(*now.timer2);
    if (now.ended) screen_.RunHasEnded();
    if (now.quit) screen_.QuitProgram();
}

bool QtInterface::AskAndWait(const std::function<bool()>& question) {
    if (OnWindowThread()) return question();
    struct Reply {
        bool given = false, answer = false;  // under mutex_
    };
    const auto reply = std::make_shared<Reply>();
    const auto ask = [this, reply, question] {
        {
            const std::lock_guard lock(mutex_);
            if (abandoned_) return;
        }
        ShowWaiting();
        const bool answer = question();
        const std::lock_guard lock(mutex_);
        *reply = {true, answer};
        answered_.notify_all();
    };
    QMetaObject::invokeMethod(this, ask, Qt::QueuedConnection);
    std::unique_lock lock(mutex_);
    answered_.wait(lock, [&] { return reply->given || abandoned_; });
    return reply->given && reply->answer;
}

void QtInterface::ShowMessage(std::string_view text) {
    ShowMessageBox(text, "", MessageIcon::None);
}

void QtInterface::ShowMessageBox(std::string_view text, std::string_view caption,
                                 MessageIcon icon) {
    if (view_ && view_->run.noPrompts) {
        Notice(text);
        return;
    }
    AskAndWait([this, words = ToQt(text), title = ToQt(caption), icon] {
        screen_.ShowMessageBox(words, title, icon);
        return true;
    });
}

bool QtInterface::Ask(std::string_view question) {
    if (view_ && view_->run.noPrompts) {
        Notice(question);
        return false;
    }
    return AskAndWait([this, words = ToQt(question)] { return screen_.AskYesNo(words); });
}

void QtInterface::ShowReport(std::string_view title, std::string_view text) {
    if (OnWindowThread()) screen_.ShowReport(ToQt(title), text);
}

void QtInterface::Notice(std::string_view text) {
    const std::string line = platform::Printable(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
    Later([&](Waiting& waiting) { waiting.notices += ToQt(text); });
}

void QtInterface::Quit() {
    Later([](Waiting& waiting) { waiting.quit = true; });
}
void QtInterface::SetTitle(std::string_view text) {
    Later([&](Waiting& waiting) { waiting.title = ToQt(text); });
}
void QtInterface::SetStatus(std::string_view text) {
    Later([&](Waiting& waiting) { waiting.status = ToQt(text); });
}
void QtInterface::SetRunButton(std::string_view text) {
    Later([&](Waiting& waiting) { waiting.runButton = ToQt(text); });
}
void QtInterface::SetSizeText(std::string_view text) {
    Later([&](Waiting& waiting) { waiting.sizeText = ToQt(text); });
}
void QtInterface::ShowCounts(const engine::RunCounts& counts) {
    Later([&](Waiting& waiting) { waiting.counts = counts; });
}
void QtInterface::SetControls(engine::Controls controls) {
    Later([&](Waiting& waiting) { waiting.controls = controls; });
}

void QtInterface::SelectCommand(int index) {
    Later([&](Waiting& waiting) {
        waiting.selected = index;
        waiting.clearPanel = false;
    });
}

void QtInterface::ClearPanel() {
    Later([](Waiting& waiting) {
        waiting.clearPanel = true;
        waiting.selected.reset();
    });
}

void QtInterface::ScriptChanged() {
    // Editing belongs to the window's thread; no run changes the Script.
    if (OnWindowThread()) screen_.ScriptHasChanged();
}

bool QtInterface::EditParameters(std::string_view name, std::string& params, bool& makeDefault) {
    return OnWindowThread() && screen_.EditParameters(name, params, makeDefault);
}

void QtInterface::SetClipboardText(std::string_view text) {
    auto* data = new QMimeData;
    data->setText(ToQt(text));
    data->setData(kCommandMime, QByteArray(text.data(), static_cast<qsizetype>(text.size())));
    QApplication::clipboard()->setMimeData(data);
}

std::string QtInterface::ClipboardText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    if (!data) return {};
    if (data->hasFormat(kCommandMime)) return data->data(kCommandMime).toStdString();
    return FromQt(data->text());
}

bool QtInterface::EditCommand(int index) {
    return AskAndWait([this, index] { return screen_.EditCommandAt(index); });
}
bool QtInterface::PromptStart(int index) {
    return EditCommand(index);
}

void QtInterface::RebuildLeftDisplay() {
    Later([](Waiting& waiting) { waiting.rebuildLeft = true; });
}

void QtInterface::RebuildRightDisplay() {
    if (OnWindowThread()) {
        screen_.RebuildRight();
        return;
    }
    // The worker owns the picture while it runs, so it makes the small one itself. The window makes
    // the last one of a run anew.
    imaging::Size frame;
    {
        const std::lock_guard lock(mutex_);
        const auto now = std::chrono::steady_clock::now();
        if (abandoned_ || !view_) return;
        if (lastPicture_ && now - *lastPicture_ < pictureInterval_) return;
        lastPicture_ = now;
        frame = rightFrame_;
    }
    DisplayPicture picture = MakeDisplayPicture(view_->working.main.View(), frame);
    Later([&](Waiting& waiting) { waiting.right = std::move(picture); });
}

void QtInterface::ShowWaitCursor(bool on) {
    if (!OnWindowThread()) return;  // the window stays usable during a run
    if (on)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

void QtInterface::Play(engine::Sound) {
    Later([](Waiting& waiting) { waiting.asterisk = true; });
}
void QtInterface::StartTimer2(int milliseconds) {
    Later([&](Waiting& waiting) { waiting.timer2 = milliseconds; });
}
void QtInterface::RunEnded() {
    Later([](Waiting& waiting) { waiting.ended = true; });
}

}  // namespace lumo::ui
