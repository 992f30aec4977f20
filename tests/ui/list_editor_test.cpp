// The editor of Image lists.

#include "ui/list_editor.h"

#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>
#include <filesystem>

#include "engine/editing.h"
#include "io/start_setup.h"
#include "script/names.h"
#include "ui/command_form.h"
#include "ui/path_control.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

class ListEditorTest : public test::WindowTest {
  protected:
    ListEditorTest() {
        Start();
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) test::PutFile(*this / name, "x");
        std::filesystem::create_directory(*this / "pictures");
        editor_ = std::make_unique<ListEditor>(View());
        editor_->show();
    }

    ListEditor& Editor() { return *editor_; }
    ListRows& Rows() { return editor_->Rows(); }
    static QPushButton* Button(QWidget& dialog, const std::string& text) {
        for (QPushButton* button : dialog.findChildren<QPushButton*>())
            if (FromQt(VisibleText(button->text())) == text) return button;
        ADD_FAILURE() << "no button " << text;
        return nullptr;
    }
    void Press(const std::string& text) { Click(Button(Editor(), text)); }
    void Select(const std::vector<int>& rows) {
        Rows().clearSelection();
        for (const int row : rows) Rows().item(row)->setSelected(true);
    }
    std::string Summary() { return FromQt(Editor().findChild<QLabel*>()->text()); }
    static std::string List(const std::string& lines) { return "START\r\n" + lines + "END\r\n"; }

    std::unique_ptr<ListEditor> editor_;
};

TEST_F(ListEditorTest, AddsFilesAndFoldersBelowTheSelection) {
    Editor().AddPaths({*this / "a.jpg", *this / "c.jpg"});
    Select({0});
    Editor().AddPaths({*this / "b.jpg", *this / "pictures"});
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg", *this / "b.jpg", *this / "pictures/",
                                            *this / "c.jpg"));
    EXPECT_THAT(Rows().SelectedRows(), ElementsAre(1, 2));
    EXPECT_EQ(Summary(), "3 files, 1 folder");
    EXPECT_TRUE(Editor().isWindowModified());
}

TEST_F(ListEditorTest, TellsWhatNoLineCanName) {
    test::PutFile(*this / "two\nlines.jpg", "x");
    answers.Expect("two?lines.jpg", QMessageBox::Ok);
    Editor().AddPaths({*this / "two\nlines.jpg", *this / "a.jpg"});
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg"));
}

TEST_F(ListEditorTest, SwitchesSubfoldersOfFoldersAlone) {
    Editor().AddPaths({*this / "a.jpg", *this / "pictures"});
    Select({0});
    EXPECT_FALSE(Button(Editor(), "Include subfolders")->isEnabled());
    Select({0, 1});
    EXPECT_TRUE(Button(Editor(), "Include subfolders")->isEnabled());
    Press("Include subfolders");
    EXPECT_THAT(Rows().Lines(),
                ElementsAre(*this / "a.jpg", *this / "pictures/ (include subfolders)"));
    EXPECT_TRUE(Button(Editor(), "Include subfolders")->isChecked());
    Press("Include subfolders");
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg", *this / "pictures/"));
}

TEST_F(ListEditorTest, MovesAndRemovesTheSelectionTogether) {
    Editor().AddPaths({*this / "a.jpg", *this / "b.jpg", *this / "c.jpg", *this / "pictures"});
    Select({1, 3});
    Press("Move up");
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "b.jpg", *this / "a.jpg", *this / "pictures/",
                                            *this / "c.jpg"));
    EXPECT_THAT(Rows().SelectedRows(), ElementsAre(0, 2));
    EXPECT_FALSE(Button(Editor(), "Move up")->isEnabled());
    Rows().MoveSelected(-1);  // the first cannot go on, so none does
    EXPECT_THAT(Rows().SelectedRows(), ElementsAre(0, 2));
    Press("Move down");
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg", *this / "b.jpg", *this / "c.jpg",
                                            *this / "pictures/"));
    EXPECT_THAT(Rows().SelectedRows(), ElementsAre(1, 3));
    EXPECT_FALSE(Button(Editor(), "Move down")->isEnabled());
    Rows().MoveSelected(1);  // nor does it the other way
    EXPECT_EQ(Rows().LineAt(1), *this / "b.jpg");
    Editor().activateWindow();
    Rows().setFocus();
    ASSERT_TRUE(test::WaitUntil([&] { return Editor().isActiveWindow(); }));
    QTest::keyClick(&Rows(), Qt::Key_Delete);
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg", *this / "c.jpg"));
    Rows().clearSelection();
    Rows().RemoveSelected();
    EXPECT_EQ(Rows().count(), 2);
}

