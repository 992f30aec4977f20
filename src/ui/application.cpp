#include "ui/application.h"

#include <signal.h>

#include <QApplication>
#include <QIcon>
#include <clocale>

#include "ui/main_window.h"
#include "ui/termination.h"

namespace lumo::ui {
namespace {

/// That of the desktop's theme where the program is installed, otherwise the one inside of it.
QIcon ProgramIcon() {
    QIcon icon;
    for (const int size : {16, 32, 48, 128, 256})
        icon.addFile(QStringLiteral(":/icons/%1x%1/lumoscript.png").arg(size));
    return QIcon::fromTheme(QStringLiteral("lumoscript"), icon);
}

}  // namespace

int RunDesktop(char* program, const StartRequest& request) {
    // The arguments have been read; Qt is to find no options of its own among names of files.
    int count = 1;
    char* arguments[] = {program, nullptr};
    const QApplication application(count, arguments);
    QApplication::setApplicationName(QStringLiteral("lumoscript"));
    QApplication::setApplicationVersion(QStringLiteral(LUMO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("lumoscript"));
    QApplication::setWindowIcon(ProgramIcon());
    // A full disk or a limit on file sizes is an error of one file, not the end of the program.
    signal(SIGXFSZ, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
    std::setlocale(LC_NUMERIC, "C");  // the locale of the user never changes a number in a file
    MainWindow window(request);
    const Termination termination(
        [&window](int signalNumber) { window.EndBySignal(signalNumber); });
    window.show();
    QApplication::exec();
    return window.ExitStatus();
}

}  // namespace lumo::ui
