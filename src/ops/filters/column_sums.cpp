#include "ops/filters/column_sums.h"

#include "imaging/simd.h"

namespace lumo::ops::filters {

LUMO_SIMD_CLONES
void AddSamples(const std::uint8_t* __restrict row, std::size_t count,
                std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < count; ++i) sums[i] += row[i];
}

LUMO_SIMD_CLONES
void TakeSamples(const std::uint8_t* __restrict row, std::size_t count,
                 std::uint32_t* __restrict sums) {
    for (std::size_t i = 0; i < count; ++i) sums[i] -= row[i];
}

}  // namespace lumo::ops::filters
