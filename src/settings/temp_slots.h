#pragma once

// When and how the folder of temporary pictures is emptied.

#include <ctime>
#include <span>
#include <string>

#include "platform/result.h"
#include "settings/settings.h"

namespace lumo::settings {

/// More than eight whole hours lie between the last save of the settings and now.
bool AreSlotsStale(std::time_t lastSave, std::time_t now);

/// Removes the slots from the folder of temporary pictures: all of them where it is the program's
/// own one, Temp1.bmp to Temp7.bmp where the user chose another. Refused where that folder is one
/// that pictures come from or go to: the photo folder, the folders last used, those that the
/// defaults of a Script's input and output name, the home folder, any other folder of the settings,
/// or one of `alsoNever` (such as those of the Script at hand). Gives the number removed.
platform::Result<int> EmptyTempFolder(const Settings& settings,
                                      std::span<const std::string> alsoNever);

}  // namespace lumo::settings
