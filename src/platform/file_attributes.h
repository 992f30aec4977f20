#pragma once

namespace lumo::platform {

enum class AccessLists { Leave, Copy };

/// Copies what hangs on an open file beside its bytes to another one: the tags and ratings of file
/// managers and, if wanted, who may do what with it beyond the mode. What the file system of the
/// other one does not know is passed over.
void CopyExtendedAttributes(int from, int to, AccessLists accessLists);

}  // namespace lumo::platform
