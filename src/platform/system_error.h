#pragma once

// What the system says of a failed call, as one line for a user.

#include <cerrno>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace lumo::platform {

/// "path: reason", with control characters of the path shown as "?". `errorNumber` is the one that
/// comes nearest.
Error PathError(std::string_view path, std::string_view reason, int errorNumber = EINVAL);
/// The same with the system's words for an error number.
Error SystemError(std::string_view path, int errorNumber);

/// Repeats a system call for as long as a signal interrupts it.
template <class Call>
auto Uninterrupted(Call call) {
    auto result = call();
    while (result == -1 && errno == EINTR) result = call();
    return result;
}

}  // namespace lumo::platform
