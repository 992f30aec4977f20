#pragma once

// 32-bit arithmetic on parameter fields, which may hold anything: what does not fit wraps around.

#include <cstdint>

namespace lumo::imaging {

constexpr std::int32_t WrappingSum(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
constexpr std::int32_t WrappingProduct(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

}  // namespace lumo::imaging
