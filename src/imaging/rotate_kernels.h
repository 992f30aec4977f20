#pragma once

// The inner loop of RotateImage. All of it is integers, so that every instruction set gives the
// same bytes.

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumo::imaging::kernels {

inline constexpr int kPhaseBits = 10;     // positions between two pixels that are told apart
inline constexpr int kWeightBits = 14;    // weights sum to 2^14
inline constexpr int kBetweenBits = 6;    // fraction of a row's sum that goes into the next sum
inline constexpr int kPositionBits = 32;  // fraction of a position
inline constexpr int kFirstShift = kWeightBits - kBetweenBits;
inline constexpr int kSecondShift = kWeightBits + kBetweenBits;

/// Weights of four neighbours, the second of which is the pixel of the position.
using CubicWeights = std::array<std::int16_t, 4>;

/// One for each phase; computed once.
const CubicWeights* CubicTable();

/// Pixels of a row of the target, and where they lie in the source.
struct RotatedRun {
    const std::uint8_t* pixels = nullptr;  // of the source
    std::size_t stride = 0;                // of the source, in bytes
    const CubicWeights* table = nullptr;
    std::int64_t u = 0, v = 0;    // of the first pixel: column and row, rounded to a phase by the
                                  // half phase that has been added
    std::int64_t du = 0, dv = 0;  // from pixel to pixel
    int count = 0;
    std::uint8_t* out = nullptr;
};

/// Draws a run whose pixels have all sixteen neighbours inside of the source, and two more pixels
/// to the right of those.
void DrawRun(const RotatedRun& run);

namespace plain {

/// One pixel out of four rows, at four columns (in bytes) of each.
void DrawPixel(const std::uint8_t* const* rows, const std::size_t* columns,
               const CubicWeights& across, const CubicWeights& down, std::uint8_t* out);

void DrawRun(const RotatedRun& run);

}  // namespace plain

}  // namespace lumo::imaging::kernels
