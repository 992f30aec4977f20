#pragma once

// Finding the uniform border around a picture.

#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::imaging {

/// A rectangle of pixels; right and bottom are inclusive.
struct InclusiveRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    friend constexpr bool operator==(InclusiveRect, InclusiveRect) = default;
};

/// The picture that a border of one colour encloses: the smallest rectangle that holds every pixel
/// which is not near that colour. Near means that the squared differences of the three channels sum
/// to at most `tolerance`; 3 * 255 * 255 and more take every pixel.
///
/// Without a given colour the colours of the four corners are tried, as every border runs through a
/// corner: first the one that most of the pixels along the four edges are near to; of equals the
/// upper ones first, left before right.
///
/// Empty if no row and no column at the edges is all border, and also if everything is.
std::optional<InclusiveRect> GetBorder(ConstImageView image, std::uint32_t tolerance,
                                       std::optional<Rgb> colour);

}  // namespace lumo::imaging
