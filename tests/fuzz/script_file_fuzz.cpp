// Any bytes as a Script file: what was read reads the same once it has been written.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "script/script_format.h"
#include "script/templates.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lumo::script;
    ParsedScript parsed = ParseScriptBytes({reinterpret_cast<const char*>(data), size});
    Script& script = parsed.script;
    if (script.params.size() > script.names.size()) std::abort();

    script.params.resize(script.names.size());
    const ParsedScript again = ParseScriptBytes(SerializeScript(script, FileKind::Script));
    if (!again.Complete() || again.script != script) std::abort();

    EnsureMarkers(script, "0");
    if (script.params.size() != script.names.size()) std::abort();
    const ParsedScript subroutine = ParseScriptBytes(SerializeScript(script, FileKind::Subroutine));
    RemoveMarkers(script);
    if (!subroutine.Complete() || subroutine.script != script) std::abort();
    return 0;
}
