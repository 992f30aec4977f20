#pragma once

// Slots: the files that temporary pictures are parked in.

#include <optional>
#include <string>

#include "engine/view.h"
#include "script/fields.h"

namespace lumo::ops::files {

/// Fields of "Output (temporary)" and "Input (temporary)", behind the count.
namespace slot {
enum Field {
    kNumber,  // "0" to "6": Temp1.bmp to Temp7.bmp; "7": the name
    kName,    // without ".bmp"
    kFieldCount
};
inline constexpr std::string_view kNamed = "7";
}  // namespace slot

/// The name of the slot's file; none for another number, or for a name that would leave the
/// folder.
std::optional<std::string> SlotFileName(const script::Fields& fields);

/// Its path in the folder of temporary pictures; none without a name or folder.
std::optional<std::string> SlotPath(const settings::Settings& settings,
                                    const script::Fields& fields);

/// Its path as other commands can state it: "<TEMP_FOLDER>\Temp1.bmp"; empty without a name.
std::string StatedSlotPath(const script::Fields& fields);

}  // namespace lumo::ops::files
