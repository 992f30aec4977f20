#include "engine/editing.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "script/catalogue.h"
#include "script/names.h"
#include "script/templates.h"
#include "support/command_runner.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using script::Script;
using testing::ElementsAre, testing::IsEmpty, testing::Pair;

constexpr std::string_view kCrop = "6,10,10,10,10,0,0,";

/// A view with an image and START, "Crop", "Despeckle", END; "Crop" is selected.
class Editing : public testing::Test {
  protected:
    Editing() {
        Script& script = Commands();
        script.Add(names::kStartImageLoop, "32,start,");
        script.Add(names::kCrop, kCrop);
        script.Add(names::kDespeckle, "0");
        script.Add(names::kEndImageLoop, "0");
        view.script.selected = 1;
    }

    Script& Commands() { return view.script.commands; }
    const std::vector<std::string>& Names() { return Commands().names; }

    /// OK in every dialog, which then holds these parameters.
    void ConfirmDialogsWith(std::string params, bool asDefault = false) {
        ui.onDialog = [=](std::string& text, bool& makeDefault) {
            text = params;
            makeDefault = asDefault;
            return true;
        };
    }

    test::CommandRunner runner{test::CoordinateImage({20, 10})};
    test::RecordingInterface& ui = runner.ui;
    CLumoscriptView& view = runner.view;
};

// ---- Adding ----

TEST_F(Editing, AddWithoutParametersStoresZeroBehindTheSelection) {
    ASSERT_TRUE(AddCommand(view, names::kFlipVertical, AddFrom::Tree));
    EXPECT_THAT(Names(), ElementsAre(names::kStartImageLoop, names::kCrop, names::kFlipVertical,
                                     names::kDespeckle, names::kEndImageLoop));
    EXPECT_EQ(Commands().ParamsAt(2), "0");
    EXPECT_THAT(ui.dialogs, IsEmpty());
    EXPECT_EQ(view.script.selected, 2);
    EXPECT_THAT(ui.selected, ElementsAre(2));
    EXPECT_TRUE(view.script.modified);
    EXPECT_TRUE(view.script.undoValid);
}

TEST_F(Editing, AddOnTheLastItemStandsBeforeEnd) {
    view.script.selected = 3;
    AddCommand(view, names::kFlipVertical, AddFrom::Tree);
    EXPECT_EQ(Names()[3], names::kFlipVertical);
    EXPECT_EQ(Names()[4], names::kEndImageLoop);
    EXPECT_EQ(view.script.selected, 3);
}

TEST_F(Editing, AddOnTheStartMarkerStandsBehindIt) {
    view.script.selected = 0;
    AddCommand(view, names::kFlipVertical, AddFrom::Menu);
    EXPECT_EQ(Names()[0], names::kStartImageLoop);
    EXPECT_EQ(Names()[1], names::kFlipVertical);
}

TEST_F(Editing, AddOpensTheDialogOnTheStoredDefault) {
    view.settings.commandDefaults["Crop"] = "6,1,2,3,4,0,0,";
    std::string begun;
    ui.onDialog = [&](std::string& params, bool&) {
        begun = params;
        params = "6,5,5,5,5,1,0,";
        return true;
    };
    ASSERT_TRUE(AddCommand(view, names::kCrop, AddFrom::Tree));
    EXPECT_EQ(begun, "6,1,2,3,4,0,0,");
    EXPECT_EQ(Commands().ParamsAt(2), "6,5,5,5,5,1,0,");
    EXPECT_EQ(view.settings.commandDefaults["Crop"], "6,1,2,3,4,0,0,");
}

TEST_F(Editing, AddWithTheDefaultBoxTickedKeepsTheStringForTheNextOne) {
    ConfirmDialogsWith("6,7,7,7,7,0,0,", true);
    AddCommand(view, names::kCrop, AddFrom::Tree);
    EXPECT_EQ(view.settings.commandDefaults["Crop"], "6,7,7,7,7,0,0,");
    EXPECT_EQ(DefaultParams(view, names::kCrop), "6,7,7,7,7,0,0,");
}

