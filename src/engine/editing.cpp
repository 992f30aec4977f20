#include "engine/editing.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "engine/command.h"
#include "script/catalogue.h"
#include "script/characters.h"
#include "script/names.h"
#include "script/schema.h"
#include "script/templates.h"

namespace lumo::engine {
namespace {

namespace names = script::names;

constexpr std::string_view kNoParams = "0";
constexpr std::string_view kMarkersStay = "You may delete any Commands except START and END!";
constexpr std::string_view kMarkersKeepOrder =
    "You may change position of any Commands except Start and End!";
constexpr std::string_view kNeedsImage = "To edit commands, a 'Single image' file must be opened.";
constexpr std::string_view kCategoryPicked =
    "This item is descriptive header, it is not a script command";
constexpr std::size_t kPasteCharacters = 240;  // of the name, and of the parameter string

/// The dialogs show a command at work on an image.
bool HasImageForDialog(CLumoscriptView& view) {
    const imaging::Image& image = view.run.batchRunning ? view.sample.left : view.working.main;
    if (!image.IsEmpty()) return true;
    view.ui.ShowMessage(kNeedsImage);
    return false;
}

/// After a change of the Script.
void Changed(CLumoscriptView& view, int selected) {
    view.script.modified = true;
    view.ui.ScriptChanged();
    SelectCommand(view, selected);
}

void InsertCommand(CLumoscriptView& view, std::string_view name, std::string_view params) {
    const int at = InsertionPoint(view);
    TakeUndoCopy(view);
    view.script.commands.Insert(at, name, params);
    Changed(view, at);
}

void ReplaceParams(script::Script& commands, int index, std::string_view params) {
    const std::string name = commands.NameAt(index);
    commands.Remove(index);
    commands.Insert(index, name, params);
}

bool HasEditDialog(std::string_view name) {
    const script::CatalogueRow* row = script::FindByName(name);
    return row != nullptr && row->hasDialog;
}

/// A move of one marker to the other side of the other; they may come together only where START
/// stands first.
bool WouldPassOtherMarker(const script::Script& commands, int from, int to) {
    const std::string& name = commands.NameAt(from);
    const auto passes = [&](std::string_view other, int first, int last) {
        for (int i = first; i <= last; ++i)
            if (commands.NameAt(i) == other) return true;
        return false;
    };
    return (name == names::kStartImageLoop && passes(names::kEndImageLoop, from + 1, to)) ||
           (name == names::kEndImageLoop && passes(names::kStartImageLoop, to, from - 1));
}

struct ClipboardCommand {
    std::string name;
    std::string params;
};

/// The first two lines of the text. A line ends at CR, since a parameter string may hold a LF; in
/// a text without CR, as a desktop or an editor may hand it over, it ends at a LF outside of
/// quotes.
ClipboardCommand ReadClipboardCommand(std::string_view text) {
    const std::size_t nameEnd = std::min(text.find_first_of("\r\n"), text.size());
    ClipboardCommand command;
    command.name = script::FirstCharacters(text.substr(0, nameEnd), kPasteCharacters);
    text.remove_prefix(nameEnd);
    const bool crLf = text.starts_with('\r');
    if (crLf) text.remove_prefix(1);
    if (text.starts_with('\n')) text.remove_prefix(1);

    std::size_t end = 0;
    for (bool quoted = false; end < text.size() && text[end] != '\r'; ++end) {
        if (text[end] == '"') quoted = !quoted;
        if (text[end] == '\n' && !crLf && !quoted) break;
    }
    command.params = script::FirstCharacters(text.substr(0, end), kPasteCharacters);
    if (script::FieldCountText(command.name) == kNoParams || command.name == names::kEndImageLoop)
        command.params = kNoParams;
    return command;
}

}  // namespace

int SelectedCommand(const CLumoscriptView& view) {
    const int count = view.script.commands.Count();
    return count == 0 ? -1 : std::clamp(view.script.selected, 0, count - 1);
}

void SelectCommand(CLumoscriptView& view, int index) {
    view.script.selected = index;
    view.script.selected = SelectedCommand(view);
    view.ui.SelectCommand(view.script.selected);
}

void TakeUndoCopy(CLumoscriptView& view) {
    ScriptState& state = view.script;
    state.undoValid = !view.run.batchRunning;
    if (state.undoValid) state.undo = state.commands;
}

void RestoreUndoCopy(CLumoscriptView& view) {
    ScriptState& state = view.script;
    const bool valid = std::exchange(state.undoValid, false);
    if (!valid || view.run.batchRunning) return;
    const int selected = SelectedCommand(view);
    state.commands = std::move(state.undo);
    state.undo.Clear();
    Changed(view, selected < state.commands.Count() ? selected : 0);
}

int InsertionPoint(const CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected < 0) return 0;
    return selected == view.script.commands.Count() - 1 ? selected : selected + 1;
}

std::string DefaultParams(const CLumoscriptView& view, std::string_view name) {
    if (const script::CatalogueRow* row = script::FindByName(name)) {
        const auto stored = view.settings.commandDefaults.find(row->defaultsKey);
        if (stored != view.settings.commandDefaults.end() && !stored->second.empty())
            return stored->second;
        if (!row->factory.empty()) return std::string(row->factory);
    }
    // Some commands ship without a default and begin with the values of their dialog.
    const Command* command = FindCommand(name);
    return command ? script::FactoryString(command->spec.fields) : std::string(kNoParams);
}

