#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// Copies a rectangle of the source (right and bottom exclusive) into the target, which has exactly
/// its size and does not overlap it. False, with LastError() set and the target untouched, if the
/// rectangle is empty or not inside of the source, or the target has another size.
[[nodiscard]] bool CropImage(ConstImageView source, Rect rect, ImageView target);

}  // namespace lumo::imaging
