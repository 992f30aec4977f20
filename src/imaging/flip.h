#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

// In place; doing it twice gives the same bytes. False, with LastError() set, only if there is no
// picture.

/// Mirrors left and right.
[[nodiscard]] bool HorizontalFlipImage(ImageView image);

/// Mirrors top and bottom.
[[nodiscard]] bool VerticalFlipImage(ImageView image);

}  // namespace lumo::imaging
