#pragma once

// The folder of temporary pictures, and how it is emptied.

#include <span>
#include <string>

#include "platform/result.h"

namespace lumo::platform {

/// Which files of a folder are slots of the temporary commands.
enum class TempSlots {
    AllBmp,    // every name that ends in ".bmp": a folder that holds nothing else
    Numbered,  // Temp1.bmp to Temp7.bmp: a folder that the user chose
};

/// Removes the slots: plain files that stand directly in the folder. No link is followed, not even
/// one in the folder's own place; folders and other files stay. A folder that is one of `never`,
/// under whatever path, is refused. Gives the number of files removed; fails if one could not be.
Result<int> EmptyTempFolder(const std::string& folder, TempSlots slots,
                            std::span<const std::string> never);

}  // namespace lumo::platform
