#pragma once

// Turning a picture by right angles: no pixel changes, each only takes another place.

#include "imaging/image.h"

namespace lumo::imaging {

/// Clockwise. A half turn undoes itself; the other two undo each other.
enum class QuarterTurn { By90, By180, By270 };

/// Turns the picture; by 90 and 270 degrees width and height change places. Works in a second
/// buffer where the memory budget has room for one, and in the picture's own where not. False, with
/// LastError() set, only if there is no picture.
[[nodiscard]] bool QuickRotateImageInPlace(Image& image, QuarterTurn turn);

/// The source turned into the target, which has its size, for 90 and 270 degrees with width and
/// height exchanged. The views must not overlap.
void QuickRotate(ConstImageView source, QuarterTurn turn, ImageView target);

}  // namespace lumo::imaging
