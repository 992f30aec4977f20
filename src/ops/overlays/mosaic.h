#pragma once

#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Gives every block of that size, counted from the top left, the average of its pixels, each
/// channel truncated. The last blocks of a row or column may be smaller; they average their own
/// pixels. In place; width and height of a block are at least 1.
void MosaicImage(imaging::ImageView image, imaging::Size block);

}  // namespace lumo::ops::overlays
