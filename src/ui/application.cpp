#include "ui/application.h"

#include <QApplication>
#include <clocale>

#include "ui/main_window.h"

namespace lumo::ui {

int RunDesktop(int& argc, char** argv, const StartRequest& request) {
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("lumoscript"));
    QApplication::setApplicationVersion(QStringLiteral(LUMO_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("lumoscript"));
    std::setlocale(LC_NUMERIC, "C");  // the locale of the user never changes a number in a file
    MainWindow window(request);
    window.show();
    QApplication::exec();
    return window.ExitStatus();
}

}  // namespace lumo::ui
