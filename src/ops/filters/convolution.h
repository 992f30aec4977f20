#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::ops::filters {

/// A kernel of 5 by 5 weights, row by row from the top, with what follows the sum.
struct Convolution {
    std::array<int, 25> weights{};
    int scale = 1;   // the divisor; 0: the offset alone
    int offset = 0;  // added after the division
};

/// The byte that comes of a sum of weighted samples: sum / scale + offset + 0.4 in doubles, limited
/// to 0 to 255, cut; for a scale of 0 the limited offset.
std::uint8_t ByteOfSum(std::int32_t sum, const Convolution& convolution);

/// Replaces every sample by its weighted neighbourhood, in place; the kernel is not flipped. Beyond
/// the edges the picture goes on with its edge pixels. Sums are 32-bit integers that wrap.
///
/// Works on copies of five rows. Empty on success; else the picture is untouched, LastError() is
/// set, and the number tells which of the three allocations failed: 1, 2 or 3.
std::optional<int> Convolve(imaging::ImageView image, const Convolution& convolution);

}  // namespace lumo::ops::filters
