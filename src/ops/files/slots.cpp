#include "ops/files/slots.h"

#include "io/parse_line.h"
#include "platform/paths.h"

namespace lumo::ops::files {

std::optional<std::string> SlotFileName(const script::Fields& fields) {
    const std::string& number = fields.Text(slot::kNumber);
    const std::string& name = fields.Text(slot::kName);
    if (number == slot::kNamed) {
        if (io::HasSeparator(name)) return std::nullopt;
        return name + ".bmp";
    }
    if (number.size() != 1 || number[0] < '0' || number[0] > '6') return std::nullopt;
    return "Temp" + std::to_string(number[0] - '0' + 1) + ".bmp";
}

std::optional<std::string> SlotPath(const settings::Settings& settings,
                                    const script::Fields& fields) {
    const auto name = SlotFileName(fields);
    if (!name || settings.folders.temp.empty()) return std::nullopt;
    return platform::AddBackSlash(settings.folders.temp) + *name;
}

std::string StatedSlotPath(const script::Fields& fields) {
    const auto name = SlotFileName(fields);
    return name ? "<TEMP_FOLDER>\\" + *name : std::string();
}

}  // namespace lumo::ops::files
