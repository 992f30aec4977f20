#pragma once

#include <cmath>
#include <cstdint>

namespace lumo::imaging {

/// Toward zero, to the nearest end of the range; 0 for what is no number.
inline std::int32_t Truncate(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<std::int32_t>(std::fmin(std::fmax(value, INT32_MIN), INT32_MAX));
}

}  // namespace lumo::imaging
