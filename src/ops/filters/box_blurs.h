#pragma once

// The blurs that take the mean of a square.

#include "imaging/image.h"

namespace lumo::ops::filters {

/// The mean of the 25 pixels around each pixel, truncated. The rows 0, 1 and the last two, the
/// columns 0, 1, 2 and the last two are copied: the frame stays sharp by design, one column wider
/// on the left. Views of the same size that do not overlap.
void BlurMore(imaging::ConstImageView source, imaging::ImageView target);

/// Leaves the middle of the picture sharp and blurs toward the corners. `startPercent` of half the
/// height is the vertical half axis of the sharp ellipse, which has the picture's aspect. Beyond
/// it each pixel is mixed with the mean of the square of side 2 * (trunc(radius) + 1) + 1 around
/// it, as far as that lies inside of the picture: half and half at the boundary, with a visible
/// step, the mean alone where the distance reaches half the height. The radius is limited to 0.1
/// to 10.0, the percentage is not: 32-bit integers that wrap. Views of the same size that do not
/// overlap. False, with LastError() set and the target undefined, if the scratch memory cannot be
/// had.
[[nodiscard]] bool BlurOutward(imaging::ConstImageView source, imaging::ImageView target,
                               int startPercent, double radius);

}  // namespace lumo::ops::filters
