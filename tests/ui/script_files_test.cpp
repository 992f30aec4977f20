// New, open, save, recent files, subroutines, logs and lists, and what is asked about unsaved work.

#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <filesystem>

#include "engine/editing.h"
#include "platform/files.h"
#include "support/content_files.h"
#include "ui/elided_label.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::StartsWith;

constexpr const char* kStart = "START image loop (setup)";
constexpr const char* kEnd = "END image loop";

class ScriptFilesWindow : public test::WindowTest {
  protected:
    ScriptFilesWindow() {
        Start();
        test::PutFile(*this / "one.whs", Script("Despeckle"));
        test::PutFile(*this / "two.whs", Script("Median cut"));
        test::PutFile(*this / "sub.sbr", "SUBRT\r\nDespeckle\r\n0\r\nEND\r\n");
    }

    static std::string Script(const std::string& name) {
        return "BEGIN\r\nSTART image loop (setup)\r\n0\r\n" + name +
               "\r\n0\r\nEND image loop\r\n0\r\nEND\r\n";
    }
    void Open(const std::string& path) {
        answers.Pick(path);
        Trigger(Act::OpenScript);
    }
    std::string Title() { return FromQt(Form().scriptTitle->text()); }
    void Change() { engine::AddCommand(View(), "Despeckle", engine::AddFrom::Menu); }
    void PressRecent(int n) {
        for (QAction* action : Window().findChildren<QAction*>())
            if (action->isVisible() && action->text().startsWith(QStringLiteral("&%1 ").arg(n)) &&
                action->statusTip().startsWith(QStringLiteral("Opens the script"))) {
                action->trigger();
                return;
            }
        ADD_FAILURE() << "no item " << n;
    }
    std::string ShownText() {
        const QList<QPlainTextEdit*> texts = Window().findChildren<QPlainTextEdit*>();
        return texts.isEmpty() ? std::string() : FromQt(texts.back()->toPlainText());
    }
};

TEST_F(ScriptFilesWindow, OpensAndNamesTheScript) {
    EXPECT_EQ(Title(), "Batch script: (unsaved)");
    Open(*this / "one.whs");
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", kEnd));
    EXPECT_EQ(Title(), "Script name: one");
    EXPECT_FALSE(Window().isWindowModified());
    EXPECT_EQ(View().settings.recentScripts[0], *this / "one.whs");
    Trigger(Act::Undo);  // the Script before it
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Output setup", kEnd));
}

TEST_F(ScriptFilesWindow, AFileThatIsNoScriptLeavesTheScript) {
    Open(*this / "one.whs");
    test::PutFile(*this / "bad.whs", "no script at all");
    answers.Pick(*this / "bad.whs");
    answers.Expect("Not a valid script or subroutine file!", QMessageBox::Ok);
    answers.Expect("Unable to find or open named Lumoscript script file (.whs), check file path?",
                   QMessageBox::Ok);
    Trigger(Act::OpenScript);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", kEnd));
    EXPECT_EQ(Title(), "Script name: one");
}

TEST_F(ScriptFilesWindow, AsksAboutUnsavedWork) {
    Change();
    EXPECT_TRUE(Window().isWindowModified());
    answers.Expect("The script has been changed. Save it?", QMessageBox::Cancel);
    Trigger(Act::NewScript);
    EXPECT_EQ(Rows().size(), 4U);
    answers.Expect("The script has been changed. Save it?", QMessageBox::Discard);
    Trigger(Act::NewScript);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Output setup", kEnd));
    Trigger(Act::NewScript);  // nothing to ask about
    Change();
    answers.Expect("The script has been changed. Save it?", QMessageBox::Cancel);
    Window().close();
    EXPECT_TRUE(Window().isVisible());
    answers.Expect("The script has been changed. Save it?", QMessageBox::Save);
    answers.Pick(*this / "saved.whs");
    Window().close();
    EXPECT_FALSE(Window().isVisible());
    EXPECT_THAT(test::FileText(*this / "saved.whs"), HasSubstr("\r\nDespeckle\r\n0\r\n"));
}

TEST_F(ScriptFilesWindow, SavesUnderItsNameAndUnderAnother) {
    Open(*this / "one.whs");
    Change();
    Trigger(Act::SaveScript);
    EXPECT_FALSE(Window().isWindowModified());
    EXPECT_THAT(test::FileText(*this / "one.whs"),
                HasSubstr("\r\nDespeckle\r\n0\r\nDespeckle\r\n0\r\n"));
    answers.Pick(*this / "three");
    Trigger(Act::SaveScriptAs);
    EXPECT_EQ(answers.shown.back(), "SaveAs (Lumoscript script file)");
    EXPECT_EQ(test::FileText(*this / "three.whs"), test::FileText(*this / "one.whs"));
    EXPECT_EQ(Title(), "Script name: three");
    EXPECT_EQ(View().settings.recentScripts[0], *this / "three.whs");
}