TEST_F(ListEditorTest, ALineCanBeTypedUnlessItWouldEndTheList) {
    Editor().AddPaths({*this / "a.jpg"});
    const auto type = [this](const char* text) {
        Rows().editItem(Rows().item(0));
        auto* edit = Rows().findChild<QLineEdit*>();
        ASSERT_NE(edit, nullptr);
        edit->setText(QString::fromUtf8(text));
        QTest::keyClick(edit, Qt::Key_Return);
        EXPECT_TRUE(test::WaitUntil([this] { return !Rows().findChild<QLineEdit*>(); }));
    };
    type("<INSTALL_FOLDER>\\Photos\\");
    EXPECT_THAT(Rows().Lines(), ElementsAre("<INSTALL_FOLDER>\\Photos\\"));
    EXPECT_FALSE(Rows().IsMissing(0));
    EXPECT_EQ(Summary(), "0 files, 1 folder");
    for (const char* refused : {"END", "", "  "}) {
        type(refused);
        EXPECT_THAT(Rows().Lines(), ElementsAre("<INSTALL_FOLDER>\\Photos\\")) << refused;
        EXPECT_EQ(FromQt(Rows().item(0)->text()), "<INSTALL_FOLDER>\\Photos\\");
    }
    type("; nothing but words");
    EXPECT_EQ(Summary(), "0 files, 0 folders");
}

TEST_F(ListEditorTest, KeepsTheBytesOfWhatItDoesNotUnderstand) {
    const std::string text = List("; caf\xe9\r\n/gone/\xff.jpg\r\n\r\n/x/ (no subfolders)\r\n");
    test::PutFile(*this / "old.lst", text);
    ASSERT_TRUE(Editor().Open(*this / "old.lst"));
    EXPECT_FALSE(Editor().isWindowModified());
    EXPECT_FALSE(Rows().item(1)->flags() & Qt::ItemIsEditable);
    EXPECT_EQ(Summary(), "1 file, 1 folder; 2 not found");
    Press("Save");
    EXPECT_EQ(test::FileText(*this / "old.lst"),
              List("; caf\xe9\r\n/gone/\xff.jpg\r\n/x/ (no subfolders)\r\n"));
}

TEST_F(ListEditorTest, SavesUnderANewNameAndOpensAgain) {
    Editor().AddPaths({*this / "a.jpg"});
    answers.Pick(*this / "new");
    Press("Save");
    EXPECT_EQ(Editor().Path(), *this / "new.lst");
    EXPECT_EQ(test::FileText(*this / "new.lst"), List(*this / "a.jpg\r\n"));
    EXPECT_FALSE(Editor().isWindowModified());
    Press("New");
    EXPECT_EQ(Editor().Path(), "");
    EXPECT_EQ(Rows().count(), 0);
    answers.Pick(*this / "new.lst");
    Press("Open...");
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg"));
}

TEST_F(ListEditorTest, AFileThatIsNoListIsToldAndTheListStays) {
    Editor().AddPaths({*this / "a.jpg"});
    test::PutFile(*this / "bad.lst", "BEGIN\r\n");
    answers.Expect("Not a valid Lumoscript image list!", QMessageBox::Ok);
    EXPECT_FALSE(Editor().Open(*this / "bad.lst"));
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "a.jpg"));
}

TEST_F(ListEditorTest, AFailedSaveIsToldAndTheListStaysChanged) {
    ASSERT_TRUE(Editor().Open(*this / "no folder/x.lst"));  // not there yet
    Editor().AddPaths({*this / "a.jpg"});
    answers.Expect("Unable to save ", QMessageBox::Ok);
    Press("Save");
    EXPECT_TRUE(Editor().isWindowModified());
}

TEST_F(ListEditorTest, AsksBeforeChangesAreLost) {
    Editor().AddPaths({*this / "a.jpg"});
    answers.Expect("The Image list has been changed. Save it?", QMessageBox::Cancel);
    Press("Close");
    EXPECT_TRUE(Editor().isVisible());
    answers.Expect("Save it?", QMessageBox::Save);
    answers.Pick(*this / "kept.lst");
    QTest::keyClick(&Editor(), Qt::Key_Escape);
    EXPECT_FALSE(Editor().isVisible());
    EXPECT_EQ(test::FileText(*this / "kept.lst"), List(*this / "a.jpg\r\n"));
}

