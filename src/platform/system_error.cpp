#include "platform/system_error.h"

#include <system_error>

#include "platform/paths.h"

namespace lumo::platform {

Error PathError(std::string_view path, std::string_view reason, int errorNumber) {
    return {Printable(path).append(": ").append(reason), errorNumber};
}

Error SystemError(std::string_view path, int errorNumber) {
    return PathError(path, std::generic_category().message(errorNumber), errorNumber);
}

}  // namespace lumo::platform
