#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// Blurs with a gaussian whose standard deviation is `radius` pixels. Beyond the edges the picture
/// goes on with its edge pixels; a flat picture stays exactly flat. No byte is further than one
/// level from the exact, rounded result; the time hardly depends on the radius. A radius of 0 or
/// less copies, one beyond 20000 acts as 20000. Source and target have the same size and do not
/// overlap. False, with LastError() set and the target undefined, if the sizes differ or the
/// scratch memory cannot be had.
[[nodiscard]] bool BlurGaussian(ConstImageView source, ImageView target, double radius);

}  // namespace lumo::imaging
