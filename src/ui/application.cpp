#include "ui/application.h"

#include <signal.h>

#include <QApplication>
#include <clocale>

#include "ui/main_window.h"
#include "ui/termination.h"

namespace lumo::ui {

int RunDesktop(int& argc, char** argv, const StartRequest& request) {
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("lumoscript"));
    QApplication::setApplicationVersion(QStringLiteral(LUMO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("lumoscript"));
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
