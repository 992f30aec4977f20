#pragma once

// A command: what the interface knows of it, how it is opened, and what it does.

#include <string_view>

#include "engine/view.h"
#include "script/fields.h"
#include "script/schema.h"

namespace lumo::engine {

/// Result of a handler. Anything but Failed is success; only Succeeded rebuilds the right frame
/// in a test run.
enum class Outcome : int { Failed = 0, Succeeded = 1, SucceededQuietly = 2 };

constexpr Outcome ToOutcome(bool ok) {
    return ok ? Outcome::Succeeded : Outcome::Failed;
}

/// The steps of the common opening that a command takes. In a run every command but those with
/// `ownFlow` has already moved `pc` on when its handler begins.
struct Opening {
    bool needsImage = true;  // an empty working image is logged and fails
    bool skipInTest = true;  // the skip test outside of a run
    bool skipInRun = false;  // and also in one: two commands only
    bool ownFlow = false;    // moves `pc` itself and asks the skip test itself: block commands
    bool waitCursor = true;  // shown while the handler works; block commands never have one
};

namespace openings {
inline constexpr Opening kStandard{};
inline constexpr Opening kNoImage{.needsImage = false};
inline constexpr Opening kNoSkip{.skipInTest = false};
inline constexpr Opening kNoSkipNoImage{.needsImage = false, .skipInTest = false};
inline constexpr Opening kSkipAlways{.skipInRun = true};
inline constexpr Opening kOwnFlow{.needsImage = false, .skipInTest = false, .ownFlow = true};
}  // namespace openings

/// Does the work: reads its fields, runs the kernel on view.working, reports, installs the result.
using Handler = Outcome (*)(CLumoscriptView& view, const script::Fields& fields);

/// The picture that the dialog shows for these fields; `before` is the scaled-down sample and
/// `sample` the size of the sample itself. Fields that take macros come with them replaced. Empty:
/// nothing to show.
using Preview = imaging::Image (*)(imaging::ConstImageView before, imaging::Size sample,
                                   const script::Fields& fields);

/// As Preview, for a command that lays a second picture over the first: `second` is what the dialog
/// opened from the field `secondField`, empty if it could not.
using OverlayPreview = imaging::Image (*)(imaging::ConstImageView before, imaging::Size sample,
                                          imaging::ConstImageView second,
                                          const script::Fields& fields);

/// One of the 91 commands. The catalogue (script/catalogue.h) holds its number, menu text,
/// defaults key and factory string.
struct Command {
    script::CommandSpec spec;
    Opening opening;
    Handler run = nullptr;  // none: fails
    Preview preview = nullptr;
    int secondField = -1;  // the path of the second picture, if there is one
    OverlayPreview overlayPreview = nullptr;
};

enum class LibraryError { Omit, Append };

/// The one voice of a handler that failed. Outside of a run the text goes to a message box; in a
/// run to both logs, without an image number. `Append` adds "  IS_error " and the last error of
/// the imaging folder.
void OnCommandFailure(CLumoscriptView& view, std::string_view text, LibraryError libraryError);

/// True if there is a working image; otherwise "Error: empty main image buffer" goes to the logs.
bool HasMainImage(CLumoscriptView& view);

/// True if the flags of the test walk say that a command is to be passed over.
bool SkipTest(const CLumoscriptView& view);

/// Frees the old working image, installs the new one and, outside of a batch run, shows its size.
void ReplaceMainImage(CLumoscriptView& view, imaging::Image image);

/// The size of the working image beside the right frame: "640x480".
void ShowMainSize(CLumoscriptView& view);

/// Marks the working image as full colour again: 24 bits, not forced, grey flag clear.
void SetFullColour(CLumoscriptView& view);

/// The command of that name; null for an unknown name, for END, which the run loop takes itself,
/// and for one that is still to come.
const Command* FindCommand(std::string_view name);

/// Runs one command by its exact name, in a run and in a test alike. 0 for an unknown name.
Outcome ExecuteCommand(CLumoscriptView& view, std::string_view name, std::string_view params);

}  // namespace lumo::engine
