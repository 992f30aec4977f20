// Pictures of the window for the documents and for the eye: `ui_screenshots FOLDER` writes one for
// each state that is worth a look.

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QTabWidget>
#include <QThread>
#include <cstdio>

#include "engine/command.h"
#include "engine/editing.h"
#include "engine/open_sample.h"
#include "engine/sample_tests.h"
#include "script/names.h"
#include "support/test_files.h"
#include "ui/command_form.h"
#include "ui/command_tree.h"
#include "ui/image_window.h"
#include "ui/list_editor.h"
#include "ui/main_form.h"
#include "ui/main_window.h"
#include "ui/preference_dialog.h"
#include "ui/progress_panel.h"
#include "ui/text.h"
#include "ui/theme.h"

namespace {

void Settle() {
    for (int i = 0; i < 20; ++i) {
        QApplication::processEvents();
        QThread::msleep(5);
    }
}

/// The forms of some commands, as they open.
void TakeForms(lumo::ui::MainWindow& window, const QDir& folder, const QString& theme) {
    using namespace lumo;
    namespace names = script::names;
    for (const std::string_view name :
         {names::kStartImageLoop, names::kOutputSetup, names::kCrop, names::kScale,
          names::kAdjustColourHsl, names::kUnsharpMask, names::kColourCurveAdjust,
          names::kCustomFilter, names::kWatermark, names::kTextOverlayAbsolute,
          names::kJpgFileHeader, names::kCopyMove, names::kInputTemporary}) {
        engine::CLumoscriptView& view = window.View();
        ui::CommandForm form(view, *engine::FindCommand(name), engine::DefaultParams(view, name));
        form.show();
        Settle();
        Settle();
        QString file = ui::ToQt(name) + QLatin1Char('-') + theme + QStringLiteral(".png");
        file.replace(QLatin1Char('/'), QLatin1Char('-'))
            .replace(QLatin1Char(' '), QLatin1Char('-'));
        form.grab().save(folder.filePath(file));
    }
}

/// Every page of the sheets of preferences, and the editor of Image lists.
void TakeDialogs(lumo::ui::MainWindow& window, const QDir& folder, const QString& theme) {
    using namespace lumo;
    for (const ui::PreferenceSheet* sheet :
         {&ui::kGeneralSheet, &ui::kWriterSheet, &ui::kReaderSheet}) {
        ui::PreferenceDialog dialog(window.View(), *sheet, &window);
        dialog.show();
        for (int i = 0; i < dialog.Tabs().count(); ++i) {
            dialog.Tabs().setCurrentIndex(i);
            Settle();
            dialog.grab().save(folder.filePath(ui::ToQt(sheet->title) + QLatin1Char('-') +
                                               dialog.Tabs().tabText(i) + QLatin1Char('-') + theme +
                                               QStringLiteral(".png")));
        }
    }
    ui::ListEditor editor(window.View(), &window);
    editor.Rows().Insert({"; Summer", "<INSTALL_FOLDER>\\Photos\\ (include subfolders)",
                          "<INSTALL_FOLDER>/Photos/Fig.jpg", "/gone/away.jpg"});
    editor.show();
    Settle();
    editor.grab().save(
        folder.filePath(QStringLiteral("Image-list-") + theme + QStringLiteral(".png")));
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
    ui::CommandTree* tree = window.Form().tree;
    tree->expand(tree->model()->index(1, 0));
    tree->expand(tree->model()->index(0, 0, tree->model()->index(1, 0)));

    const auto save = [&](QWidget& widget, const QString& name) {
        Settle();
        widget.grab().save(folder.filePath(name + QStringLiteral(".png")));
    };
    for (const auto& [name, theme] :
         {std::pair{"light", ui::Theme::Light}, std::pair{"dark", ui::Theme::Dark}}) {
        ui::ApplyTheme(theme);
        const QString ending = QLatin1Char('-') + QString::fromLatin1(name);
        save(window, QStringLiteral("window") + ending);
        ui::CommandForm form(window.View(), *engine::FindCommand("Drop Shadow effect"),
                             "8,192,192,192,10,50,0,1,50,", &window);
        form.show();
        save(form, QStringLiteral("form") + ending);
        form.close();
        auto* enlarged =
            new ui::ImageWindow(&window, window.View().sample.left.View(),
                                window.View().working.main.View(), ui::ImageWindow::Show::Split);
        enlarged->resize(window.size());
        enlarged->show();
        save(*enlarged, QStringLiteral("split") + ending);
        enlarged->close();
        TakeForms(window, folder, QString::fromLatin1(name));
        TakeDialogs(window, folder, QString::fromLatin1(name));
    }
    window.Form().filter->setText(QStringLiteral("blur"));
    window.Form().progress->Begin();
    window.Form().progress->ShowCounts({1250, 418, 415, 2});
    window.Form().progress->SetStatus(QStringLiteral("Processing..."));
    save(window, QStringLiteral("run"));
    window.View().script.modified = false;
    return 0;
}
