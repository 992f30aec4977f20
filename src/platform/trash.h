#pragma once

#include <string>

#include "platform/result.h"

namespace lumo::platform {

/// Moves a file (a link itself, not what it leads to) to the trash of the desktop, without a
/// session bus. Where there is no trash for it the file stays and the result is an error: nothing
/// is ever deleted instead.
Status MoveToTrash(const std::string& path);

}  // namespace lumo::platform