TEST_F(Editing, CancelInTheDialogAddsNothing) {
    const Script before = Commands();
    EXPECT_FALSE(AddCommand(view, names::kCrop, AddFrom::Tree));
    EXPECT_THAT(ui.dialogs, ElementsAre(names::kCrop));
    EXPECT_EQ(Commands(), before);
    EXPECT_FALSE(view.script.modified);
    EXPECT_FALSE(view.script.undoValid);
}

TEST_F(Editing, ThePlainBlursAreAddedWithTheirFixedStrings) {
    ui.onDialog = [](std::string&, bool&) { return true; };
    AddCommand(view, names::kBlur, AddFrom::Tree);
    AddCommand(view, names::kBlurMore, AddFrom::Tree);
    EXPECT_EQ(Commands().ParamsAt(2), "1,25,");
    EXPECT_EQ(Commands().ParamsAt(3), "1,75,");
    EXPECT_THAT(ui.dialogs, ElementsAre(names::kBlur, names::kBlurMore));
}

TEST_F(Editing, CategoryFromTheTreeIsToldAndFromAMenuIsNot) {
    const Script before = Commands();
    const std::string category(script::CategoryTree().front().name);
    AddCommand(view, category, AddFrom::Tree);
    EXPECT_THAT(ui.messages,
                ElementsAre("This item is descriptive header, it is not a script command"));
    AddCommand(view, category, AddFrom::Menu);
    EXPECT_EQ(ui.messages.size(), 1U);
    EXPECT_EQ(Commands(), before);
}

TEST_F(Editing, AddOfNothingWarns) {
    AddCommand(view, "Null", AddFrom::Tree);
    EXPECT_THAT(ui.messages, ElementsAre("No item has been selected!"));
    EXPECT_THAT(ui.boxes, ElementsAre(Pair("warning", MessageIcon::Warning)));
}

TEST_F(Editing, MarkersAndUnknownNamesAreNotAdded) {
    ConfirmDialogsWith("0");
    const Script before = Commands();
    for (const std::string_view name : {names::kStartImageLoop, names::kEndImageLoop,
                                        std::string_view("crop"), std::string_view()})
        EXPECT_FALSE(AddCommand(view, name, AddFrom::Tree)) << name;
    EXPECT_EQ(Commands(), before);
    EXPECT_THAT(ui.dialogs, IsEmpty());
}

TEST_F(Editing, AddAndEditNeedAnImage) {
    constexpr std::string_view kWords = "To edit commands, a 'Single image' file must be opened.";
    view.working.main = {};
    EXPECT_FALSE(AddCommand(view, names::kDespeckle, AddFrom::Tree));
    EXPECT_FALSE(EditSelected(view));
    EXPECT_THAT(ui.messages, ElementsAre(kWords, kWords));

    view.run.batchRunning = true;  // now it is the left image that counts
    view.working.main = test::CoordinateImage({4, 4});
    EXPECT_FALSE(EditSelected(view));
    EXPECT_EQ(ui.messages.back(), kWords);
    view.sample.left = test::CoordinateImage({4, 4});
    ConfirmDialogsWith("6,0,0,0,0,0,0,");
    EXPECT_TRUE(EditSelected(view));
    EXPECT_EQ(ui.messages.size(), 3U);
    view.run.batchRunning = false;
}

TEST_F(Editing, FirstCommandOfAnEmptyList) {
    Commands().Clear();
    EXPECT_EQ(SelectedCommand(view), -1);
    EXPECT_TRUE(AddCommand(view, names::kDespeckle, AddFrom::Tree));
    EXPECT_EQ(SelectedCommand(view), 0);
}

TEST_F(Editing, EveryCommandWithADialogBeginsWithAStringThatStatesItsCount) {
    for (const script::CatalogueRow& row : script::Catalogue()) {
        if (!row.hasDialog || FindCommand(row.name) == nullptr) continue;
        const std::string params = DefaultParams(view, row.name);
        EXPECT_NE(params, "0") << row.name;
        EXPECT_NE(params.find(','), std::string::npos) << row.name;
    }
}

