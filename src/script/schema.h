#pragma once

// What a command says of its parameters: one FieldSpec for each field, in the order of the stored
// string. Parsing, factory defaults, panel texts, dialogs and their clamps all read it.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "script/fields.h"

namespace lumo::script {

enum class FieldKind : std::uint8_t {
    Integer,
    Real,
    Flag,      // on or off, two texts
    Choice,    // one of several texts, each with a name
    Text,      // free text
    Path,      // a file
    Folder,    // a folder
    Red,       // first of three fields that make a colour
    Green,     // second
    Blue,      // third
    Reserved,  // stored, never shown
};

/// One field. Ranges belong to the dialog: a run takes fields as they stand.
struct FieldSpec {
    FieldKind kind = FieldKind::Reserved;
    std::string_view label;
    std::string_view factory;  // the factory default, without quotes

    double low = 0, high = 0;  // dialog's range; equal: no range
    int whenField = -1;        // another range holds while that field has that text
    std::string_view whenText;
    double whenLow = 0, whenHigh = 0;

    std::span<const std::string_view> names;   // Choice: as shown, in dialog order
    std::span<const std::string_view> values;  // Choice: as stored; empty: "0", "1", "2", ...
    std::string_view on = "1", off = "0";      // Flag: the stored texts

    bool quoted = false;           // written through QuoteField
    bool quoteFactory = false;     // the factory string has it in quotes
    bool multiLine = false;        // Text
    std::string_view lineBreak;    // Text of several lines: as stored; empty: LF
    bool takesMacros = false;      // Text: a run replaces what io::ParseLine knows
    int maxLength = 0;             // Text: characters; 0: no limit
    std::string_view fileFilter;   // Path: for the chooser
    std::string_view browseTitle;  // Path, Folder: of the chooser; empty: the label
    std::string_view clearLabel;   // Text of several lines: of a button that empties it
    std::string_view unit;         // shown behind the control

    constexpr FieldSpec Clamp(double lowest, double highest) const {
        FieldSpec copy = *this;
        copy.low = lowest;
        copy.high = highest;
        return copy;
    }
    constexpr FieldSpec ClampWhen(int field, std::string_view text, double lowest,
                                  double highest) const {
        FieldSpec copy = *this;
        copy.whenField = field;
        copy.whenText = text;
        copy.whenLow = lowest;
        copy.whenHigh = highest;
        return copy;
    }
    constexpr FieldSpec Stored(std::string_view offText, std::string_view onText) const {
        FieldSpec copy = *this;
        copy.off = offText;
        copy.on = onText;
        return copy;
    }
    constexpr FieldSpec Unit(std::string_view text) const {
        FieldSpec copy = *this;
        copy.unit = text;
        return copy;
    }
    constexpr FieldSpec Quoted(bool alsoInFactory = false) const {
        FieldSpec copy = *this;
        copy.quoted = true;
        copy.quoteFactory = alsoInFactory;
        return copy;
    }
    /// `storedBreak` stands for a line break in the stored text; empty: LF itself.
    constexpr FieldSpec MultiLine(std::string_view storedBreak = {}) const {
        FieldSpec copy = *this;
        copy.multiLine = true;
        copy.lineBreak = storedBreak;
        return copy;
    }
    constexpr FieldSpec Macros() const {
        FieldSpec copy = *this;
        copy.takesMacros = true;
        return copy;
    }
    constexpr FieldSpec MaxLength(int characters) const {
        FieldSpec copy = *this;
        copy.maxLength = characters;
        return copy;
    }
    constexpr FieldSpec Filter(std::string_view pattern) const {
        FieldSpec copy = *this;
        copy.fileFilter = pattern;
        return copy;
    }
    constexpr FieldSpec BrowseTitle(std::string_view title) const {
        FieldSpec copy = *this;
        copy.browseTitle = title;
        return copy;
    }
    constexpr FieldSpec ClearedBy(std::string_view buttonLabel) const {
        FieldSpec copy = *this;
        copy.clearLabel = buttonLabel;
        return copy;
    }
};

constexpr FieldSpec Integer(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Integer, .label = label, .factory = factory};
}
constexpr FieldSpec Real(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Real, .label = label, .factory = factory};
}
constexpr FieldSpec Flag(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Flag, .label = label, .factory = factory};
}
/// Stored as "0", "1", "2" ... in the order of the names, or as `values` where they are given.
constexpr FieldSpec Choice(std::string_view label, std::string_view factory,
                           std::span<const std::string_view> names,
                           std::span<const std::string_view> values = {}) {
    return {.kind = FieldKind::Choice,
            .label = label,
            .factory = factory,
            .names = names,
            .values = values};
}
constexpr FieldSpec Text(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Text, .label = label, .factory = factory};
}
constexpr FieldSpec Path(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Path, .label = label, .factory = factory, .quoted = true};
}
constexpr FieldSpec Folder(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Folder, .label = label, .factory = factory, .quoted = true};
}
/// The first of three fields in a row: red, green, blue, each 0 to 255.
constexpr FieldSpec Red(std::string_view label, std::string_view factory) {
    return {.kind = FieldKind::Red, .label = label, .factory = factory, .low = 0, .high = 255};
}
constexpr FieldSpec Green(std::string_view factory) {
    return {.kind = FieldKind::Green, .factory = factory, .low = 0, .high = 255};
}
constexpr FieldSpec Blue(std::string_view factory) {
    return {.kind = FieldKind::Blue, .factory = factory, .low = 0, .high = 255};
}
constexpr FieldSpec Reserved(std::string_view factory) {
    return {.kind = FieldKind::Reserved, .factory = factory};
}

