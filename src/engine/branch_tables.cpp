#include "engine/branch_tables.h"

#include <algorithm>
#include <cstddef>

#include "engine/subroutines.h"
#include "script/names.h"

namespace lumo::engine {
namespace {

namespace names = script::names;
using script::Script;

/// The first index in steps of `step` from `from` at which `closes` outnumber `opens`, or `fault`.
template <class Opens, class Closes>
int FindMatch(const Script& list, int from, int step, Opens opens, Closes closes, int fault) {
    int level = 0;
    for (int i = from; i >= 0 && i < list.Count(); i += step) {
        const std::string& name = list.NameAt(i);
        if (opens(name)) ++level;
        if (closes(name) && --level < 0) return i;
    }
    return fault;
}

auto Named(std::string_view wanted) {
    return [wanted](std::string_view name) { return name == wanted; };
}
bool Never(std::string_view) {
    return false;
}

int FindDoEnd(const Script& list, int i) {
    return FindMatch(list, i + 1, 1, Named(names::kDoWhile), Named(names::kDoEnd), kNoDoEnd);
}
int FindDoWhile(const Script& list, int i) {
    return FindMatch(list, i - 1, -1, Named(names::kDoEnd), Named(names::kDoWhile), kNoDoWhile);
}
int FindIfEnd(const Script& list, int i) {
    return FindMatch(list, i + 1, 1, IsIfStarter, Named(names::kIfEnd), kNoIfEnd);
}
/// Loops by number do not nest: each end belongs to the nearest start above it.
int FindLoopEnd(const Script& list, int i) {
    return FindMatch(list, i + 1, 1, Never, Named(names::kLoopEnd), kNoLoopEnd);
}
int FindLoopStart(const Script& list, int i) {
    return FindMatch(list, i - 1, -1, Never, Named(names::kLoopStart), kNoLoopStart);
}
int FindSubroutineEnd(const Script& list, int i) {
    return FindMatch(list, i + 1, 1, Never, Named(names::kSubroutineEnd), kNoSubroutineEnd);
}

/// The last command of an ELSE block that follows at once, else the IF_END itself.
int EndOfElse(const Script& list, int i) {
    if (i + 1 >= list.Count() || list.NameAt(i + 1) != names::kElseStart) return i;
    return FindMatch(list, i + 1, 1, Never, Named(names::kElseEnd), kNoElseEnd);
}

/// The definition is searched downwards only; one that stands above its caller is not found, and
/// the call falls through.
int FindCalled(const Script& list, int i) {
    const int start = FindSubroutine(list, SubroutineNameAt(list, i), i + 1);
    return start < 0 ? i : start;
}

}  // namespace

void BuildTables(const TableInput& input, std::span<std::int32_t> nextPc,
                 std::span<std::int32_t> branchPc) {
    std::ranges::fill(nextPc, 0);
    std::ranges::fill(branchPc, 0);
    const Script& list = input.commands;
    for (int i = 0; i < list.Count(); ++i) {
        const std::string& name = list.NameAt(i);
        std::int32_t next = i + 1, branch = 0;
        if (name == names::kStartImageLoop) {
            branch = input.endIdx + 1;
        } else if (name == names::kEndImageLoop) {
            next = input.startIdx;
        } else if (name == names::kDoWhile) {
            branch = FindDoEnd(list, i) + 1;
        } else if (name == names::kDoEnd) {
            next = FindDoWhile(list, i);
        } else if (name == names::kExit) {
            // Behind the loop there is no next image: the run ends.
            next = i < input.endIdx ? input.startIdx : list.Count();
        } else if (IsIfStarter(name)) {
            branch = FindIfEnd(list, i) + 1;
        } else if (name == names::kIfEnd) {
            next = EndOfElse(list, i) + 1;
        } else if (name == names::kLoopStart) {
            branch = FindLoopEnd(list, i);
        } else if (name == names::kLoopEnd) {
            next = FindLoopStart(list, i) + 1;
        } else if (name == names::kSubroutineExecute) {
            next = FindCalled(list, i) + 1;
        } else if (name == names::kSubroutineStart) {
            next = FindSubroutineEnd(list, i) + 1;
        }
        nextPc[static_cast<std::size_t>(i)] = next;
        branchPc[static_cast<std::size_t>(i)] = branch;
    }
}

std::vector<std::vector<std::int32_t>> LoopsAroundCalls(const Script& list) {
    std::vector<std::vector<std::int32_t>> loops(static_cast<std::size_t>(list.Count()));
    for (int call = 0; call < list.Count(); ++call) {
        if (list.NameAt(call) != names::kSubroutineExecute) continue;
        int starts = 0, ends = 0;
        for (int i = call; i < list.Count(); ++i) {
            const std::string& name = list.NameAt(i);
            if (name == names::kSubroutineEnd) break;
            if (name == names::kLoopStart) ++starts;
            if (name == names::kLoopEnd && ++ends > starts) {
                loops[static_cast<std::size_t>(call)].push_back(i);
                --ends;
            }
        }
    }
    return loops;
}

}  // namespace lumo::engine
