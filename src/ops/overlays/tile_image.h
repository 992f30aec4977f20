#pragma once

#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Covers the whole canvas with copies of the picture, the first at the top left; the copies at
/// the right and at the bottom are cut off. Neither is empty, and they do not overlap in memory.
void TileImage(imaging::ImageView canvas, imaging::ConstImageView picture);

}  // namespace lumo::ops::overlays
