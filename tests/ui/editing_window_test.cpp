// Editing of the Script by clicks and keys.

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include "engine/editing.h"
#include "script/names.h"
#include "ui/command_tree.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

namespace names = script::names;
using testing::ElementsAre;

class EditingWindow : public test::WindowTest {
  protected:
    EditingWindow() {
        Start();
        QApplication::clipboard()->clear();
    }

    static constexpr const char* kStart = "START image loop (setup)";
    static constexpr const char* kEnd = "END image loop";
    static constexpr const char* kOutput = "Output setup";

    void SetClipboard(const std::string& text) { QApplication::clipboard()->setText(ToQt(text)); }
    int Selected() { return Form().scriptList->SelectedRow(); }
    void PressOnList(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        Press(Form().scriptList, key, modifiers);
    }
};

TEST_F(EditingWindow, BeginsWithThreeCommands) {
    EXPECT_THAT(Rows(), ElementsAre(kStart, kOutput, kEnd));
    EXPECT_EQ(Selected(), 0);
    EXPECT_FALSE(Form().remove->isEnabled());
    EXPECT_FALSE(Form().swapUp->isEnabled());
    EXPECT_TRUE(Form().swapDown->isEnabled());
    EXPECT_TRUE(Form().edit->isEnabled());
    EXPECT_FALSE(Action(Act::Undo)->isEnabled());
}

TEST_F(EditingWindow, AddButtonWantsACommandAndNoCategory) {
    EXPECT_FALSE(Form().add->isEnabled());
    QTest::keyClick(Form().tree, Qt::Key_Down);
    ASSERT_TRUE(Form().tree->currentIndex().isValid());
    EXPECT_FALSE(Form().add->isEnabled());
    AddByKeys("Despeckle");
    QTest::keyClicks(Form().filter, QStringLiteral("Despeckle"));
    EXPECT_TRUE(Form().add->isEnabled());
    Click(Form().add);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", "Despeckle", kOutput, kEnd));
}

TEST_F(EditingWindow, FilterShowsOnlyWhatMatches) {
    const auto visible = [this] {
        int count = 0;
        for (QModelIndex at = Form().tree->model()->index(0, 0); at.isValid();
             at = Form().tree->indexBelow(at))
            ++count;
        return count;
    };
    EXPECT_EQ(visible(), 13);  // categories alone
    QTest::keyClicks(Form().filter, QStringLiteral("FLIP"));
    EXPECT_EQ(visible(), 6);  // two categories with two commands each
    QTest::keyClicks(Form().filter, QStringLiteral(" no such"));
    EXPECT_EQ(visible(), 0);
    Form().filter->clear();
    EXPECT_EQ(visible(), 13);
}

TEST_F(EditingWindow, ACommandGoesBelowTheSelectionAndNeverBelowTheLast) {
    ClickRow(0);
    AddByKeys("Despeckle");
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", kOutput, kEnd));
    EXPECT_EQ(Selected(), 1);
    ClickRow(3);
    AddByKeys("Median cut");
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", kOutput, "Median cut", kEnd));
    EXPECT_EQ(Selected(), 3);
    EXPECT_FALSE(Form().edit->isEnabled());  // it has no parameters
    EXPECT_EQ(View().script.commands.ParamsAt(3), "0");
    EXPECT_TRUE(Window().isWindowModified());
}

TEST_F(EditingWindow, AddFromTheMenuWorksToo) {
    for (QAction* action : Window().findChildren<QAction*>())
        if (VisibleText(action->text()) == QStringLiteral("37 Flip - horizontal"))
            action->trigger();
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Flip - horizonal", kOutput, kEnd));
}

TEST_F(EditingWindow, AddNeedsAnImage) {
    View().working.main.Reset();
    answers.Expect("To edit commands, a 'Single image' file must be opened.", QMessageBox::Ok);
    AddByKeys("Despeckle");
    answers.Expect("To edit commands, a 'Single image' file must be opened.", QMessageBox::Ok);
    ClickRow(0);
    Click(Form().edit);
    EXPECT_EQ(Rows().size(), 3U);
}