TEST_F(ListEditorTest, TakesDroppedFilesAndLeavesThemWhereTheyAre) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(ToQt(*this / "b.jpg")),
                  QUrl::fromLocalFile(ToQt(*this / "pictures")),
                  QUrl(QStringLiteral("https://example.org/x.jpg"))});
    QDragEnterEvent enter({10, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Rows().viewport(), &enter);
    QDropEvent drop({10, 10}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(Rows().viewport(), &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction);
    EXPECT_THAT(Rows().Lines(), ElementsAre(*this / "b.jpg", *this / "pictures/"));
}

TEST_F(ListEditorTest, ALongListIsHandledAtOnce) {
    std::vector<std::string> paths;
    for (int i = 0; i < 5000; ++i) paths.push_back(*this / ("gone/" + std::to_string(i) + ".jpg"));
    Editor().AddPaths(paths);
    Rows().selectAll();
    Rows().item(0)->setSelected(false);
    Press("Move up");
    EXPECT_EQ(Rows().LineAt(4999), paths[0]);
    Press("Remove");
    EXPECT_THAT(Rows().Lines(), ElementsAre(paths[0]));
}

// ---- From the window ----------------------------------------------------------------------------

class ListInWindow : public ListEditorTest {
  protected:
    /// The next dialog is the editor; its title is noted, and it gets one more file.
    void ExpectEditor(std::vector<std::string>* lines) {
        answers.Do([lines](QWidget* dialog) {
            auto* editor = qobject_cast<ListEditor*>(dialog);
            ASSERT_NE(editor, nullptr) << FromQt(dialog->windowTitle());
            *lines = editor->Rows().Lines();
            editor->close();
        });
    }
    static std::string StartParams(const std::string& list) {
        return "32,1,\"" + list + "\",\"\",1,1,1,1,1,1,1,1,1,1,1,";
    }
};

TEST_F(ListInWindow, TheItemEditsTheListOfTheScript) {
    test::PutFile(*this / "script.lst", List("; of the script\r\n"));
    test::PutFile(*this / "recent.lst", List("; used last\r\n"));
    std::vector<std::string> lines{"?"};
    ExpectEditor(&lines);
    Trigger(Act::ImageList);
    EXPECT_THAT(lines, IsEmpty());  // a new one
    EXPECT_EQ(View().settings.recentLists[0], "");
    View().settings.recentLists[0] = *this / "recent.lst";
    ExpectEditor(&lines);
    Trigger(Act::ImageList);
    EXPECT_THAT(lines, ElementsAre("; used last"));
    SetScript(
        {"START image loop (setup)", StartParams(*this / "script.lst"), "END image loop", "0"});
    ExpectEditor(&lines);
    Trigger(Act::ImageList);
    EXPECT_THAT(lines, ElementsAre("; of the script"));
    EXPECT_EQ(View().settings.recentLists[0], *this / "script.lst");
}

TEST_F(ListInWindow, TheFormOfStartEditsItsList) {
    test::PutFile(*this / "script.lst", List("; of the script\r\n"));
    const engine::Command& start = *engine::FindCommand(script::names::kStartImageLoop);
    CommandForm form(View(), start, StartParams(*this / "script.lst"));
    form.show();
    auto* path = qobject_cast<PathControl*>(form.Fields().Control(io::start::kListPath));
    ASSERT_NE(path, nullptr);
    std::vector<std::string> lines;
    ExpectEditor(&lines);
    Click(Button(*path, "Edit..."));
    EXPECT_THAT(lines, ElementsAre("; of the script"));
    EXPECT_EQ(FromQt(path->Edit().text()), *this / "script.lst");
    // A list that is made here becomes that of the field.
    path->Edit().clear();
    answers.Do([this](QWidget* dialog) {
        auto* editor = qobject_cast<ListEditor*>(dialog);
        ASSERT_NE(editor, nullptr);
        editor->AddPaths({*this / "a.jpg"});
        answers.Pick(*this / "made.lst");
        Click(Button(*editor, "Save"));
        editor->close();
    });
    Click(Button(*path, "Edit..."));
    EXPECT_EQ(FromQt(path->Edit().text()), *this / "made.lst");
}

}  // namespace
}  // namespace lumo::ui
