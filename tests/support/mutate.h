#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace lumo::test {

/// A damaged copy of a file: one to eight seeded changes, each a flipped bit, a byte or a 16- or
/// 32-bit number set to an extreme, a run removed, doubled, moved or filled, or the end cut off.
/// The same bytes for the same seed on every machine. At most twice as long as the original,
/// plus 64 bytes.
std::vector<std::uint8_t> Mutate(std::span<const std::uint8_t> file, std::uint32_t seed);

}  // namespace lumo::test