// ---- Editing ----

TEST_F(Editing, EditReplacesTheParametersAndNothingElse) {
    const auto before = Names();
    ConfirmDialogsWith("6,0,0,0,0,0,0,");
    EXPECT_TRUE(EditSelected(view));
    EXPECT_EQ(Names(), before);
    EXPECT_EQ(Commands().ParamsAt(1), "6,0,0,0,0,0,0,");
    EXPECT_EQ(view.script.selected, 1);
    RestoreUndoCopy(view);
    EXPECT_EQ(Commands().ParamsAt(1), kCrop);
}

TEST_F(Editing, CancelledEditLeavesTheListsButHasTakenTheUndoCopy) {
    DeleteSelected(view);
    const Script before = Commands();
    view.script.selected = 0;
    EXPECT_FALSE(EditSelected(view));
    EXPECT_THAT(ui.dialogs, ElementsAre(names::kStartImageLoop));
    EXPECT_EQ(Commands(), before);
    EXPECT_EQ(view.script.undo, before);
    EXPECT_TRUE(view.script.modified);
}

TEST_F(Editing, EditWithDefaultBoxKeepsTheString) {
    ConfirmDialogsWith("6,2,2,2,2,0,0,", true);
    EditSelected(view);
    EXPECT_EQ(view.settings.commandDefaults["Crop"], "6,2,2,2,2,0,0,");
}

TEST_F(Editing, CommandsWithoutEditFunctionDoNothing) {
    Commands().Insert(1, names::kBlur, "1,25,");
    ConfirmDialogsWith("9,");
    for (const int index : {1, 3, 4}) {  // "Blur", "Despeckle", END
        SelectCommand(view, index);
        const Script before = Commands();
        EXPECT_FALSE(EditSelected(view)) << index;
        EXPECT_EQ(Commands(), before);
    }
    EXPECT_THAT(ui.dialogs, IsEmpty());
    EXPECT_FALSE(view.script.modified);
    EXPECT_FALSE(view.script.undoValid);
    EXPECT_FALSE(EditCommandAt(view, -1));
    EXPECT_FALSE(EditCommandAt(view, 5));
}

// ---- Deleting and moving ----

TEST_F(Editing, DeleteSelectsThePreviousItem) {
    view.script.selected = 2;
    DeleteSelected(view);
    EXPECT_THAT(Names(), ElementsAre(names::kStartImageLoop, names::kCrop, names::kEndImageLoop));
    EXPECT_EQ(view.script.selected, 1);
    EXPECT_TRUE(view.script.modified);
}

TEST_F(Editing, DeleteOfTheFirstItemSelectsTheFirst) {
    Commands().Insert(0, names::kScriptInfo, "7,,,,,,,,");
    view.script.selected = 0;
    DeleteSelected(view);
    EXPECT_EQ(view.script.selected, 0);
    EXPECT_EQ(Names()[0], names::kStartImageLoop);
}

TEST_F(Editing, MarkersCannotBeDeleted) {
    const Script before = Commands();
    for (const int marker : {0, 3}) {
        view.script.selected = marker;
        DeleteSelected(view);
    }
    constexpr std::string_view kWords = "You may delete any Commands except START and END!";
    EXPECT_THAT(ui.messages, ElementsAre(kWords, kWords));
    EXPECT_THAT(ui.boxes, ElementsAre(Pair("", MessageIcon::Stop), Pair("", MessageIcon::Stop)));
    EXPECT_EQ(Commands(), before);
    EXPECT_FALSE(view.script.undoValid);
}

TEST_F(Editing, SwapsCarryTheParametersAndTheSelection) {
    SwapDown(view);
    EXPECT_EQ(Names()[2], names::kCrop);
    EXPECT_EQ(Commands().ParamsAt(2), kCrop);
    EXPECT_EQ(Commands().ParamsAt(1), "0");
    EXPECT_EQ(view.script.selected, 2);
    SwapUp(view);
    EXPECT_EQ(Names()[1], names::kCrop);
    EXPECT_EQ(view.script.selected, 1);
}

