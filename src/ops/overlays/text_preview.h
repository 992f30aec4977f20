#pragma once

// What the previews of the text commands share.

#include "ops/overlays/text_style.h"

namespace lumo::ops::overlays {

/// The style at the size of the preview: letters, where they are not sized by the image, and margin
/// shrink as the sample did.
void ShrinkStyle(TextStyle& style, int shown, int sample);

}  // namespace lumo::ops::overlays
