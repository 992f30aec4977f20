#include "platform/file_attributes.h"

#include <sys/xattr.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace lumo::platform {

void CopyExtendedAttributes(int from, int to, AccessLists accessLists) {
    constexpr std::size_t kMost = 65536;  // the system's own limit, for all names and for a value
    std::vector<char> names(kMost), value;
    const ssize_t bytes = ::flistxattr(from, names.data(), names.size());
    std::string_view rest(names.data(), bytes > 0 ? static_cast<std::size_t>(bytes) : 0);
    while (!rest.empty()) {
        const std::string_view name = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(rest.size(), name.size() + 1));
        const bool isAccessList = name == "system.posix_acl_access";
        if (!name.starts_with("user.") && !(isAccessList && accessLists == AccessLists::Copy))
            continue;
        value.resize(kMost);
        const ssize_t length = ::fgetxattr(from, name.data(), value.data(), value.size());
        if (length < 0) continue;
        (void)::fsetxattr(to, name.data(), value.data(), static_cast<std::size_t>(length), 0);
    }
}

}  // namespace lumo::platform
