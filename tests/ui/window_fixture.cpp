#include "ui/window_fixture.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <filesystem>

#include "engine/editing.h"
#include "support/test_files.h"
#include "ui/command_tree.h"
#include "ui/parameter_panel.h"
#include "ui/progress_panel.h"
#include "ui/qt_application.h"
#include "ui/script_list.h"
#include "ui/text.h"

namespace lumo::test {
namespace {

/// Made once: it is most of what a test would have to wait for.
std::string CopyOfShippedFiles() {
    static const TempFolder folder;
    static const std::string copy = [] {
        std::filesystem::copy(SourceRoot() / "share", folder / "share",
                              std::filesystem::copy_options::recursive);
        return folder / "share";
    }();
    return copy;
}

std::string TextOf(QWidget* dialog) {
    if (const auto* box = qobject_cast<QMessageBox*>(dialog)) return ui::FromQt(box->text());
    return ui::FromQt(dialog->windowTitle());
}

void PickPath(QWidget* widget, const std::string& path) {
    auto* dialog = qobject_cast<QFileDialog*>(widget);
    ASSERT_NE(dialog, nullptr) << "no file dialog but " << TextOf(widget);
    auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    ASSERT_NE(name, nullptr);
    // Typing lets go of a selected file; a text set from outside does not.
    for (QAbstractItemView* view : dialog->findChildren<QAbstractItemView*>())
        if (view->selectionModel()) view->clearSelection();
    name->setText(ui::ToQt(path));
    QMetaObject::invokeMethod(dialog, "accept");
}

void Dismiss(QWidget* widget) {
    if (auto* dialog = qobject_cast<QDialog*>(widget))
        dialog->reject();
    else
        widget->close();
}

}  // namespace

Answers::Answers() {
    TestApplication();
    LookAgain();
}

/// A timer of its own each time: one that is at work does not fire again, and an answer may open
/// another dialog.
void Answers::LookAgain() {
    QTimer::singleShot(5, this, &Answers::Look);
}

void Answers::Look() {
    LookAgain();
    QWidget* dialog = QApplication::activeModalWidget();
    if (!dialog || dialog == answered_) return;
    answered_ = dialog;
    shown.push_back(TextOf(dialog));
    if (!waiting_.empty()) {
        const auto deed = std::move(waiting_.front());
        waiting_.pop_front();
        deed(dialog);
    } else if (always_) {
        always_(dialog);
    } else {
        unexpected.push_back(shown.back());
        Dismiss(dialog);
    }
    answered_ = nullptr;
}

void Answers::Do(std::function<void(QWidget*)> deed) {
    waiting_.push_back(std::move(deed));
}

void Answers::Expect(std::string_view text, int button) {
    Do([words = std::string(text), button](QWidget* dialog) {
        auto* box = qobject_cast<QMessageBox*>(dialog);
        ASSERT_NE(box, nullptr) << "no message box but " << TextOf(dialog);
        EXPECT_THAT(TextOf(dialog), testing::HasSubstr(words));
        QAbstractButton* pressed = box->button(static_cast<QMessageBox::StandardButton>(button));
        ASSERT_NE(pressed, nullptr) << words;
        QTest::mouseClick(pressed, Qt::LeftButton);
    });
}

void Answers::Pick(const std::string& path) {
    Do([path](QWidget* dialog) { PickPath(dialog, path); });
}

void Answers::Cancel() {
    Do(Dismiss);
}

void WindowTest::UseShippedFilesOfItsOwn() {
    std::filesystem::remove(home_ / "install");
    std::filesystem::copy(SourceRoot() / "share", home_ / "install",
                          std::filesystem::copy_options::recursive);
}

bool WaitUntil(const std::function<bool()>& condition, double seconds) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > seconds * 1000) return false;
        QTest::qWait(1);
    }
    return true;
}

WindowTest::WindowTest() {
    TestApplication();
    const auto set = [this](const char* name, const std::string& value) {
        variables_.push_back(std::make_unique<ScopedVariable>(name, value));
    };
    set("HOME", home_.Path());
    set("XDG_CONFIG_HOME", home_ / ".config");
    set("XDG_DATA_HOME", home_ / ".local");
    // Commands on files may change what is shipped: they get a copy.
    std::filesystem::create_directory_symlink(CopyOfShippedFiles(), home_ / "install");
    set("LUMOSCRIPT_INSTALL_FOLDER", home_ / "install");
    set("PATH", home_ / "bin");  // no opener of the desktop but those that a test puts there
}

WindowTest::~WindowTest() {
    if (window_) CloseWindow();
    EXPECT_THAT(answers.unexpected, testing::IsEmpty());
    EXPECT_TRUE(answers.AllGiven()) << "a dialog that was expected did not come";
}

void WindowTest::Start(const ui::StartRequest& request) {
    window_ = std::make_unique<ui::MainWindow>(request);
    window_->show();
    QTest::qWait(1);
}

void WindowTest::CloseWindow() {
    View().script.modified = false;
    window_->close();
    EXPECT_TRUE(WaitUntil([&] { return !window_->isVisible(); }));
    window_.reset();
}

void WindowTest::Press(QWidget* control, Qt::Key key, Qt::KeyboardModifiers modifiers) {
    window_->activateWindow();  // a dialog may have had the keyboard
    EXPECT_TRUE(WaitUntil([&] { return window_->isActiveWindow(); }));
    QTest::keyClick(control, key, modifiers);
}

void WindowTest::Click(QWidget* button) {
    QTest::mouseClick(button, Qt::LeftButton);
}

void WindowTest::ClickRow(int row) {
    ui::ScriptList* list = Form().scriptList;
    list->scrollTo(list->model()->index(row, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                      list->visualRect(list->model()->index(row, 0)).center());
}

void WindowTest::AddByKeys(const std::string& name) {
    Form().filter->setFocus();
    Form().filter->clear();
    QTest::keyClicks(Form().filter, ui::ToQt(name));
    QTest::keyClick(Form().filter, Qt::Key_Return);
    ui::CommandTree* tree = Form().tree;
    for (int step = 0; step < 200 && tree->SelectedName() != name; ++step)
        QTest::keyClick(tree, Qt::Key_Down);
    ASSERT_EQ(tree->SelectedName(), name);
    QTest::keyClick(tree, Qt::Key_Return);
    Form().filter->clear();
}

std::vector<std::string> WindowTest::Rows() {
    std::vector<std::string> rows;
    const QAbstractItemModel* model = Form().scriptList->model();
    for (int i = 0; i < model->rowCount(); ++i)
        rows.push_back(ui::FromQt(model->index(i, 0).data().toString()));
    return rows;
}

std::string WindowTest::PanelText() {
    return ui::FromQt(Form().panel->Text());
}
std::string WindowTest::Status() {
    return ui::FromQt(Form().progress->Status());
}

void WindowTest::SetScript(const std::vector<std::string>& lines) {
    script::Script& commands = View().script.commands;
    commands.Clear();
    for (std::size_t i = 0; i + 1 < lines.size(); i += 2) commands.Add(lines[i], lines[i + 1]);
    View().script.modified = false;
    View().ui.ScriptChanged();
    engine::SelectCommand(View(), 0);
}

}  // namespace lumo::test
