// Pictures of the window for the documents and for the eye: `ui_screenshots FOLDER` writes one for
// each state that is worth a look.

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QMenuBar>
#include <QThread>
#include <cstdio>

#include "engine/editing.h"
#include "engine/open_sample.h"
#include "engine/sample_tests.h"
#include "support/test_files.h"
#include "ui/main_form.h"
#include "ui/main_window.h"
#include "ui/theme.h"

namespace {

void Settle() {
    for (int i = 0; i < 20; ++i) {
        QApplication::processEvents();
        QThread::msleep(5);
    }
}

}  // namespace

int main(int argc, char** argv) {
    using namespace lumo;
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) {
        std::fputs("ui_screenshots FOLDER [WIDTH HEIGHT]\n", stderr);
        return 2;
    }
    const QDir folder(arguments[1]);
    const std::string share = (test::SourceRoot() / "share").string();
    ui::MainWindow window({.scriptPath = share + "/Scripts/Postcards.whs"});
    if (arguments.size() > 3) {
        window.setWindowState(Qt::WindowNoState);
        window.resize(arguments[2].toInt(), arguments[3].toInt());
    }
    window.show();
    engine::OpenSample(window.View(), share + "/Photos/Dragonfly.jpg");
    for (int i = 0; i + 1 < window.View().script.commands.Count(); ++i) {
        engine::SelectCommand(window.View(), i);
        engine::TestOne(window.View());
    }
    engine::SelectCommand(window.View(), 3);
    for (const auto& [name, theme] :
         {std::pair{"light", ui::Theme::Light}, std::pair{"dark", ui::Theme::Dark}}) {
        ui::ApplyTheme(theme);
        Settle();
        window.grab().save(folder.filePath(QString::fromLatin1(name) + QStringLiteral(".png")));
    }
    window.Form().filter->setText(QStringLiteral("blur"));
    window.View().run.mode = engine::RunMode::Idle;
    Settle();
    window.grab().save(folder.filePath(QStringLiteral("filter.png")));
    window.View().script.modified = false;
    return 0;
}
