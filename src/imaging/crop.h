#pragma once

// Taking a rectangle out of a picture.

#include "imaging/image.h"

namespace lumo::imaging {

/// Copies the pixels of the rectangle, right and bottom exclusive, into `target`, which has the
/// size of the rectangle. False, with LastError() set and the target untouched, if the rectangle is
/// empty, reaches beyond the source or differs in size from the target. The views must not overlap.
[[nodiscard]] bool CropImage(ConstImageView source, Rect rect, ImageView target);

}  // namespace lumo::imaging
