#pragma once

#include "engine/view.h"

namespace lumo::ops::files {

/// Deletes the slots at the user's wish, with a sound that says whether it worked. Refused while a
/// batch runs, and where the folder is one that the settings or the Script at hand take pictures
/// from or write them to.
bool EmptyTempFolderNow(engine::CLumoscriptView& view);

}  // namespace lumo::ops::files
