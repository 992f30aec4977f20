#include "ui/text_window.h"

#include <QFileDialog>
#include <QFontDatabase>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QShortcut>
#include <QStandardPaths>
#include <QVBoxLayout>
#include <functional>

#include "platform/files.h"
#include "platform/paths.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

/// Hands a path to the desktop; `failed` is called if there is no opener or it cannot do it. The
/// opener lives on when the program ends.
void OpenOnDesktop(const std::string& path, QObject* owner, const std::function<void()>& failed) {
    const QString opener = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (opener.isEmpty()) {
        failed();
        return;
    }
    auto* process = new QProcess;  // without an owner: it must not be killed with the window
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process, &QProcess::finished, owner,
                     [failed](int status, QProcess::ExitStatus) {
                         if (status != 0) failed();
                     });
    QObject::connect(process, &QProcess::errorOccurred, owner, [failed](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart) failed();
    });
    QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
    process->start(opener, {ToQt(path)});
}

}  // namespace

QWidget* ShowTextWindow(QWidget* owner, const QString& title, std::string_view text) {
    auto* window = new QWidget(owner, Qt::Window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowTitle(title);
    auto* column = new QVBoxLayout(window);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* edit = new QPlainTextEdit(ToQt(text), window);
    edit->setReadOnly(true);
    edit->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    edit->setLineWrapMode(QPlainTextEdit::NoWrap);
    edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    edit->setAccessibleName(title);
    auto* find = new QLineEdit(window);
    find->setPlaceholderText(QStringLiteral("Find"));
    find->setAccessibleName(QStringLiteral("Find in the text"));
    find->setClearButtonEnabled(true);
    column->addWidget(edit);
    column->addWidget(find);
    const auto next = [edit, find] {
        if (edit->find(find->text())) return;
        edit->moveCursor(QTextCursor::Start);  // around the end once
        edit->find(find->text());
    };
    QObject::connect(find, &QLineEdit::returnPressed, edit, next);
    QObject::connect(new QShortcut(QKeySequence::Find, window), &QShortcut::activated, find,
                     qOverload<>(&QWidget::setFocus));
    QObject::connect(new QShortcut(Qt::Key_Escape, window), &QShortcut::activated, window,
                     &QWidget::close);
    window->resize(720, 480);
    window->show();
    edit->setFocus();
    return window;
}

void ShowTextFile(const Desk& desk, const std::string& path) {
    if (!platform::FileExists(path)) {
        Tell(desk, "There is no file " + platform::Printable(path));
        return;
    }
    QWidget* window = &desk.window;
    const auto own = [desk, path, window] {
        const auto text = platform::ReadTextFile(path);
        if (text)
            ShowTextWindow(window, ToQt(platform::Printable(path)), *text);
        else
            Tell(desk, platform::Printable(path) + ": " + text.Message());
    };
    OpenOnDesktop(path, window, own);
}

void ShowFolder(const Desk& desk, const std::string& path) {
    if (!platform::FolderExists(path)) {
        Tell(desk, "There is no folder " + platform::Printable(path));
        return;
    }
    const auto list = [desk, path] {
        QFileDialog dialog(&desk.window, ToQt(path), ToQt(path));
        dialog.exec();
    };
    OpenOnDesktop(platform::AddBackSlash(path), &desk.window, list);
}

}  // namespace lumo::ui
