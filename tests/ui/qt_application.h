#pragma once

#include <QApplication>

namespace lumo::test {

/// The application object that widgets need, made once. It is never deleted: Qt's own statics go
/// in an order that cannot be relied on.
inline QApplication& TestApplication() {
    static QApplication* application = [] {
        static int count = 1;
        static char name[] = "ui_tests";
        static char* arguments[] = {name, nullptr};
        return new QApplication(count, arguments);
    }();
    return *application;
}

}  // namespace lumo::test