void SetDefaultParams(CLumoscriptView& view, std::string_view name, std::string_view params) {
    const script::CatalogueRow* row = script::FindByName(name);
    if (row && !row->defaultsKey.empty())
        view.settings.commandDefaults[std::string(row->defaultsKey)] = params;
}

bool AddCommand(CLumoscriptView& view, std::string_view name, AddFrom from) {
    if (!HasImageForDialog(view)) return false;
    const std::string answer = script::FieldCountText(name);
    if (answer == "D" || answer == "N" || answer.empty()) {
        if (answer == "D" && from == AddFrom::Tree) view.ui.ShowMessage(kCategoryPicked);
        if (answer == "N")
            view.ui.ShowMessageBox("No item has been selected!", "warning", MessageIcon::Warning);
        return false;
    }

    std::string params(kNoParams);
    if (answer != kNoParams) {
        params = DefaultParams(view, name);
        bool makeDefault = false;
        if (!view.ui.EditParameters(name, params, makeDefault)) return false;
        if (makeDefault) SetDefaultParams(view, name, params);
    }
    InsertCommand(view, name, params);
    return true;
}

bool EditSelected(CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected < 0 || !HasImageForDialog(view)) return false;
    return EditCommandAt(view, selected);
}

bool EditCommandAt(CLumoscriptView& view, int index) {
    script::Script& commands = view.script.commands;
    if (index < 0 || index >= commands.Count()) return false;
    const std::string name = commands.NameAt(index);
    if (!HasEditDialog(name)) return false;

    // Both before the dialog, whatever comes out of it: undo after a cancelled edit changes
    // nothing, and does not reach back to the change before.
    TakeUndoCopy(view);
    view.script.modified = true;
    std::string params = commands.ParamsAt(index);
    bool makeDefault = false;
    if (!view.ui.EditParameters(name, params, makeDefault)) return false;
    if (makeDefault) SetDefaultParams(view, name, params);
    ReplaceParams(commands, index, params);
    Changed(view, index);
    return true;
}

void DeleteSelected(CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected < 0) return;
    script::Script& commands = view.script.commands;
    if (script::IsMarker(commands.NameAt(selected))) {
        view.ui.ShowMessageBox(kMarkersStay, "", MessageIcon::Stop);
        return;
    }
    TakeUndoCopy(view);
    commands.Remove(selected);
    Changed(view, std::max(selected - 1, 0));
}

void SwapUp(CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected > 0) MoveCommand(view, selected, selected - 1);
}

void SwapDown(CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected + 1 < view.script.commands.Count()) MoveCommand(view, selected, selected + 1);
}

bool MoveCommand(CLumoscriptView& view, int from, int to) {
    script::Script& commands = view.script.commands;
    const int count = commands.Count();
    if (from < 0 || from >= count || to < 0 || to >= count || from == to) return false;
    if (WouldPassOtherMarker(commands, from, to)) {
        view.ui.ShowMessage(kMarkersKeepOrder);
        return false;
    }
    TakeUndoCopy(view);
    const std::string name = commands.NameAt(from), params = commands.ParamsAt(from);
    commands.Remove(from);
    commands.Insert(to, name, params);
    Changed(view, to);
    return true;
}

void CopyCommand(CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    if (selected < 0) return;
    const script::Script& commands = view.script.commands;
    view.ui.SetClipboardText(commands.NameAt(selected) + "\r\n" + commands.ParamsAt(selected));
}

void CutCommand(CLumoscriptView& view) {
    CopyCommand(view);
    DeleteSelected(view);
}

void PasteCommand(CLumoscriptView& view) {
    const ClipboardCommand pasted = ReadClipboardCommand(view.ui.ClipboardText());
    if (script::IsMarker(pasted.name)) {
        // At its own place, which is the first or the last unless the user has moved it: a second
        // marker would make a Script that cannot run.
        const int at = view.script.commands.Find(pasted.name);
        if (at < 0) return;  // a Subroutine has no markers, and is to get none
        TakeUndoCopy(view);
        ReplaceParams(view.script.commands, at, pasted.params);
        Changed(view, at);
    } else if (script::IsKnownCommand(pasted.name)) {
        InsertCommand(view, pasted.name, pasted.params);
    }
}

ParameterPanel ShowParameterPanel(const CLumoscriptView& view, int index) {
    const script::Script& commands = view.script.commands;
    if (index < 0 || index >= commands.Count()) return {};
    ParameterPanel panel{.name = commands.NameAt(index), .params = commands.ParamsAt(index)};
    panel.canEdit = panel.params != kNoParams;
    if (const Command* command = FindCommand(panel.name))
        panel.text = PanelText(command->spec, ReadParams(command->spec, panel.params));
    return panel;
}

EditButtons UpdateButtons(const CLumoscriptView& view) {
    const int selected = SelectedCommand(view);
    EditButtons buttons{.undo = view.script.undoValid && !view.run.batchRunning};
    if (selected < 0) return buttons;
    const script::Script& commands = view.script.commands;
    buttons.swapUp = selected > 0;
    buttons.swapDown = selected < commands.Count() - 1;
    buttons.edit = commands.ParamsAt(selected) != kNoParams;
    buttons.remove = !script::IsMarker(commands.NameAt(selected));
    buttons.copy = true;
    return buttons;
}

}  // namespace lumo::engine
