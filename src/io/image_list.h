#pragma once

// Image lists (.lst): text files that name the files and folders of a batch.
//
//   START
//   ; a comment
//   /photos/cat.jpg
//   /photos/new/ (include subfolders)
//   END
//
// Lines end with CR LF; a file whose first line ends with LF alone is read with that line end.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/view.h"

namespace lumo::io {

/// One line of a list that is no comment.
struct ListEntry {
    std::string path;        // as stated, without marker and trailing blanks
    bool isFolder = false;   // ends in a separator
    bool recursive = false;  // " (include subfolders)" stood behind it
    friend bool operator==(const ListEntry&, const ListEntry&) = default;
};

/// The entries of a list file up to its line "END" or the end of the text; false if the text does
/// not begin with the line "START".
bool ParseImageList(std::string_view text, std::vector<ListEntry>& entries);

/// The lines of a list as they stand, comments too, up to "END" or the end of the text; none for
/// a text that is no list.
std::optional<std::vector<std::string>> ListLines(std::string_view text);
/// What a line names; a comment is for the caller to tell.
ListEntry ParseListLine(std::string_view line);
inline bool IsListComment(std::string_view line) {
    return line.starts_with(';');
}

/// A list of these lines. Empty ones are left out: each would name an empty path.
std::string ListText(const std::vector<std::string>& lines);
/// The line that ParseListLine reads as this file or folder (with or without a separator at its
/// end); none for a path that no line can name: one with a line break, or a file that begins with
/// ";" or ends with a blank.
std::optional<std::string> ListLineOfFile(std::string_view path);
std::optional<std::string> ListLineOfFolder(std::string_view path, bool recursive);

/// Fills the input list from a file: single files as they are, folders through ScanFolder with the
/// file types of the START command. 1, also for a file that cannot be read, which leaves an empty
/// list; 0, after a message, for a file that is no list.
int ReadListFile(engine::CLumoscriptView& view, const std::string& path);

}  // namespace lumo::io
