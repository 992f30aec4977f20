#pragma once

// The three logs of a batch run. Batch.log (what happened, image by image) and Error.log (errors
// and warnings alone) are kept in memory and written whole; Debug.log is written line by line,
// because it has to outlive a crash. docs/logs.md tells what they hold.
//
// The builders (LogInput ... LogErrorBlock) add lines whatever the settings say; the operations
// for callers behind them look at the settings. Names are shown with "?" for control characters.

#include <chrono>
#include <string_view>

#include "engine/view.h"

namespace lumo::io {

using engine::CLumoscriptView;

/// An image number that stands for none: the line shows just its text.
inline constexpr int kNoNumber = -1;

/// The one-based number of the image in hand; kNoNumber before the first image and behind the
/// image loop.
int ImageInHand(const CLumoscriptView& view);

bool BatchLogOn(const CLumoscriptView& view);
/// Batch.log with its error and warning lines.
bool BatchErrorsOn(const CLumoscriptView& view);
/// Error.log, by its setting or because an unattended run asks for it.
bool ErrorLogOn(const CLumoscriptView& view);

// ---- Builders of lines ----------------------------------------------------------------------

void LogBatchInfo(CLumoscriptView& view);
void LogErrorInfo(CLumoscriptView& view);
/// Every command of the Script with its parameter string.
void LogBatchHeader(CLumoscriptView& view);
void LogInput(CLumoscriptView& view, int number, std::string_view path);
void LogInputSize(CLumoscriptView& view, int number, imaging::Size size);
void LogOutput(CLumoscriptView& view, int number, std::string_view path);
void LogOutputSize(CLumoscriptView& view, int number, imaging::Size size);
/// "5 : text" in Batch.log.
void LogBatchLine(CLumoscriptView& view, int number, std::string_view text);
/// "5text" in Error.log: texts that want a blank begin with one.
void LogErrorLine(CLumoscriptView& view, int number, std::string_view text);
/// The block of lines of one error or warning. `name` is a command's; `detail` says what did not
/// come out: a file or again the name. A number beyond the list of images is not shown.
void LogBatchError(CLumoscriptView& view, int number, std::string_view name,
                   std::string_view detail, std::string_view text);
void LogErrorBlock(CLumoscriptView& view, int number, std::string_view name,
                   std::string_view detail, std::string_view text);

// ---- For callers: the settings decide what is written -----------------------------------------

/// Forgets all lines. At each start of a run, before anything is logged.
void ClearLogs(CLumoscriptView& view);
/// The info blocks and the header, once the Script has been copied into the run lists.
void OpenLogs(CLumoscriptView& view);
/// One line in both logs.
void LogLine(CLumoscriptView& view, int number, std::string_view text);
/// The block of an error or warning in both logs, with the number of the image in hand; in an
/// unattended run also a line for whoever started it.
void LogBlock(CLumoscriptView& view, std::string_view name, std::string_view detail,
              std::string_view text);
/// The block of a command whose handler failed: "Error:1003 - Command execution failure".
void LogCommandFailure(CLumoscriptView& view, std::string_view name);
/// "Error: empty main image buffer", for the command entered last.
void LogEmptyImage(CLumoscriptView& view);
/// A run that does not start: `text` goes to both logs, which are saved at once.
void LogFatalRefusal(CLumoscriptView& view, std::string_view text);
/// The user's abort; both logs are saved.
void LogAbort(CLumoscriptView& view);
/// Closing lines, then both logs are saved and forgotten.
void CloseLogs(CLumoscriptView& view,
               std::chrono::system_clock::time_point now = std::chrono::system_clock::now());

/// Replaces Batch.log or Error.log with the lines so far. A log that cannot be written is passed
/// over in silence.
void SaveBatchLog(CLumoscriptView& view);
void SaveErrorLog(CLumoscriptView& view);
/// Those of the two that are on.
void SaveLogs(CLumoscriptView& view);

/// "Elapsed processing time - hours: 00, mins: 12, secs: 34", since the start of the run. A run of
/// more than a day shows all of its hours.
std::string ElapsedText(const CLumoscriptView& view, std::chrono::system_clock::time_point now);

// ---- Debug.log --------------------------------------------------------------------------------

/// Begins Debug.log anew for an image that is about to be opened. Nothing if it is off.
void LogDebugStart(CLumoscriptView& view, std::string_view path);
/// Counts a command about to be executed and appends it, up to the hundredth of an image. Nothing
/// if Debug.log is off or no batch runs; the caller counts nothing itself.
void LogDebugCommand(CLumoscriptView& view, std::string_view name, std::string_view params);

}  // namespace lumo::io
