#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// ResizeImage (bicubic) for a picture with a key colour: a target pixel either has exactly the key
/// colour, where at least half of what it covers has it, or nothing of it. Next to key pixels the
/// nearest other pixels go on instead, so that no rim of a mixed colour appears; a mixture that
/// happens to be the key colour moves by one level. The views must not overlap. False, with
/// LastError() set and the target undefined, if one is empty or the scratch memory cannot be had.
[[nodiscard]] bool ResizeImageMasked(ConstImageView source, ImageView target, Rgb key);

}  // namespace lumo::imaging
