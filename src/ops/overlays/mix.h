#pragma once

// The two percentage mixes of this family. They differ by one now and then, and Scripts rely on
// each in its place.

#include <cstddef>
#include <cstdint>

namespace lumo::ops::overlays {

/// first = (first * percent) / 100 + (second * (100 - percent)) / 100: each product is divided for
/// itself, truncated, and of the sum the low 8 bits stay. Any percent, in 32 bits that wrap.
void MixDividedApart(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                     int percent);

/// first = (first * percent + second * (100 - percent)) / 100, truncated; percent 0 to 100.
void MixDividedOnce(std::uint8_t* first, const std::uint8_t* second, std::size_t bytes,
                    int percent);

/// x / 255, truncated, for products of two bytes: x up to 65025. Sixteen bits overflow from 65280.
constexpr std::uint16_t By255(std::uint16_t x) {
    return static_cast<std::uint16_t>(static_cast<std::uint16_t>(x + 1 + (x >> 8)) >> 8);
}

}  // namespace lumo::ops::overlays
