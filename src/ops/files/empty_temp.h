#pragma once

#include "engine/view.h"
#include "platform/result.h"

namespace lumo::ops::files {

/// Deletes the slots at the user's wish, with a sound that says whether it worked, and gives their
/// number. Refused while a batch runs, and where the folder is one that the settings or any field
/// of the Script at hand name.
platform::Result<int> EmptyTempFolderNow(engine::CLumoscriptView& view);

}  // namespace lumo::ops::files
