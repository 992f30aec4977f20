#pragma once

// Block commands by their names, and subroutines by theirs: what the checks and the tables before a
// run and the check before a test have in common.

#include <string>
#include <string_view>

#include "script/script.h"
#include "settings/settings.h"

namespace lumo::engine {

/// The two IF that ask for a place in the input list.
bool IsFileIf(std::string_view name);
/// All three IF.
bool IsIfStarter(std::string_view name);

/// The name that a "SUBROUTINE Execute" calls, or that a "SUBROUTINE_START" defines.
std::string SubroutineNameAt(const script::Script& list, int at);

/// The first "SUBROUTINE_START" of exactly that name at `from` or behind it, or -1.
int FindSubroutine(const script::Script& list, std::string_view name, int from = 0);

/// Appends the subroutine of that name from a folder; the name may hold folders in the manner of
/// Scripts. False if there is no such file or it is none of ours; one that ends too early leaves
/// what was read of it.
bool AppendSubroutineFrom(const std::string& folder, std::string_view name,
                          const settings::Settings& settings, script::Script& list);

}  // namespace lumo::engine
