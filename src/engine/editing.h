#pragma once

// What a user does to the Script by hand: add, edit, delete, move, undo, cut, copy, paste. Nothing
// here knows a widget: dialogs, messages and the clipboard are the interface's, the selection is
// view.script.selected.
//
// What always holds: the lists stay parallel; a Script has one START and one END marker, a
// Subroutine none, and no operation but undo takes either from the one to the other; the markers
// move past other commands but not past each other. Each operation that changes the Script keeps
// the one before it for undo, sets `modified`, and tells the interface. All of it belongs to the
// interface's thread.

#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::engine {

/// The selected command, or -1 if the Script has none.
int SelectedCommand(const CLumoscriptView& view);
/// Another selection, the nearest there is; shows its panel.
void SelectCommand(CLumoscriptView& view, int index);

/// Keeps the Script for RestoreUndoCopy. While a batch runs it only forgets the one that is kept.
void TakeUndoCopy(CLumoscriptView& view);
/// Puts the kept Script back: once, there is one level and no redo.
void RestoreUndoCopy(CLumoscriptView& view);

/// Where a new command goes: behind the selection, but before it if it is the last command, so
/// that nothing lands behind END by itself.
int InsertionPoint(const CLumoscriptView& view);

/// The parameter string that a new command begins with: the stored default, else the factory's.
std::string DefaultParams(const CLumoscriptView& view, std::string_view name);
/// Makes the string the one that new commands of that name begin with, if a default is kept for
/// them.
void SetDefaultParams(CLumoscriptView& view, std::string_view name, std::string_view params);

enum class AddFrom { Tree, Menu };

/// Adds a command of the name picked in the tree or a menu, by way of its dialog if it has
/// parameters. True if it stands in the Script now.
bool AddCommand(CLumoscriptView& view, std::string_view name, AddFrom from);

/// Edits the selected command in its dialog. Needs an image, as AddCommand does. True on OK.
bool EditSelected(CLumoscriptView& view);
/// The same for any command of the Script and without asking for an image.
bool EditCommandAt(CLumoscriptView& view, int index);

void DeleteSelected(CLumoscriptView& view);
void SwapUp(CLumoscriptView& view);
void SwapDown(CLumoscriptView& view);

/// Moves the command at `from` so that it stands at `to` afterwards, as by so many swaps, but with
/// one undo for all. False, without any change, at a place outside of the Script, or, with the
/// words of the swaps, if one marker would pass the other.
bool MoveCommand(CLumoscriptView& view, int from, int to);

/// The clipboard holds a command as its name, CR LF, and its parameter string.
void CopyCommand(CLumoscriptView& view);
/// Copies and deletes; a marker is copied only, with the words of DeleteSelected.
void CutCommand(CLumoscriptView& view);
/// Inserts the command on the clipboard; one of a marker's name gives the marker its parameters.
/// Any other text does nothing.
void PasteCommand(CLumoscriptView& view);

/// What the panel says of one command.
struct ParameterPanel {
    std::string name;
    std::string params;
    std::string text;  // lines, each ended by LF; empty for a command without any
    bool canEdit = false;
};
ParameterPanel ShowParameterPanel(const CLumoscriptView& view, int index);

/// Which editing actions the selection allows.
struct EditButtons {
    bool swapUp = false;
    bool swapDown = false;
    bool edit = false;
    bool remove = false;
    bool copy = false;
    bool undo = false;
};
EditButtons UpdateButtons(const CLumoscriptView& view);

}  // namespace lumo::engine
