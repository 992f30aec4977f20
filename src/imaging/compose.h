#pragma once

// Laying colours and pictures over a picture.

#include "imaging/image.h"

namespace lumo::imaging {

/// Gives every pixel of the rectangle (right and bottom exclusive) that lies inside of the picture
/// that colour. Nothing happens for an empty rectangle or one outside.
void FillSolidRect(ImageView image, Rect rect, Rgb colour);

/// Copies the source so that its top left pixel lies at (x, y), which may be negative; what falls
/// outside of the destination is left out. The views must not overlap.
void OverlayImage(ImageView destination, ConstImageView source, int x, int y);

}  // namespace lumo::imaging
