#include "ui/desk.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QRegularExpression>

#include "platform/files.h"
#include "ui/text.h"

namespace lumo::ui {
namespace {

/// The folder, or the nearest one above that exists.
QString ExistingFolder(std::string folder) {
    while (!folder.empty() && !platform::FolderExists(folder)) {
        const std::size_t slash = folder.rfind('/');
        folder.resize(slash == std::string::npos ? 0 : slash);
    }
    return ToQt(folder);
}

std::optional<std::string> Picked(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    const QByteArray path = QFile::encodeName(dialog.selectedFiles().constFirst());
    return path.toStdString();
}

}  // namespace

std::optional<std::string> AskOpenPath(QWidget& window, const FileQuestion& question) {
    QFileDialog dialog(&window, ToQt(question.title), ExistingFolder(question.folder),
                       FileFilter(question.filter));
    dialog.setFileMode(QFileDialog::ExistingFile);
    return Picked(dialog);
}

std::optional<std::string> AskSavePath(QWidget& window, const FileQuestion& question) {
    QFileDialog dialog(&window, ToQt(question.title), ExistingFolder(question.folder),
                       FileFilter(question.filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(ToQt(question.extension));
    // A name without an extension gets that of the kind of file that is chosen.
    QObject::connect(
        &dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString& chosen) {
            static const QRegularExpression firstPattern(QStringLiteral("\\(\\*\\.([^ )]+)"));
            const QString pattern = firstPattern.match(chosen).captured(1);
            static const QRegularExpression eitherCase(QStringLiteral("\\[(.).\\]"));
            QString extension = pattern;
            dialog.setDefaultSuffix(extension.replace(eitherCase, QStringLiteral("\\1")));
        });
    if (!question.name.empty()) dialog.selectFile(ToQt(question.name));
    return Picked(dialog);
}

void Tell(QWidget& window, std::string_view text, std::string_view caption) {
    QMessageBox box(QMessageBox::NoIcon, ToQt(caption), ToQt(text), QMessageBox::Ok, &window);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

bool AskYesNo(const Desk& desk, std::string_view question) {
    QMessageBox box(QMessageBox::Question, QStringLiteral("Lumoscript"), ToQt(question),
                    QMessageBox::Yes | QMessageBox::No, &desk.window);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes;
}

}  // namespace lumo::ui
