#include "engine/subroutines.h"

#include "platform/paths.h"
#include "script/fields.h"
#include "script/names.h"
#include "script/script_file.h"

namespace lumo::engine {

std::string SubroutineNameAt(const script::Script& list, int place) {
    return script::ParseParams(list.ParamsAt(place)).Text(0);
}

int FindSubroutine(const script::Script& list, std::string_view name, int from) {
    for (int i = from; i < list.Count(); ++i)
        if (list.NameAt(i) == script::names::kSubroutineStart && SubroutineNameAt(list, i) == name)
            return i;
    return -1;
}

bool AppendSubroutineOf(const std::string& folder, const std::string& name,
                        const settings::Settings& settings, script::Script& list) {
    const std::string native =
        platform::ParsePath(name, settings.installFolder, settings.folders.temp);
    return static_cast<bool>(script::AppendSubroutine(folder + "/" + native + ".sbr", list, {}));
}

}  // namespace lumo::engine
