#pragma once

// The inner loops of resampling, built for several instruction sets; the best one that the
// processor has runs. All sums are exact 32-bit integers, so every set gives the same bytes.
//
// Samples are bytes as stored, or 16-bit integers that count fractions of a level. A sum of
// weighted samples is rounded to nearest (halves up), shifted right, and clamped to 0..255 where
// bytes come out. The caller sees to it that no sum leaves 32 bits and no 16-bit result 16.

#include <cstddef>
#include <cstdint>

namespace lumo::imaging::kernels {

/// Rows that are added up, sample by sample: `taps` rows, an even number, with their weights.
template <typename Sample>
struct RowSum {
    const Sample* const* rows;
    const std::int16_t* weights;
    int taps;
    int shift;
};

/// out[x] = sum of weights[k] * rows[k][x], for x from begin to end - 1.
void SumRows(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
             std::uint8_t* out);
void SumRows(const RowSum<std::uint8_t>& sum, std::size_t begin, std::size_t end,
             std::int16_t* out);
void SumRows(const RowSum<std::int16_t>& sum, std::size_t begin, std::size_t end,
             std::uint8_t* out);

/// 16-bit numbers of one pair of neighbouring pixels: R0 R1 G0 G1 B0 B1 0 0.
inline constexpr std::size_t kPairSize = 8;

/// Lays `width` pixels out as ceil(width / 2) pairs; a missing second pixel is black.
void PackPairs(const std::uint8_t* pixels, std::size_t width, std::int16_t* pairs);
void PackPairs(const std::int16_t* pixels, std::size_t width, std::int16_t* pairs);

/// Weighted sums along a row of pairs.
struct ColumnSum {
    int width;                    // pixels to make
    const std::int32_t* offsets;  // of each one's first number in the row of pairs
    const std::int16_t* weights;  // pairCount * kPairSize for each: w0 w1 w0 w1 w0 w1 w0 w1
    int pairCount;
    int shift;
};

inline constexpr int kMostRows = 4;

/// Makes one row from each of `rows` rows of pairs, 1 to kMostRows of them. The 16-bit rows need
/// room for one number more than three times the width.
void SumColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                std::uint8_t* const* out);
void SumColumns(const ColumnSum& sum, const std::int16_t* const* pairs, int rows,
                std::int16_t* const* out);

}  // namespace lumo::imaging::kernels
