#pragma once

#include <string>
#include <string_view>

namespace lumo::imaging {

/// Notes why an operation of this folder failed, for this thread.
void SetLastError(std::string_view text);
void ClearLastError();

/// The text of the last failure in this thread; "0" if none has been noted.
std::string LastError();

}  // namespace lumo::imaging