TEST_F(Editing, CommandsMoveAboveStartAndBelowEnd) {
    SwapUp(view);
    EXPECT_EQ(Names()[0], names::kCrop);
    EXPECT_EQ(Names()[1], names::kStartImageLoop);
    view.script.selected = 2;
    SwapDown(view);
    EXPECT_THAT(Names(), ElementsAre(names::kCrop, names::kStartImageLoop, names::kEndImageLoop,
                                     names::kDespeckle));
    EXPECT_THAT(ui.messages, IsEmpty());
}

TEST_F(Editing, SwapsAtTheEndsDoNothing) {
    const Script before = Commands();
    view.script.selected = 0;
    SwapUp(view);
    view.script.selected = 3;
    SwapDown(view);
    EXPECT_EQ(Commands(), before);
    EXPECT_FALSE(view.script.modified);
    EXPECT_THAT(ui.messages, IsEmpty());
}

TEST_F(Editing, MarkersDoNotChangePlaces) {
    constexpr std::string_view kWords =
        "You may change position of any Commands except Start and End!";
    Commands().Remove(2);
    Commands().Remove(1);
    const Script before = Commands();
    view.script.selected = 0;
    SwapDown(view);
    view.script.selected = 1;
    SwapUp(view);
    EXPECT_THAT(ui.messages, ElementsAre(kWords, kWords));
    EXPECT_EQ(Commands(), before);
    EXPECT_FALSE(view.script.undoValid);
}

TEST_F(Editing, MoveIsSoManySwapsAndOneUndo) {
    const Script before = Commands();
    EXPECT_TRUE(MoveCommand(view, 1, 3));
    EXPECT_THAT(Names(), ElementsAre(names::kStartImageLoop, names::kDespeckle,
                                     names::kEndImageLoop, names::kCrop));
    EXPECT_EQ(Commands().ParamsAt(3), kCrop);
    EXPECT_EQ(view.script.selected, 3);
    RestoreUndoCopy(view);
    EXPECT_EQ(Commands(), before);
}

TEST_F(Editing, MoveTakesAMarkerUpToTheOtherOneButNotPast) {
    EXPECT_TRUE(MoveCommand(view, 0, 2));
    EXPECT_THAT(Names(), ElementsAre(names::kCrop, names::kDespeckle, names::kStartImageLoop,
                                     names::kEndImageLoop));
    EXPECT_FALSE(MoveCommand(view, 2, 3));
    EXPECT_FALSE(MoveCommand(view, 3, 0));
    EXPECT_EQ(ui.messages.size(), 2U);
    EXPECT_TRUE(MoveCommand(view, 2, 0));
}

TEST_F(Editing, MoveOutsideOfTheScriptDoesNothing) {
    const Script before = Commands();
    for (const auto& [from, to] : {std::pair{-1, 0}, {0, -1}, {1, 4}, {4, 1}, {2, 2}})
        EXPECT_FALSE(MoveCommand(view, from, to)) << from << " to " << to;
    EXPECT_EQ(Commands(), before);
    EXPECT_FALSE(view.script.undoValid);
}

// ---- Undo ----

TEST_F(Editing, UndoRestoresOnceAndThenDoesNothing) {
    const Script before = Commands();
    DeleteSelected(view);
    const Script after = Commands();
    view.script.modified = false;
    RestoreUndoCopy(view);
    EXPECT_EQ(Commands(), before);
    EXPECT_TRUE(view.script.modified);
    EXPECT_FALSE(view.script.undoValid);
    RestoreUndoCopy(view);
    EXPECT_EQ(Commands(), before);
    EXPECT_NE(Commands(), after);
}

TEST_F(Editing, UndoKeepsTheSelectionOrTakesTheFirst) {
    AddCommand(view, names::kDespeckle, AddFrom::Tree);
    RestoreUndoCopy(view);
    EXPECT_EQ(view.script.selected, 2);
    view.script.selected = 3;
    AddCommand(view, names::kDespeckle, AddFrom::Tree);
    SelectCommand(view, 4);
    RestoreUndoCopy(view);
    EXPECT_EQ(view.script.selected, 0);
}

