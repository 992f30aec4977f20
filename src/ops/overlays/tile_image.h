#pragma once

#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Covers the whole canvas with copies of the picture, the first at the top left; the copies at
/// the right and at the bottom are cut off. They do not overlap in memory. False, with LastError()
/// set, if one of the two has no pixels.
[[nodiscard]] bool TileImage(imaging::ImageView canvas, imaging::ConstImageView picture);

}  // namespace lumo::ops::overlays
