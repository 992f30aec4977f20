#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// Blends the colour over a rectangle, right and bottom exclusive: each channel becomes
/// colour * opacity + value * (1 - opacity) in doubles, rounded. Opacity 0.0 to 1.0. What lies
/// outside of the picture is left out. False, with LastError() set, only if there is no picture.
[[nodiscard]] bool FillTransparentRectOnImage(ImageView target, Rect rect, Rgb colour,
                                              double opacity);

}  // namespace lumo::imaging
