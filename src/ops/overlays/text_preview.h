#pragma once

// What the previews of the text commands share.

#include "io/parse_line.h"
#include "ops/overlays/text_style.h"

namespace lumo::ops::overlays {

/// The macros as a dialog shows them: the sizes of the sample and this moment are known there; the
/// macros of a file keep their own words and counters stand at 0.
io::MacroValues PreviewMacros(imaging::Size sample);

/// The style at the size of the preview: letters, where they are not sized by the image, and margin
/// shrink as the sample did.
void ShrinkStyle(TextStyle& style, int shown, int sample);

}  // namespace lumo::ops::overlays
