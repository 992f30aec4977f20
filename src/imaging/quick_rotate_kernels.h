#pragma once

// The inner loops of QuickRotate.

#include "imaging/image.h"

namespace lumo::imaging::kernels {

/// `width` pixels of the source in the opposite order. The two must not overlap.
void ReverseRow(const std::uint8_t* source, int width, std::uint8_t* target);

/// Turns columns [first, last) of the source by a quarter: they become rows of the target, which
/// has the size of the source with width and height exchanged.
void TurnColumns(ConstImageView source, bool clockwise, int first, int last, ImageView target);

}  // namespace lumo::imaging::kernels
