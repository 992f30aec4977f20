#pragma once

// Subroutines by name: where they are defined, and the files that hold them.

#include <string>
#include <string_view>

#include "script/script.h"
#include "settings/settings.h"

namespace lumo::engine {

/// The name that the call or the definition at that place states.
std::string SubroutineNameAt(const script::Script& list, int place);

/// The first definition of that name at or behind `from`, or -1. Names are compared exactly.
int FindSubroutine(const script::Script& list, std::string_view name, int from = 0);

/// Appends the Subroutine NAME.sbr of a folder; false if it cannot be read to its end. The name may
/// hold folders, in the manner of Scripts.
bool AppendSubroutineOf(const std::string& folder, const std::string& name,
                        const settings::Settings& settings, script::Script& list);

}  // namespace lumo::engine