TEST_F(Editing, DuringABatchUndoIsForgotten) {
    DeleteSelected(view);
    const Script after = Commands();
    view.run.batchRunning = true;
    EXPECT_FALSE(UpdateButtons(view).undo);
    RestoreUndoCopy(view);
    EXPECT_EQ(Commands(), after);
    EXPECT_FALSE(view.script.undoValid);
    view.script.undoValid = true;
    TakeUndoCopy(view);
    EXPECT_FALSE(view.script.undoValid);
    view.run.batchRunning = false;
}

// ---- Clipboard ----

TEST_F(Editing, CopyPutsNameAndParametersOnTheClipboard) {
    CopyCommand(view);
    EXPECT_EQ(ui.clipboard, "Crop\r\n6,10,10,10,10,0,0,");
    EXPECT_FALSE(view.script.modified);
}

TEST_F(Editing, CutOfAMarkerCopiesAndKeepsIt) {
    view.script.selected = 3;
    CutCommand(view);
    EXPECT_EQ(ui.clipboard, "END image loop\r\n0");
    EXPECT_EQ(Names().size(), 4U);
    EXPECT_THAT(ui.messages, ElementsAre("You may delete any Commands except START and END!"));
}

TEST_F(Editing, CutAndPasteMoveACommand) {
    CutCommand(view);
    EXPECT_EQ(Names().size(), 3U);
    view.script.selected = 1;
    PasteCommand(view);
    EXPECT_THAT(Names(), ElementsAre(names::kStartImageLoop, names::kDespeckle, names::kCrop,
                                     names::kEndImageLoop));
    EXPECT_EQ(Commands().ParamsAt(2), kCrop);
    EXPECT_EQ(view.script.selected, 2);
}

TEST_F(Editing, PasteOnTheLastItemStandsBeforeIt) {
    view.script.selected = 3;
    ui.clipboard = "Crop\r\n6,1,1,1,1,0,0,\r\nmore\r\n";
    PasteCommand(view);
    EXPECT_EQ(Names()[3], names::kCrop);
    EXPECT_EQ(Commands().ParamsAt(3), "6,1,1,1,1,0,0,");
}

TEST_F(Editing, PasteOfAnythingElseDoesNothingAndSaysNothing) {
    const Script before = Commands();
    for (const std::string_view text :
         {"", "\r\n", "hello", "crop\r\n6,1,1,1,1,0,0,", " Crop\r\n0", "Null", "\nCrop\n0"}) {
        ui.clipboard = text;
        PasteCommand(view);
    }
    EXPECT_EQ(Commands(), before);
    EXPECT_THAT(ui.messages, IsEmpty());
    EXPECT_FALSE(view.script.undoValid);
    EXPECT_FALSE(view.script.modified);
}

TEST_F(Editing, PasteOfAMarkerGivesItsParameters) {
    view.script.selected = 2;
    ui.clipboard = "START image loop (setup)\r\n32,pasted,";
    PasteCommand(view);
    EXPECT_EQ(Names().size(), 4U);
    EXPECT_EQ(Commands().ParamsAt(0), "32,pasted,");
    EXPECT_EQ(view.script.selected, 0);
    ui.clipboard = "END image loop\r\nx";
    PasteCommand(view);
    EXPECT_EQ(Names().size(), 4U);
    EXPECT_EQ(Commands().ParamsAt(3), "0");
    EXPECT_EQ(view.script.selected, 3);
    EXPECT_TRUE(view.script.modified);
}

TEST_F(Editing, PasteOfAMarkerThatWasMovedFindsIt) {
    SwapUp(view);  // "Crop" above START
    ui.clipboard = "START image loop (setup)\r\n32,pasted,";
    PasteCommand(view);
    EXPECT_EQ(Names()[0], names::kCrop);
    EXPECT_EQ(Commands().ParamsAt(1), "32,pasted,");
}

