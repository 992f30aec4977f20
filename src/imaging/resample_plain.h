#pragma once

// The kernels of resampling as plain loops: for the ends of rows, and for processors without a
// vector unit that resample_kernels.cpp knows.

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "imaging/resample_kernels.h"

namespace lumo::imaging::kernels::plain {

template <typename Out>
Out Narrow(std::int32_t sum, int shift) {
    const std::int32_t value = sum >> shift;
    if constexpr (sizeof(Out) == 1)
        return static_cast<Out>(std::clamp(value, 0, 255));
    else
        return static_cast<Out>(value);
}

template <typename Sample, typename Out>
void SumRows(const RowSum<Sample>& sum, std::size_t begin, std::size_t end, Out* out) {
    for (std::size_t x = begin; x < end; ++x) {
        std::int32_t total = 1 << (sum.shift - 1);
        for (int k = 0; k < sum.taps; ++k) total += sum.weights[k] * sum.rows[k][x];
        out[x] = Narrow<Out>(total, sum.shift);
    }
}

/// Packs the pixels from an even x on.
template <typename Sample>
void PackPairs(const Sample* pixels, std::size_t x, std::size_t width, std::int16_t* pairs) {
    for (; x < width; x += 2) {
        std::int16_t* pair = pairs + x / 2 * kPairSize;
        std::fill_n(pair, kPairSize, std::int16_t{0});
        for (std::size_t c = 0; c < 3; ++c) {
            pair[2 * c] = pixels[3 * x + c];
            if (x + 1 < width) pair[2 * c + 1] = pixels[3 * x + 3 + c];
        }
    }
}

template <typename Out>
void SumColumns(const ColumnSum& sum, const std::int16_t* pairs, Out* out) {
    const std::size_t size = static_cast<std::size_t>(sum.pairCount) * kPairSize;
    const std::int16_t* weights = sum.weights;
    for (int x = 0; x < sum.width; ++x, weights += size) {
        const std::int16_t* window = pairs + sum.offsets[x];
        for (std::size_t c = 0; c < 3; ++c) {
            std::int32_t total = 1 << (sum.shift - 1);
            for (std::size_t k = 2 * c; k < size; k += kPairSize)
                total += weights[k] * window[k] + weights[k + 1] * window[k + 1];
            *out++ = Narrow<Out>(total, sum.shift);
        }
    }
}

}  // namespace lumo::imaging::kernels::plain
