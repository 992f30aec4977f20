#pragma once

#include <cstddef>
#include <cstdint>

namespace lumo::ops::filters {

/// Adds the samples of a row to one sum for each.
void AddSamples(const std::uint8_t* row, std::size_t count, std::uint32_t* sums);
/// Takes them off again.
void TakeSamples(const std::uint8_t* row, std::size_t count, std::uint32_t* sums);

}  // namespace lumo::ops::filters