TEST_F(EditingWindow, MarkersCannotBeDeletedByAnyKey) {
    ClickRow(2);
    EXPECT_FALSE(Form().remove->isEnabled());
    PressOnList(Qt::Key_Delete);
    EXPECT_EQ(Rows().size(), 3U);
    // Cut copies a marker and says that it stays.
    answers.Expect("You may delete any Commands except START and END!", QMessageBox::Ok);
    PressOnList(Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(FromQt(QApplication::clipboard()->text()), "END image loop\r\n0");
    EXPECT_EQ(Rows().size(), 3U);
}

TEST_F(EditingWindow, DeleteSelectsTheOneAbove) {
    ClickRow(1);
    PressOnList(Qt::Key_Delete);
    EXPECT_THAT(Rows(), ElementsAre(kStart, kEnd));
    EXPECT_EQ(Selected(), 0);
    Trigger(Act::Undo);
    EXPECT_THAT(Rows(), ElementsAre(kStart, kOutput, kEnd));
    EXPECT_FALSE(Action(Act::Undo)->isEnabled());
    Trigger(Act::Undo);  // nothing more to take back
    EXPECT_EQ(Rows().size(), 3U);
}

TEST_F(EditingWindow, SwapsMoveCommandsOutOfTheLoopButNotMarkersPastEachOther) {
    ClickRow(1);
    Click(Form().swapUp);
    EXPECT_THAT(Rows(), ElementsAre(kOutput, kStart, kEnd));
    EXPECT_EQ(Selected(), 0);
    EXPECT_FALSE(Form().swapUp->isEnabled());
    ClickRow(2);
    EXPECT_FALSE(Form().swapDown->isEnabled());
    answers.Expect("You may change position of any Commands except Start and End!",
                   QMessageBox::Ok);
    PressOnList(Qt::Key_Up, Qt::ControlModifier);
    ClickRow(1);
    answers.Expect("You may change position of any Commands except Start and End!",
                   QMessageBox::Ok);
    PressOnList(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_THAT(Rows(), ElementsAre(kOutput, kStart, kEnd));
    ClickRow(0);
    PressOnList(Qt::Key_Down, Qt::ControlModifier);
    PressOnList(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_THAT(Rows(), ElementsAre(kStart, kEnd, kOutput));
    EXPECT_EQ(Selected(), 2);
}

TEST_F(EditingWindow, CopyAndPasteGoThroughTheClipboardByteForByte) {
    SetScript({kStart, "0", "Script info", "7,\"a, b\",\xff\xfe,,,,,,", kEnd, "0"});
    ClickRow(1);
    PressOnList(Qt::Key_C, Qt::ControlModifier);
    PressOnList(Qt::Key_V, Qt::ControlModifier);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Script info", "Script info", kEnd));
    EXPECT_EQ(View().script.commands.ParamsAt(2), "7,\"a, b\",\xff\xfe,,,,,,");
}

TEST_F(EditingWindow, PasteTakesOnlyCommands) {
    SetClipboard("despeckle\r\n0");
    PressOnList(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Rows().size(), 3U);
    SetClipboard("Despeckle\r\n0");
    PressOnList(Qt::Key_V, Qt::ControlModifier);
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Despeckle", kOutput, kEnd));
    SetClipboard("START image loop (setup)\r\n32,2,x,");
    PressOnList(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(View().script.commands.ParamsAt(0), "32,2,x,");
    EXPECT_EQ(Rows().size(), 4U);
    EXPECT_EQ(Selected(), 0);
    SetClipboard("Gamma adjust\r\n1," + std::string(300, '1') + ",");
    PressOnList(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(View().script.commands.ParamsAt(1).size(), 240U);
}

TEST_F(EditingWindow, KeysInTheFilterBoxBelongToTheText) {
    ClickRow(1);
    Form().filter->setFocus();
    QTest::keyClicks(Form().filter, QStringLiteral("crop"));
    Form().filter->selectAll();
    QTest::keyClick(Form().filter, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(FromQt(QApplication::clipboard()->text()), "crop");
    QTest::keyClick(Form().filter, Qt::Key_Delete);
    EXPECT_EQ(Rows().size(), 3U);
}

/// Drops the selected row at this place of the list, as the end of a drag does.
void DropAt(ScriptList* list, QPoint place) {
    list->MoveSelectedTo(place);
}

TEST_F(EditingWindow, ARowCanBeDragged) {
    SetScript({kStart, "0", "Despeckle", "0", "Median cut", "0", "Blur", "1,25,", kEnd, "0"});
    ScriptList* list = Form().scriptList;
    const auto at = [&](int row, bool lowerHalf) {
        const QRect place = list->visualRect(list->model()->index(row, 0));
        return lowerHalf ? place.bottomLeft() - QPoint(-5, 1) : place.topLeft() + QPoint(5, 1);
    };
    ClickRow(1);
    DropAt(list, at(3, true));
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Median cut", "Blur", "Despeckle", kEnd));
    EXPECT_EQ(Selected(), 3);
    EXPECT_EQ(View().script.commands.ParamsAt(2), "1,25,");
    DropAt(list, at(0, false));
    EXPECT_THAT(Rows(), ElementsAre("Despeckle", kStart, "Median cut", "Blur", kEnd));
    Trigger(Act::Undo);  // the whole drag at once
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Median cut", "Blur", "Despeckle", kEnd));
    ClickRow(1);
    DropAt(list, QPoint(20, list->viewport()->height() - 2));  // below all rows
    EXPECT_THAT(Rows(), ElementsAre(kStart, "Blur", "Despeckle", kEnd, "Median cut"));
    ClickRow(3);
    answers.Expect("You may change position of any Commands except Start and End!",
                   QMessageBox::Ok);
    DropAt(list, at(0, false));
}

TEST_F(EditingWindow, EnterInTheFilterBoxLeadsToTheFirstCommandThatIsLeft) {
    Form().filter->setFocus();
    QTest::keyClicks(Form().filter, QStringLiteral("swap"));
    EXPECT_EQ(Form().tree->SelectedName(), "Swap - red and blue");
    QTest::keyClick(Form().filter, Qt::Key_Return);
    EXPECT_TRUE(Form().tree->hasFocus());
    QTest::keyClick(Form().tree, Qt::Key_Return);
    EXPECT_THAT(Rows(), testing::Contains("Swap - red and blue"));
}

TEST_F(EditingWindow, PanelShowsTheSelectedCommand) {
    SetScript({kStart, "0", "Scale: change image size", "6,1,0,240,240,13,2,", "ELSE_START", "0",
               kEnd, "0"});
    ClickRow(1);
    EXPECT_THAT(PanelText(), testing::HasSubstr("240"));
    PressOnList(Qt::Key_Down);
    EXPECT_EQ(Selected(), 2);
    EXPECT_EQ(PanelText(), "");
    EXPECT_FALSE(Form().edit->isEnabled());
}

}  // namespace
}  // namespace lumo::ui
