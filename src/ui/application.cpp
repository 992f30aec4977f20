#include "ui/application.h"

#include <QApplication>
#include <QMainWindow>

namespace lumo::ui {

int RunDesktop(int& argc, char** argv, const StartRequest&) {
    const QApplication application(argc, argv);
    QMainWindow window;
    window.show();
    return QApplication::exec();
}

}  // namespace lumo::ui
