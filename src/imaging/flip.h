#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// Mirrors the picture in place, left to right. Doing it twice gives the same bytes.
void FlipHorizontal(ImageView image);

/// Mirrors the picture in place, top to bottom. Doing it twice gives the same bytes.
void FlipVertical(ImageView image);

}  // namespace lumo::imaging