TEST_F(ScriptFilesWindow, AFailedSaveIsToldAndKeepsTheChange) {
    Open(*this / "one.whs");
    Change();
    View().script.path = *this / "no folder/one.whs";
    answers.Expect("Unable to save ", QMessageBox::Ok);
    Trigger(Act::SaveScript);
    EXPECT_TRUE(View().script.modified);
    EXPECT_TRUE(Window().isWindowModified());
}

TEST_F(ScriptFilesWindow, AsksBeforeAShortScriptIsSaved) {
    SetScript({kStart, "0", kEnd, "0"});
    answers.Expect("Few commands in script! Continue anyway?", QMessageBox::No);
    Trigger(Act::SaveScriptAs);
    answers.Expect("Few commands in script! Continue anyway?", QMessageBox::Yes);
    answers.Pick(*this / "short.whs");
    Trigger(Act::SaveScriptAs);
    EXPECT_THAT(test::FileText(*this / "short.whs"), StartsWith("BEGIN\r\n"));
    answers.Expect("No commands except Input and Output in script! Continue anyway?",
                   QMessageBox::No);
    Trigger(Act::SaveSubroutineAs);
}

TEST_F(ScriptFilesWindow, ALongTitleStandsAlone) {
    const std::string title = "a-script-with-quite-a-long-name";
    test::PutFile(*this / (title + ".whs"), Script("Despeckle"));
    Open(*this / (title + ".whs"));
    EXPECT_EQ(Title(), title);
}

TEST_F(ScriptFilesWindow, RecentScriptsMoveUpWhenOneIsGone) {
    Open(*this / "one.whs");
    Open(*this / "two.whs");
    PressRecent(2);
    EXPECT_EQ(Title(), "Script name: one");
    EXPECT_THAT(View().settings.recentScripts,
                ElementsAre(*this / "one.whs", *this / "two.whs", "", ""));
    std::filesystem::remove(*this / "two.whs");
    answers.Expect("Unable to open or read Lumoscript script file (.whs)?", QMessageBox::Ok);
    PressRecent(2);
    EXPECT_THAT(View().settings.recentScripts, ElementsAre(*this / "one.whs", "", "", ""));
    EXPECT_EQ(Title(), "Script name: one");
    std::filesystem::remove(*this / "one.whs");
    answers.Expect("Unable to find or read script file?", QMessageBox::Ok);
    PressRecent(1);
    EXPECT_EQ(View().settings.recentScripts[0], "");
}

TEST_F(ScriptFilesWindow, ARecentScriptThatIsGoneLeavesUnsavedWorkUnsaved) {
    Open(*this / "one.whs");
    Open(*this / "two.whs");
    Change();
    std::filesystem::remove(*this / "one.whs");
    answers.Expect("The script has been changed. Save it?", QMessageBox::Discard);
    answers.Expect("Unable to open or read Lumoscript script file (.whs)?", QMessageBox::Ok);
    PressRecent(2);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", "Median cut", kEnd));
    EXPECT_TRUE(Window().isWindowModified());
    answers.Expect("The script has been changed. Save it?", QMessageBox::Cancel);
    Window().close();
    EXPECT_TRUE(Window().isVisible());
}

TEST_F(ScriptFilesWindow, SubroutinesAreLoadedEditedAndSaved) {
    answers.Pick(*this / "sub.sbr");
    Trigger(Act::LoadSubroutine);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Output setup", kEnd, "SUBROUTINE_START", "Despeckle",
                                    "SUBROUTINE_END"));
    answers.Expect("Save it?", QMessageBox::Discard);
    answers.Pick(*this / "sub.sbr");
    Trigger(Act::EditSubroutine);
    EXPECT_THAT(Rows(), ElementsAre("Despeckle"));
    Change();
    Trigger(Act::SaveScript);  // stays what it is
    EXPECT_THAT(test::FileText(*this / "sub.sbr"), StartsWith("SUBRT\r\n"));
    answers.Pick(*this / "sub.sbr");
    Trigger(Act::OpenSubroutineAsScript);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", "Despeckle", kEnd));
    answers.Pick(*this / "copy");
    Trigger(Act::SaveSubroutineAs);
    EXPECT_EQ(test::FileText(*this / "copy.sbr"), test::FileText(*this / "sub.sbr"));
    EXPECT_EQ(Title(), "Script name: sub");  // the Script keeps its file
    Trigger(Act::NewSubroutine);
    EXPECT_THAT(Rows(), ElementsAre("Script info"));
    EXPECT_EQ(Title(), "subroutine new script");
    test::PutFile(*this / "bad.sbr", "nothing of the kind");
    answers.Pick(*this / "bad.sbr");
    answers.Expect("Not a valid subroutine file!", QMessageBox::Ok);
    answers.Expect(
        "Unable to find or open named Lumoscript subroutine file (.sbr), check file "
        "path?",
        QMessageBox::Ok);
    Trigger(Act::LoadSubroutine);
    EXPECT_THAT(Rows(), ElementsAre("Script info"));
}

