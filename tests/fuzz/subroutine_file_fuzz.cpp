// Any bytes as a Subroutine under any title: up to the first zero the title, then the file.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "script/names.h"
#include "script/script_format.h"
#include "script/templates.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::script;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::string_view title = input.substr(0, input.find('\0'));
    const std::string_view file = input.substr(std::min(size, title.size() + 1));

    Script script;
    script.Add(names::kCrop, "c");
    const ReadOutcome outcome = AppendSubroutineBytes(script, file, title);
    if (script.params.size() != script.names.size()) std::abort();
    if (std::ranges::any_of(script.names, IsMarker)) std::abort();
    if (outcome == ReadOutcome::WrongKind) {
        if (script.Count() != 1) std::abort();
        return 0;
    }
    if (script.Find(names::kSubroutineStart) != 1) std::abort();
    if (outcome == ReadOutcome::Complete && script.names.back() != names::kSubroutineEnd)
        std::abort();
    return 0;
}
