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

/// "Error:1003" for the command at `prevPc`, and one more error.
void ReportCommandFailure(CLumoscriptView& view);

/// The words for a `pc` beyond the run list; above 8000 it is one more error.
std::string FatalText(int code);
void ReportFatal(CLumoscriptView& view, int code);

}  // namespace lumo::engine
