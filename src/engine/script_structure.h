#pragma once

#include "engine/view.h"

namespace lumo::engine {

/// The check before the whole Script is tried on the sample: its blocks are closed, its outputs in
/// loops are numbered (if the settings ask for that), and its subroutines are there; one that is
/// missing is appended to the Script from the Subroutines folder. False, with the words in a
/// message box, at the first fault.
bool CheckScriptStructure(CLumoscriptView& view);

}  // namespace lumo::engine
