#include "imaging/last_error.h"

namespace lumo::imaging {
namespace {
thread_local std::string lastError;
}

void SetLastError(std::string_view text) {
    lastError = text;
}
void ClearLastError() {
    lastError.clear();
}
std::string LastError() {
    return lastError.empty() ? "0" : lastError;
}

}  // namespace lumo::imaging
