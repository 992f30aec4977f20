#pragma once

// The form of Scripts and Subroutines in files, as bytes: see docs/script-format.md. Reading and
// writing files is in script_file.h.

#include <string>
#include <string_view>

#include "script/script.h"

namespace lumo::script {

enum class FileKind {
    Script,      // .whs, begins "BEGIN"
    Subroutine,  // .sbr, begins "SUBRT" and is written without the markers of the image loop
};

enum class ReadOutcome {
    Complete,   // up to the line "END"
    NoEnd,      // the bytes ended first; what was read so far is kept
    TooShort,   // fewer bytes than any Script has
    WrongKind,  // begins with neither word
};

struct ParsedScript {
    Script script;
    ReadOutcome outcome = ReadOutcome::TooShort;
    FileKind kind = FileKind::Script;

    bool Complete() const { return outcome == ReadOutcome::Complete; }
};

/// A Script or Subroutine as a file holds it, with the names of older Scripts mapped to those of
/// today. Takes any bytes.
ParsedScript ParseScriptBytes(std::string_view bytes);

/// The commands of a Subroutine added to `script`, between SUBROUTINE_START with the first 40
/// characters of `title` and SUBROUTINE_END; markers of the image loop are left out, and no names
/// are mapped. A whole Script serves as a Subroutine too. `WrongKind` adds nothing; `NoEnd` leaves
/// what was read so far, without SUBROUTINE_END.
ReadOutcome AppendSubroutineBytes(Script& script, std::string_view bytes, std::string_view title);

/// The bytes of the file, in the form that ParseScriptBytes reads. A carriage return would end its
/// line, so none is written. A line that would be read as a comment or as the end gets a blank in
/// front: as parameters it means the same, and the lines behind it keep their places.
std::string SerializeScript(const Script& script, FileKind kind);

}  // namespace lumo::script
