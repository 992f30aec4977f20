#pragma once

// "Shift image": all pixels moved one way, with what leaves the frame wrapped around or dropped.

#include "imaging/image.h"

namespace lumo::ops::geometry {

enum class Direction { Up, Down, Right, Left };

/// Moves the pixels of the source by `distance`, at most the side that they move along, into the
/// target, which has the same size. Wrapped, what leaves the frame comes in at the other side; else
/// the opening keeps the target's pixels.
void ShiftImage(imaging::ConstImageView source, Direction direction, int distance, bool wrap,
                imaging::ImageView target);

/// The part of a picture that a shift without wrapping leaves open.
imaging::Rect OpeningOf(imaging::Size size, Direction direction, int distance);

}  // namespace lumo::ops::geometry