TEST_F(ScriptFilesWindow, LogsOpenInTheDesktopsViewerOrInOurOwn) {
    const std::string log = View().settings.folders.logs + "/Batch.log";
    answers.Expect("There is no file", QMessageBox::Ok);
    Trigger(Act::BatchLog);
    test::PutFile(log, "line one\nline two\n");
    Trigger(Act::BatchLog);  // the desktop has no opener here
    EXPECT_THAT(ShownText(), StartsWith("line one\nline two"));
    const std::string opener = *this / "bin/xdg-open";
    test::PutFile(opener, "#!/bin/sh\nprintf %s \"$1\" > \"$HOME/opened\"\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    const qsizetype before = Window().findChildren<QPlainTextEdit*>().size();
    Trigger(Act::BatchLog);
    EXPECT_TRUE(test::WaitUntil([&] { return test::FileText(*this / "opened") == log; }));
    test::PutFile(opener, "#!/bin/sh\nexit 3\n");
    Trigger(Act::BatchLog);
    EXPECT_TRUE(
        test::WaitUntil([&] { return Window().findChildren<QPlainTextEdit*>().size() > before; }));
    EXPECT_EQ(Window().findChildren<QPlainTextEdit*>().size(), before + 1);  // of the failure alone
}

TEST_F(ScriptFilesWindow, ListsAreRememberedAndForgottenWhenGone) {
    test::PutFile(*this / "a.lst", "START\r\nEND\r\n");
    test::PutFile(*this / "b.LST", "START\r\n; b\r\nEND\r\n");
    answers.Pick(*this / "a.lst");
    Trigger(Act::ListAsText);
    answers.Pick(*this / "b.LST");
    Trigger(Act::ListAsText);
    EXPECT_THAT(ShownText(), HasSubstr("; b"));
    EXPECT_THAT(View().settings.recentLists, ElementsAre(*this / "b.LST", *this / "a.lst", "", ""));
    std::filesystem::remove(*this / "b.LST");
    answers.Cancel();  // the editor, with the list that moved up
    for (QAction* action : Window().findChildren<QAction*>())
        if (action->isVisible() && action->text().startsWith(QStringLiteral("&1 ")) &&
            action->statusTip().startsWith(QStringLiteral("Opens the Image list")))
            action->trigger();
    EXPECT_THAT(answers.shown.back(), StartsWith(*this / "a.lst"));
    EXPECT_THAT(View().settings.recentLists, ElementsAre(*this / "a.lst", "", "", ""));
}

TEST_F(ScriptFilesWindow, SettingsOfTheWindowLast) {
    Trigger(Act::ToolBar);
    Trigger(Act::ThemeDark);
    Trigger(Act::KeepErrorLog);
    Trigger(Act::KeepDebugLog);
    EXPECT_TRUE(View().logs.debugOn);
    CloseWindow();
    Start();
    EXPECT_FALSE(View().settings.toolBar);
    EXPECT_FALSE(Action(Act::ToolBar)->isChecked());
    EXPECT_TRUE(Action(Act::ThemeDark)->isChecked());
    EXPECT_FALSE(View().settings.logs.errorLog);
    EXPECT_FALSE(Action(Act::KeepErrorLog)->isChecked());
    EXPECT_FALSE(View().logs.debugOn);  // for one program start only
    Trigger(Act::ThemeOfDesktop);
}

TEST_F(ScriptFilesWindow, EmptiesTheTempFolderAfterAsking) {
    const std::string slot = View().settings.folders.temp + "/Temp1.bmp";
    test::PutFile(slot, "x");
    answers.Expect("Remove all images from the Temp folder?", QMessageBox::No);
    Trigger(Act::EmptyTemp);
    EXPECT_TRUE(platform::FileExists(slot));
    answers.Expect("Remove all images from the Temp folder?", QMessageBox::Yes);
    Trigger(Act::EmptyTemp);
    EXPECT_FALSE(platform::FileExists(slot));
}

}  // namespace
}  // namespace lumo::ui
