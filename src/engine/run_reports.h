#pragma once

// What a run says when something goes wrong, and to which log.

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/view.h"

namespace lumo::engine {

/// A fault found before a run: a line of the Error log, if that log is kept (in an unattended run
/// with forced error lines in any case), and on standard error where nobody watches a window.
void ReportFault(CLumoscriptView& view, std::string_view line);

/// A run that may not start: a message box, or, in an unattended run, the other words as lines of
/// the logs, which are saved, and on standard error.
void ReportRefusal(CLumoscriptView& view, std::string_view words, std::string_view unattended);

/// "Error:1003" for the command at `prevPc`, and one more error.
void ReportCommandFailure(CLumoscriptView& view);

/// The words for a `pc` beyond the run list.
std::string FatalText(int code);
/// The same as a line of both logs with the number of the image in hand; a code above 8000 is one
/// more error. Unattended, on standard error too.
void ReportFatal(CLumoscriptView& view, int code);

}  // namespace lumo::engine