TEST_F(Editing, SubroutineGetsNoMarkerByPaste) {
    Commands() = script::NewSubroutine();
    const Script before = Commands();
    for (const std::string_view name : {names::kStartImageLoop, names::kEndImageLoop}) {
        ui.clipboard = std::string(name) + "\r\n0";
        PasteCommand(view);
    }
    EXPECT_EQ(Commands(), before);
}

TEST_F(Editing, PasteCutsAfter240Characters) {
    const std::string longText(300, 'x');
    ui.clipboard = "Script info\r\n7," + longText + ",";
    PasteCommand(view);
    EXPECT_EQ(Commands().ParamsAt(2), "7," + longText.substr(0, 238));
    std::string umlauts;
    for (int i = 0; i < 300; ++i) umlauts += "\xc3\xbc";
    ui.clipboard = "Script info\r\n" + umlauts;
    PasteCommand(view);
    EXPECT_EQ(Commands().ParamsAt(3), umlauts.substr(0, 480));
}

TEST_F(Editing, PasteKeepsLineFeedsInsideOfAParameterString) {
    ui.clipboard = "Script info\r\n7,\"one\ntwo\",,,,,,,\r\nrest";
    PasteCommand(view);
    EXPECT_EQ(Commands().ParamsAt(2), "7,\"one\ntwo\",,,,,,,");
    ui.clipboard = "Script info\n7,\"one\ntwo\",,,,,,,\nrest";  // an editor that ends lines so
    PasteCommand(view);
    EXPECT_EQ(Commands().ParamsAt(3), "7,\"one\ntwo\",,,,,,,");
}

TEST_F(Editing, PastedCommandWithoutParametersHasZero) {
    ui.clipboard = "Despeckle";
    PasteCommand(view);
    EXPECT_EQ(Commands().ParamsAt(2), "0");
}

// ---- Panel and buttons ----

TEST_F(Editing, PanelShowsTheTextOfTheCommand) {
    const ParameterPanel panel = ShowParameterPanel(view, 1);
    EXPECT_EQ(panel.name, names::kCrop);
    EXPECT_EQ(panel.params, kCrop);
    EXPECT_EQ(panel.text,
              "crop from edges\ncrop by pixels\nTop = 10\nBottom = 10\nLeft = 10\nRight = 10\n");
    EXPECT_TRUE(panel.canEdit);
    EXPECT_FALSE(ShowParameterPanel(view, 2).canEdit);
    EXPECT_EQ(ShowParameterPanel(view, 9).name, "");
    EXPECT_EQ(ShowParameterPanel(view, -1).text, "");
}

TEST_F(Editing, CommandsWithoutPanelShowNothing) {
    for (const std::string_view name :
         {names::kFlipHorizontal, names::kFlipVertical, names::kConvertGreyscale, names::kBlur,
          names::kBlurMore, names::kElseStart, names::kElseEnd, names::kIfEnd, names::kDoEnd,
          names::kLoopEnd, names::kSubroutineEnd}) {
        Commands().Insert(1, name, DefaultParams(view, name));
        EXPECT_EQ(ShowParameterPanel(view, 1).text, "") << name;
    }
}

TEST_F(Editing, ButtonsFollowTheSelection) {
    const auto at = [&](int index) {
        view.script.selected = index;
        const EditButtons buttons = UpdateButtons(view);
        return std::vector<bool>{buttons.swapUp, buttons.swapDown, buttons.edit, buttons.remove};
    };
    EXPECT_THAT(at(0), ElementsAre(false, true, true, false));
    EXPECT_THAT(at(1), ElementsAre(true, true, true, true));
    EXPECT_THAT(at(2), ElementsAre(true, true, false, true));
    EXPECT_THAT(at(3), ElementsAre(true, false, false, false));
    EXPECT_FALSE(UpdateButtons(view).undo);
    TakeUndoCopy(view);
    EXPECT_TRUE(UpdateButtons(view).undo);
    Commands().Clear();
    EXPECT_THAT(at(0), ElementsAre(false, false, false, false));
    EXPECT_FALSE(UpdateButtons(view).copy);
}

}  // namespace
}  // namespace lumo::engine
