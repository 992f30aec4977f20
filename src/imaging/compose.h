#pragma once

// Laying colour and pictures on a picture.

#include "imaging/image.h"

namespace lumo::imaging {

/// Gives every pixel of the rectangle, right and bottom exclusive, that colour. What lies outside
/// of the picture is left out; an empty rectangle changes nothing. False, with LastError() set,
/// only if there is no picture.
[[nodiscard]] bool FillSolidRect(ImageView target, Rect rect, Rgb colour);

/// Lays the source on the destination with its upper left pixel at (x, y). Each channel becomes
/// source * opacity + value * (1 - opacity), rounded, with an opacity in steps of 1 / 65536,
/// limited to 0 to 1: (source * w + value * (65536 - w) + 32768) / 65536, truncated. What would lie
/// outside of the destination is left out. False, with LastError() set, only if one of the two has
/// no pixels. The views must not overlap.
[[nodiscard]] bool OverlayImage(ImageView destination, ConstImageView source, int x, int y,
                                double opacity = 1.0);

}  // namespace lumo::imaging
