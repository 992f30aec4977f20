#pragma once

// Copies and moves of whole files. What stands under the target's name is at every moment what was
// there before or the whole new file, and the source is there until then: a kill of the program or
// a full disk in between leaves at most a hidden temporary file beside the target.

#include <string>

#include "platform/files.h"

namespace lumo::platform {

/// Copies a plain file, over links to it, with its mode, time stamps and `user.` attributes. The
/// copy is synced before it takes its name. Refused where both paths lead to one file (EEXIST) and
/// where CheckReplaceable refuses the target. Fails with EBUSY if the source was written meanwhile.
Status CopyFile(const std::string& from, const std::string& to, Existing existing);

/// Renames a plain file, with the refusals of CopyFile; across file systems it copies and then
/// removes the source. A link is not moved itself, since it might lead nowhere from its new place:
/// the target becomes a copy of the file behind it, the link goes and that file stays. Where the
/// copy was made and the source cannot be removed, both stay and the move has failed.
Status MoveFile(const std::string& from, const std::string& to, Existing existing);

}  // namespace lumo::platform
