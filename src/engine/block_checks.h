#pragma once

// The block structure of a run list, checked before a run: in each of the three sections (before,
// inside and behind the image loop) every block begins before it ends, and ends.

#include <functional>
#include <string_view>

#include "script/script.h"

namespace lumo::engine {

/// A run list and where its markers stand.
struct RunList {
    const script::Script& commands;
    int startIdx = 0;
    int endIdx = 0;
};

/// Takes one line of the Error log.
using FaultSink = std::function<void(std::string_view line)>;

/// Each gives true if its blocks are in order, and otherwise tells the faults, each once a section.
bool CheckLoops(const RunList& list, const FaultSink& fault);
bool CheckDoWhile(const RunList& list, const FaultSink& fault);
/// A first-file or last-file IF outside of the image loop fails without a line.
bool CheckIf(const RunList& list, const FaultSink& fault);
/// An ELSE_START must follow its IF_END at once; in the image loop a breach fails without a line,
/// behind it the rule is not tested.
bool CheckElse(const RunList& list, const FaultSink& fault);
bool CheckSubroutines(const RunList& list, const FaultSink& fault);

}  // namespace lumo::engine
