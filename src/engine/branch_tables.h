#pragma once

// The two tables by which a run moves: built once before it, so that it never searches.

#include <cstdint>
#include <span>
#include <vector>

#include "script/script.h"

namespace lumo::engine {

/// What the tables are built from.
struct TableInput {
    const script::Script& commands;  // the run list, subroutines included
    int startIdx = 0, endIdx = 0;    // markers, as they stood before subroutines were loaded
};

/// Numbers from here up are search failures, put where a position would stand. Some arrive one
/// higher, since the step behind the searched command is added in any case.
enum TableFault : std::int32_t {
    kNoElseEnd = 8010,
    kNoSubroutineEnd = 8020,
    kNoIfEnd = 8029,  // becomes 8030
    kNoLoopEnd = 8040,
    kNoLoopStart = 8049,  // becomes 8050
    kNoDoEnd = 8060,      // becomes 8061, which is reported as unknown
    kNoDoWhile = 8070,
    kSubroutineOverflow = 8080,
};

/// nextPc[i]: where the run goes when command i has run, or when the condition at i is true.
/// branchPc[i]: the false target of a condition; the Loop End of a Loop Start; the passes that
/// remain, at a Loop End, while the run lasts. Both spans hold at least Count() entries; entries
/// behind the list are zeroed.
void BuildTables(const TableInput& input, std::span<std::int32_t> nextPc,
                 std::span<std::int32_t> branchPc);

/// For each call the Loop Ends, from the call to the end of its subroutine, that belong to loops
/// opened before it: what remains of those loops is kept over the call. Empty for other commands.
std::vector<std::vector<std::int32_t>> LoopsAroundCalls(const script::Script& list);

}  // namespace lumo::engine
