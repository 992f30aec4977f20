// What the menus, buttons and hints of the window say, letter for letter, and that each of them
// does something or tells why not.

#include <QGroupBox>
#include <QHelpEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolTip>
#include <map>
#include <set>

#include "engine/editing.h"
#include "script/catalogue.h"
#include "ui/command_tree.h"
#include "ui/image_frame.h"
#include "ui/parameter_panel.h"
#include "ui/progress_panel.h"
#include "ui/script_list.h"
#include "ui/text.h"
#include "ui/window_fixture.h"

namespace lumo::ui {
namespace {

using testing::Contains, testing::ElementsAre, testing::HasSubstr, testing::IsSupersetOf;

std::string TextOf(const QAction* action) {
    return FromQt(VisibleText(action->text()));
}

std::vector<std::string> ItemsOf(const QMenu* menu) {
    std::vector<std::string> items;
    for (const QAction* action : menu->actions())
        if (!action->isSeparator() && action->isVisible()) items.push_back(TextOf(action));
    return items;
}

class MenuTest : public test::WindowTest {
  protected:
    MenuTest() { Start(); }

    QMenu* Menu(std::string_view title) {
        for (const QAction* action : Window().menuBar()->actions())
            if (TextOf(action) == title) return action->menu();
        return nullptr;
    }
    static QMenu* SubMenu(const QMenu* menu, std::string_view title) {
        for (const QAction* action : menu->actions())
            if (TextOf(action) == title) return action->menu();
        return nullptr;
    }
    /// All items of all menus, in depth.
    static void Walk(const QList<QAction*>& actions, std::vector<QAction*>& leaves) {
        for (QAction* action : actions) {
            if (action->menu())
                Walk(action->menu()->actions(), leaves);
            else if (!action->isSeparator())
                leaves.push_back(action);
        }
    }
};

TEST_F(MenuTest, HoldAllItems) {
    EXPECT_THAT(ItemsOf(Menu("Script")), ElementsAre("New script", "Open script...", "Save script",
                                                     "SaveAs...", "Subroutine", "Exit"));
    EXPECT_THAT(ItemsOf(SubMenu(Menu("Script"), "Subroutine")),
                ElementsAre("Load subroutine..", "SaveAs...", "Open subroutine (to edit)...",
                            "Open subroutine (as a script)...", "New subroutine"));
    EXPECT_THAT(ItemsOf(Menu("Edit")),
                IsSupersetOf({"Undo", "Cut (cmd to clipboard)", "Copy (cmd to clipboard)",
                              "Paste (cmd from clipboard)", "Image list...", "Batch.log",
                              "Error.log", "Log file..."}));
    EXPECT_THAT(
        ItemsOf(Menu("View")),
        IsSupersetOf({"Toolbar", "Status Bar", "Script (as text file)...",
                      "Image list (as text file)...", "Batch.log", "Error.log", "Log file...",
                      "Full screen (left frame)", "Full screen (right frame)"}));
    EXPECT_THAT(ItemsOf(Menu("Commands")),
                IsSupersetOf({"Add to batch script", "All commands", "Run Batch script..."}));
    EXPECT_THAT(ItemsOf(Menu("Image")),
                IsSupersetOf({"Open...", "Reload", "SaveAs (right frame image)...",
                              "SaveAs (left frame image)...", "Set as default on startup"}));
    EXPECT_THAT(ItemsOf(Menu("Options")), IsSupersetOf({"Error.log", "Batch.log", "Debug.log",
                                                        "Preferences", "Writer", "Reader"}));
    EXPECT_THAT(ItemsOf(Menu("Tools")),
                ElementsAre("Rename files...", "View Temp folder", "Empty Temp folder"));
    EXPECT_NE(Menu("Help"), nullptr);
}

TEST_F(MenuTest, OfferEveryCommandByNumberAndByCategory) {
    const std::vector<std::string> all = ItemsOf(SubMenu(Menu("Commands"), "All commands"));
    EXPECT_EQ(all.size(), 89U);
    EXPECT_EQ(all.front(), "01 Add border...");
    EXPECT_THAT(all, Contains("63 Ouput setup"));
    const QMenu* byCategory = SubMenu(Menu("Commands"), "Add to batch script");
    EXPECT_EQ(ItemsOf(byCategory).size(), script::CategoryTree().size() - 1);
    EXPECT_THAT(ItemsOf(SubMenu(byCategory, "Rotate image cmds")),
                ElementsAre("Flip - horizontal", "Flip - vertical", "Rotate - (90 - 180 - 270)",
                            "Rotate (specify)..."));
}

TEST_F(MenuTest, EveryItemDoesSomethingOrTellsWhyNot) {
    std::vector<QAction*> leaves;
    Walk(Window().menuBar()->actions(), leaves);
    EXPECT_GT(leaves.size(), 200U);
    for (const QAction* action : leaves) {
        if (!action->isVisible()) continue;  // an empty place among the recent files
        const std::string text = TextOf(action), hint = FromQt(action->statusTip());
        EXPECT_FALSE(hint.empty()) << text;
        if (action->isEnabled())
            EXPECT_TRUE(HasDeed(*action)) << text;
        else
            EXPECT_THAT(hint, testing::ContainsRegex("\\(.+\\)$")) << text;
    }
}

TEST_F(MenuTest, NoTwoActionsShareAKey) {
    std::map<QString, std::string> keys;
    std::vector<QAction*> leaves;
    Walk(Window().menuBar()->actions(), leaves);
    const std::set<QAction*> once(leaves.begin(), leaves.end());
    for (const QAction* action : once) {
        const QString key = action->shortcut().toString();
        if (key.isEmpty()) continue;
        EXPECT_TRUE(keys.emplace(key, TextOf(action)).second)
            << FromQt(key) << ": " << TextOf(action) << " and " << keys[key];
    }
    EXPECT_GT(keys.size(), 20U);
}

TEST_F(MenuTest, NoTwoMnemonicsOfTheFormAndTheMenuBarAreTheSame) {
    std::multiset<QChar> letters;
    const auto note = [&](const QString& text) {
        const qsizetype at = text.indexOf(QLatin1Char('&'));
        if (at >= 0) letters.insert(text[at + 1].toLower());
    };
    for (const QAction* menu : Window().menuBar()->actions()) note(menu->text());
    for (const QPushButton* button : Form().findChildren<QPushButton*>()) note(button->text());
    for (const QChar letter : letters) EXPECT_EQ(letters.count(letter), 1U) << letter.toLatin1();
    EXPECT_GE(letters.size(), 18U);
}

TEST_F(MenuTest, ItemsOfOneMenuHaveMnemonicsOfTheirOwn) {
    for (const char* title : {"Script", "Edit", "View", "Image", "Options", "Tools", "Help"}) {
        std::set<QChar> letters;
        for (const QAction* action : Menu(title)->actions()) {
            const qsizetype at = action->text().indexOf(QLatin1Char('&'));
            if (action->isSeparator() || !action->isVisible()) continue;
            ASSERT_GE(at, 0) << title << ": " << TextOf(action);
            const QChar letter = action->text()[at + 1].toLower();
            EXPECT_TRUE(letters.insert(letter).second) << title << ": " << TextOf(action);
        }
    }
}

TEST_F(MenuTest, ControlsHaveTheirTextsAndHints) {
    const MainForm& form = Form();
    const auto is = [](const QPushButton* button, const char* text, const char* hint) {
        EXPECT_EQ(FromQt(VisibleText(button->text())), text);
        EXPECT_EQ(FromQt(button->toolTip()), hint) << text;
        EXPECT_EQ(button->statusTip(), button->toolTip());
    };
    is(form.add, ">>",
       "Places selected script cmd in left list box into Batch script in right list box (below "
       "current selection).");
    is(form.swapUp, "Swap Up", "Swaps positions of currently selected Batch cmd and one above.");
    is(form.swapDown, "Swap Down",
       "Swaps positions of currently selected Batch cmd and one below.");
    is(form.edit, "Edit Cmd...",
       "Opens dialog window to edit parameters of currently selected Batch script cmd.");
    is(form.remove, "Delete", "Removes selected cmd from Batch script.");
    is(form.testOne, "Test (1)",
       "Executes the (1) selected Batch script cmd on right frame image (except Input/Output and "
       "execution logic commands).");
    is(form.testAll, "Test All",
       "Executes all Batch script commands (except Input/Output cmds) on current right frame "
       "image.");
    is(form.open, "Open...", "Opens single image file and displays in left and right frames.");
    is(form.reload, "Reload >>", "Copies originally opened image into left frame.");
    is(form.copyToLeft, "<<", "Copies image in right frame into left frame");
    is(form.copyToRight, ">>", "Copies image in left frame into right frame.");
    is(form.saveAs, "SaveAs...", "Opens a file dialog to save the image in right frame.");
    is(form.runOnSample, "Run script...",
       "Reopens single image file and executes batch script on it only. Output commamds are not "
       "executed.");
    is(form.run, "Run Batch script ...", "Begins full execution of current Batch script.");
    const auto hint = [](const QWidget* control) { return FromQt(control->toolTip()); };
    EXPECT_EQ(hint(form.tree), "Tree view with the basic selection of possible script commands.");
    EXPECT_EQ(hint(form.scriptList),
              "List of commands in current Batch script. Executed top to bottom.");
    EXPECT_EQ(hint(form.panel), "Displays configured parameters of selected cmd in Batch script .");
    EXPECT_EQ(hint(form.leftFrame),
              "No command operations done on image in this frame, dbl click for enlarged view");
    EXPECT_EQ(hint(form.rightFrame),
              "Command operations are executed on image in this frame, dbl click for enlarged "
              "view");
    EXPECT_EQ(FromQt(form.panel->title()), "Selected Cmd info");
}

TEST_F(MenuTest, TheHintOfTheControlUnderThePointerIsShown) {
    const MainForm& form = Form();
    EXPECT_EQ(FromQt(form.imageGroup->toolTip()),
              "Single sample image is displayed and operated on in this area.");
    const std::pair<QWidget*, const QWidget*> controls[] = {
        {form.imageGroup, form.imageGroup},
        {form.leftFrame, form.leftFrame},
        {form.rightFrame, form.rightFrame},
        {form.copyToLeft, form.copyToLeft},
        {form.copyToRight, form.copyToRight},
        {form.open, form.open},
        {form.reload, form.reload},
        {form.testOne, form.testOne},
        {form.runOnSample, form.runOnSample},
        {form.testAll, form.testAll},
        {form.saveAs, form.saveAs},
        {form.run, form.run},
        {form.panel, form.panel},
        {form.add, form.add},
        {form.swapUp, form.swapUp},  // disabled, as START is selected
        {form.swapDown, form.swapDown},
        {form.edit, form.edit},
        {form.remove, form.remove},
        {form.tree->viewport(), form.tree},
        {form.scriptList->viewport(), form.scriptList},
    };
    std::set<QString> hints;
    for (const auto& [under, owner] : controls) {
        const QString hint = owner->toolTip();
        ASSERT_FALSE(hint.isEmpty());
        EXPECT_TRUE(hints.insert(hint).second) << FromQt(hint);
        const QPoint at = under->rect().center();
        QHelpEvent help(QEvent::ToolTip, at, under->mapToGlobal(at));
        QApplication::sendEvent(under, &help);
        EXPECT_EQ(FromQt(QToolTip::text()), FromQt(hint));
        EXPECT_EQ(owner->statusTip(), hint);
    }
    EXPECT_EQ(hints.size(), 20U);
}

TEST_F(MenuTest, WithoutASampleNothingIsClaimedAboutOne) {
    View().sample.left.Reset();
    engine::SelectCommand(View(), 0);
    for (const Act act : {Act::SetDefaultImage, Act::FileProperties, Act::ImageInfo,
                          Act::FullScreenLeft, Act::SaveLeftImage, Act::RunOnSample}) {
        EXPECT_FALSE(Action(act)->isEnabled()) << TextOf(Action(act));
        EXPECT_THAT(FromQt(Action(act)->statusTip()), testing::EndsWith("(there is no image)"));
    }
}

TEST_F(MenuTest, TheKeysOfTheEnlargedViewAreListed) {
    Trigger(Act::Keys);
    const auto texts = Window().findChildren<QPlainTextEdit*>();
    ASSERT_EQ(texts.size(), 1);
    const std::string text = FromQt(texts.front()->toPlainText());
    EXPECT_THAT(text, HasSubstr("ends Test All"));
    EXPECT_THAT(text, HasSubstr("S               before and after, split by a line"));
}

TEST_F(MenuTest, EveryControlCanBeNamedAndReachedByTab) {
    std::set<QWidget*> reached;
    QWidget* at = Form().filter;
    at->setFocus();
    for (int i = 0; i < 100; ++i) {
        QTest::keyClick(at, Qt::Key_Tab);
        at = QApplication::focusWidget();
        ASSERT_NE(at, nullptr);
        if (!reached.insert(at).second) break;
        EXPECT_FALSE(at->accessibleName().isEmpty()) << at->metaObject()->className();
    }
    Form().tree->setCurrentIndex({});
    for (QWidget* control : std::initializer_list<QWidget*>{
             Form().filter, Form().tree, Form().scriptList, Form().leftFrame, Form().rightFrame,
             Form().open, Form().testAll, Form().run})
        EXPECT_EQ(reached.count(control), 1U) << FromQt(control->accessibleName());
}

TEST_F(MenuTest, ContextMenusHaveTheirItems) {
    Q_EMIT Form().rightFrame->customContextMenuRequested({5, 5});
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_THAT(ItemsOf(menu),
                ElementsAre("Full screen", "Image info", "File properties",
                            "camera/scanner EXIF info (JPGs)", "Image IPTC/JPG_COM info (JPGs)",
                            "Set as default on startup", "Open...", "Reload"));
    menu->close();
    Q_EMIT Form().scriptList->customContextMenuRequested({5, 5});
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_THAT(ItemsOf(menu), ElementsAre("Edit Cmd...", "Delete", "Swap Up", "Swap Down", "Undo",
                                           "Cut (cmd to clipboard)", "Copy (cmd to clipboard)",
                                           "Paste (cmd from clipboard)", "Test (1)", "New script",
                                           "Open script...", "Save script", "SaveAs..."));
    menu->close();
    Q_EMIT Form().tree->customContextMenuRequested({5, 5});
    menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_THAT(ItemsOf(menu), ElementsAre("Add selection to batch script...>>"));
    menu->close();
}

}  // namespace
}  // namespace lumo::ui
