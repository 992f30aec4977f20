#pragma once

// Scripts and Subroutines on disk. Paths are native.

#include <functional>
#include <string>
#include <string_view>

#include "platform/result.h"
#include "script/script.h"
#include "script/script_format.h"

namespace lumo::script {

/// Shows one message to the user, or logs it; may be empty.
using MessageSink = std::function<void(std::string_view)>;

/// Writes the Script whole or not at all; an existing file is replaced only by a complete one.
platform::Status SaveScriptChecked(const Script& script, const std::string& path, FileKind kind);

/// The same for callers that go on in any case: always true, also where nothing was written.
bool SaveScript(const Script& script, const std::string& path, FileKind kind);

/// Subroutine for the extension "sbr" in any case, else Script.
FileKind FileKindOf(std::string_view path);

/// Replaces `script` by that of a file, a Subroutine too. After a failure `script` holds what was
/// read so far, and the error says why; a file of another kind is told to `show` as well. The
/// markers of the image loop are the caller's to complete: EnsureMarkers.
platform::Status LoadScript(const std::string& path, Script& script, const MessageSink& show);

/// LoadScript for editing a Subroutine, which stands without the markers. If the file cannot be
/// opened, `script` is the two markers alone, START with its default parameter string.
platform::Status LoadSubroutineForEdit(const std::string& path, Script& script,
                                       std::string_view startDefault, const MessageSink& show);

/// AppendSubroutineBytes of a file under its title. Where it fails because the file cannot be
/// opened or is of another kind, `script` stays as it was; the latter is told to `show`.
platform::Status AppendSubroutine(const std::string& path, Script& script, const MessageSink& show);

}  // namespace lumo::script