/// One line of the panel that says what a command will do.
struct PanelLine {
    enum class Kind : std::uint8_t { Fixed, Value, OneOf, WhenOn };
    Kind kind = Kind::Fixed;
    int field = -1;
    std::string_view before;                  // Fixed, Value, WhenOn: the text (ahead of the value)
    std::string_view after;                   // Value: behind the value
    std::span<const std::string_view> lines;  // OneOf
    std::string_view on = "1";                // WhenOn
};

constexpr PanelLine Fixed(std::string_view text) {
    return {.kind = PanelLine::Kind::Fixed, .before = text};
}
constexpr PanelLine Value(int field, std::string_view before, std::string_view after = {}) {
    return {.kind = PanelLine::Kind::Value, .field = field, .before = before, .after = after};
}
/// lines[k] if the field is the decimal text of k; any other text takes the last line.
constexpr PanelLine OneOf(int field, std::span<const std::string_view> lines) {
    return {.kind = PanelLine::Kind::OneOf, .field = field, .lines = lines};
}
/// The text if the field equals `on`, otherwise no line at all.
constexpr PanelLine WhenOn(int field, std::string_view text, std::string_view on = "1") {
    return {.kind = PanelLine::Kind::WhenOn, .field = field, .before = text, .on = on};
}

/// A check box that ties several edits to one of them: while it is on they follow it.
struct Follow {
    std::string_view label;
    int leader = -1;
    std::span<const int> followers;
};

/// Fields that stand together: in a frame with that title, or without one if it is empty.
struct FieldGroup {
    std::string_view title;
    std::span<const int> fields;  // in the order shown; the place is that of the first
    int columns = 1;              // fields in a line
    bool switched = false;        // the first, a Flag on a line of its own, enables the others
};

/// Count fields in a row, for a FieldGroup.
template <std::size_t Count>
constexpr std::array<int, Count> FieldsFrom(int first) {
    std::array<int, Count> fields{};
    for (std::size_t i = 0; i < Count; ++i) fields[i] = first + static_cast<int>(i);
    return fields;
}

/// A field that is shown only while another one has that text.
struct ShownWhen {
    int field = -1;
    int whenField = -1;
    std::string_view text;
};

/// What the dialog of a command shows beside its fields.
struct DialogSpec {
    std::string_view title;
    std::string_view windowState;  // "WS23"
    std::string_view helpTopic;
    std::span<const std::string_view> notes;  // static texts of the dialog
    Follow follow;
    std::span<const FieldGroup> groups;
    std::span<const ShownWhen> shownWhen;
    ShownWhen notesWhen;  // the notes too, if it names a field
    /// A line below the notes that can be read and copied; it follows the fields.
    std::string (*line)(const Fields&) = nullptr;
    /// Asked on OK, where it is not empty; "No" leads back to the dialog.
    std::string_view (*question)(const Fields&) = nullptr;
};

/// What the interface and the parser know of a command; what it does is the engine's.
struct CommandSpec {
    std::string_view name;  // as stored in Scripts, see names.h
    std::span<const FieldSpec> fields;
    std::span<const PanelLine> panel;
    /// Instead of `panel`, where the lines do not follow its pattern.
    std::string (*panelText)(const Fields&) = nullptr;
    const DialogSpec* dialog = nullptr;
    /// Instead of ParseParams and BuildParams, where older layouts of the string are read too.
    Fields (*parse)(std::string_view params) = nullptr;
    std::string (*build)(std::span<const std::string> texts) = nullptr;
};

/// The factory default string: the number of specs, then each factory text.
std::string FactoryString(std::span<const FieldSpec> fields);

/// A parameter string of these texts, one for each spec, quoted where its FieldSpec says so.
std::string BuildParams(std::span<const FieldSpec> specs, std::span<const std::string> texts);

/// The fields of a parameter string of this command, and the string of its field texts.
Fields ReadParams(const CommandSpec& spec, std::string_view params);
std::string WriteParams(const CommandSpec& spec, std::span<const std::string> texts);

/// The lines for these fields, each ended by a line feed.
std::string PanelText(std::span<const PanelLine> panel, const Fields& fields);
std::string PanelText(const CommandSpec& spec, const Fields& fields);

}  // namespace lumo::script
