#include "engine/command_reference.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "engine/command.h"
#include "engine/command_table.h"
#include "script/catalogue.h"

namespace lumo::engine {
namespace {

using script::CatalogueRow, script::CommandSpec, script::FieldKind, script::FieldSpec;

constexpr std::string_view kIntroduction =
    R"md(# Commands

All commands in the order of the menu "All commands", as `lumoscript-batch --commands` prints them.
Each is shown as it stands in a Script: its name, and below it its parameters with the values it is
shipped with. Fields are counted from 1, behind the count. The ranges are those of the forms; a run
takes what stands in the Script. How parameters are written: [script-format.md](script-format.md).

## Macros

Texts put into pictures, names of files, log comments and headers may hold:

| Macro | Becomes |
|---|---|
| `$(filename)`, `$(filetitle)` | name of the input file with and without its extension |
| `$(filepath)` | its whole path; nothing in names of files |
| `$(width)`, `$(height)`, `$(size)` | pixels of the picture in hand: 640, 480, 640x480 |
| `$(date)` | today, in the form of the preferences |
| `$(date%Y-%m-%d)` | now, in any form of strftime |
| `$(counterA)` to `$(counterJ)` | the counters |

What is none of these stays as it stands. A line break in the text of "Text overlay (absolute)" and
in those of "JPG file header" is written `$x`.

## Paths

Folders and files may begin with `<INSTALL_FOLDER>`, the shipped content, or `<TEMP_FOLDER>`, the
folder of temporary pictures. In the folder of "Output setup" and of "Copy/Move",
`<original folder path>` is the folder of the input file and `<..original folder path>` the one
above it; both may go on with `\name`. Other paths begin at the working directory if they are not
absolute.
)md";

/// In the order of the catalogue.
constexpr std::array<std::string_view, script::kCommandCount> kSummaries{
    "Adds a band of one colour on each side.",
    "Changes contrast and brightness.",
    "Shifts hue, saturation and luminance.",
    "Raises or lowers red, green and blue.",
    "Stretches the range between two thresholds of luminance, or evens it out.",
    "Writes a block of your own into Batch.log.",
    "Combines the picture with another one, which is fitted to it.",
    "Blurs a little.",
    "Blurs more.",
    "Blurs by a gaussian.",
    "Blurs around the middle, and more towards the edges.",
    "Finds an even border and cuts it away.",
    "Puts the picture on a canvas of a fixed size.",
    "Bends the tones by a curve of 17 points.",
    "Makes the picture grey.",
    "Makes the picture black and white with a pattern for the tones between.",
    "Makes the picture black and white at a threshold.",
    "Makes the picture grey, with a tint of one colour.",
    "Tones the picture like an old photograph.",
    "Copies or moves the input file as it is on disk, see [files.md](files.md).",
    "Sets a counter, or adds to it.",
    "Counts the colours of the picture into counters.",
    "Cuts away the edges.",
    "Weighs each pixel and its surroundings, 5 by 5, row by row, then divides and adds.",
    "Sends the input file to the trash, or deletes it, see [files.md](files.md).",
    "Removes single specks.",
    "Repeats what stands before its DO_END while a condition holds, see [flow.md](flow.md).",
    "Ends a DO_WHILE.",
    "Grows the canvas and lets the picture throw a soft shadow on it.",
    "Removes dust and scratches.",
    "Makes blocks of one colour each.",
    "Runs where the IF directly above it did not.",
    "Ends an ELSE.",
    "Makes a relief.",
    "Ends the commands that run for each picture; goes to the next one.",
    "Leaves this picture and takes the next one, see [flow.md](flow.md).",
    "Mirrors left and right.",
    "Mirrors top and bottom.",
    "Lays a picture over this one that lets it through where it has the key colour.",
    "Brightens (above 1) or darkens (below 1) the tones between black and white.",
    "Draws a grid of lines.",
    "Moves the bright, middle and dark tones.",
    "Spreads the tones evenly.",
    "Stretches the tones to the whole range.",
    "Squeezes the columns, as if the picture turned away to a side.",
    "Runs what stands before its IF_END if a condition holds, see [flow.md](flow.md).",
    "Runs what stands before its IF_END for the first picture only.",
    "Runs what stands before its IF_END for the last picture only.",
    "Ends an IF.",
    "Brings back what \"Output (temporary)\" put aside.",
    "Opens one named picture in place of the one in hand.",
    "Keeps and adds header data of JPGs, see [metadata.md](metadata.md).",
    "Runs what stands before its Loop End so many times, see [flow.md](flow.md).",
    "Ends a numbered loop.",
    "Fades the picture into one colour where a grey mask is dark.",
    "Takes the brightest value of the surroundings.",
    "Smooths, despite its name.",
    "Takes the middle value of the surroundings: smooths and keeps edges.",
    "Takes the darkest value of the surroundings.",
    "Inverts all colours.",
    "Throws the picture away for an empty canvas.",
    "Adds noise.",
    "Writes the picture. The Script goes on with it, so there may be several.",
    "Puts the picture aside in a temporary slot.",
    "Opens the input file again.",
    "Replaces one colour and what is near it.",
    "Turns by quarters, clockwise.",
    "Turns clockwise by any angle; the corners take a colour.",
    "Gives the picture another size.",
    "Says what the Script does; not run.",
    "Sharpens.",
    "Moves the picture on its canvas.",
    "Cuts to the proportions of a size and gives the picture just that size.",
    "Leans the picture to a side.",
    "Inverts the bright tones.",
    "Begins the commands that run for each picture, and says which pictures. Once in a Script.",
    "Calls a subroutine by its name, see [flow.md](flow.md).",
    "Begins a subroutine inside of the Script.",
    "Ends a subroutine; goes back to where it was called.",
    "Swaps two channels.",
    "Swaps two channels.",
    "Swaps two channels.",
    "Writes a line of text, placed by percent.",
    "Writes lines of text, placed by pixels.",
    "Gives the picture raised or sunken tiles.",
    "Repeats the picture over a larger canvas.",
    "Repeats another picture over this one.",
    "Sharpens by the difference to a blurred copy.",
    "Squeezes the rows, as if the picture turned away up or down.",
    "Lays another picture over this one, at a place and in a size.",
    "Sets quality, resolution and the like for the files written below it.",
};

/// One line: line breaks as a Script has them.
std::string Line(std::string_view text) {
    std::string line;
    for (const char c : text) {
        if (c == '\n')
            line += "$x";
        else if (c != '\r')
            line += c;
    }
    return line;
}

/// A cell of a table, without what would end it.
std::string Cell(std::string_view text) {
    std::string cell;
    for (const char c : Line(text)) {
        if (c == '|') cell += '\\';
        cell += c;
    }
    return cell;
}

std::string Code(std::string_view text) {
    return text.empty() ? std::string() : "`" + Cell(text) + "`";
}

std::string Number(double value) {
    return fmt::format("{}", value);
}

std::string RangeOf(std::string_view kind, const FieldSpec& field) {
    std::string text(kind);
    if (field.low < field.high) text += ", " + Number(field.low) + " to " + Number(field.high);
    if (field.whenField >= 0)
        text += fmt::format(" ({} to {} if field {} is `{}`)", Number(field.whenLow),
                            Number(field.whenHigh), field.whenField + 1, field.whenText);
    if (!field.unit.empty()) text.append(" ").append(field.unit);
    return text;
}

std::string ChoicesOf(const FieldSpec& field) {
    std::string text;
    for (std::size_t i = 0; i < field.names.size(); ++i) {
        const std::string value =
            field.values.empty() ? std::to_string(i) : std::string(field.values[i]);
        if (!text.empty()) text += ", ";
        text += Code(value);
        if (field.names[i].empty())
            text += " (the next field)";
        else if (value != field.names[i])
            text += " " + Cell(field.names[i]);
    }
    return text;
}

std::string ValuesOf(const FieldSpec& field) {
    switch (field.kind) {
        case FieldKind::Integer:
            return RangeOf("whole number", field);
        case FieldKind::Real:
            return RangeOf("number", field);
        case FieldKind::Flag:
            return fmt::format("{} no, {} yes", Code(field.off), Code(field.on));
        case FieldKind::Choice:
            return ChoicesOf(field);
        case FieldKind::Text:
            return field.maxLength > 0 ? fmt::format("text, {} characters", field.maxLength)
                                       : "text";
        case FieldKind::Path:
            return "file";
        case FieldKind::Folder:
            return "folder";
        case FieldKind::Red:
        case FieldKind::Green:
        case FieldKind::Blue:
            return "0 to 255";
        case FieldKind::Reserved:
            return "not used";
    }
    return {};
}

/// The flag that switches the field on, where the form shows them in one frame; -1: none.
int SwitchOf(const CommandSpec& spec, int field) {
    if (spec.dialog == nullptr) return -1;
    for (const script::FieldGroup& group : spec.dialog->groups)
        if (group.switched && group.fields.front() != field &&
            std::ranges::find(group.fields, field) != group.fields.end())
            return group.fields.front();
    return -1;
}

/// `colour` keeps the label of a colour from its first field to the third.
std::string LabelOf(const CommandSpec& spec, int index, std::string& colour) {
    const FieldSpec& field = spec.fields[static_cast<std::size_t>(index)];
    std::string label = Cell(field.label);
    while (!label.empty() && (label.ends_with(':') || label.ends_with(' '))) label.pop_back();
    // The weights of a filter stand in a square without words.
    if (label.empty() && field.kind == FieldKind::Integer) label = "Weight";
    if (field.kind == FieldKind::Red) colour = label;
    if (field.kind == FieldKind::Red) label += ": red";
    if (field.kind == FieldKind::Green) label = colour + ": green";
    if (field.kind == FieldKind::Blue) label = colour + ": blue";
    if (const int leader = SwitchOf(spec, index); leader >= 0)
        label += fmt::format(" (of field {})", leader + 1);
    return label;
}

void AppendCommand(const CatalogueRow& row, const Command* command, std::string& text) {
    std::string params(script::FactoryParams(row.name));
    if (params == "0" && command != nullptr && !command->spec.fields.empty())
        params = script::FactoryString(command->spec.fields);
    text += fmt::format("\n## {}. {}\n\n{}\n\n```\n{}\n{}\n```\n", row.number, row.name,
                        CommandSummary(row.name), row.name, Line(params));
    if (command == nullptr || command->spec.fields.empty()) return;
    text += "\n| | Field | Values | Shipped |\n|---|---|---|---|\n";
    std::string colour;
    for (std::size_t i = 0; i < command->spec.fields.size(); ++i) {
        const FieldSpec& field = command->spec.fields[i];
        text += fmt::format("| {} | {} | {} | {} |\n", i + 1,
                            LabelOf(command->spec, static_cast<int>(i), colour), ValuesOf(field),
                            Code(field.factory));
    }
}

}  // namespace

std::string_view CommandSummary(std::string_view name) {
    const CatalogueRow* row = script::FindByName(name);
    return row == nullptr ? std::string_view{}
                          : kSummaries[static_cast<std::size_t>(row->number - 1)];
}

std::string CommandReference() {
    std::string text(kIntroduction);
    const auto table = CommandTable();
    for (const CatalogueRow& row : script::Catalogue())
        AppendCommand(row, table[static_cast<std::size_t>(row.number - 1)].command, text);
    return text;
}

}  // namespace lumo::engine
