#pragma once

// Runs of pixels in vectors, each pixel by itself. The commands hold the contracts; here arguments
// are in the ranges told.

#include <array>
#include <cstddef>
#include <cstdint>

#include "imaging/image.h"

namespace lumo::ops::colour::kernels {

/// Levels added to red, green and blue, each -255 to 255; the sums are held between 0 and 255.
void Add(std::uint8_t* pixels, std::size_t count, const std::array<int, 3>& amounts);

/// The bytes from low to high; none if low is above high.
struct Range {
    std::uint8_t low = 255, high = 0;
};

/// Inserts the colour where each channel is in its range.
void Replace(std::uint8_t* pixels, std::size_t count, const std::array<Range, 3>& wanted,
             imaging::Rgb inserted);

/// Inverts where the luma is above the threshold, 0 to 254.
void Solarize(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold);

/// Black where the luma is below the threshold, else white.
void Threshold(std::uint8_t* pixels, std::size_t count, std::uint8_t threshold);

/// Sum of 0.299 red + 0.586 green + 0.114 blue + 0.5, truncated for each pixel.
std::uint64_t SumForMean(const std::uint8_t* pixels, std::size_t count);

/// Grey and then Add, in one pass.
void AddToGrey(std::uint8_t* pixels, std::size_t count, const std::array<int, 3>& amounts);

void SwapRedGreen(std::uint8_t* pixels, std::size_t count);
void SwapGreenBlue(std::uint8_t* pixels, std::size_t count);

}  // namespace lumo::ops::colour::kernels
