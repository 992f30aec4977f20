#pragma once

// What the previews of this family share. A preview works on a reduced sample, so that lengths in
// pixels shrink with it.

#include <cstdint>
#include <optional>

#include "imaging/image.h"

namespace lumo::ops::geometry {

/// A length in pixels of the sample as pixels of the preview: `length * shown / sample`, truncated.
int ScaleLength(int length, int shown, int sample);

/// `preview`, or without one a copy of what stands before: a command that refuses its fields leaves
/// the picture as it is. No image if the memory for the copy cannot be had.
imaging::Image OrUnchanged(std::optional<imaging::Image> preview, imaging::ConstImageView before);

/// A picture of that size and colour; none if it is larger than any dialog could show or the memory
/// cannot be had.
std::optional<imaging::Image> TryCanvas(std::int64_t width, std::int64_t height,
                                        imaging::Rgb colour);

/// Shows what a crop of the sample to that rectangle takes away, at the scale of the preview:
/// everything outside loses half of its brightness, and the outermost pixels that stay are
/// inverted. Rectangles may reach beyond the picture. No image if the memory for it cannot be had.
imaging::Image MarkCut(imaging::ConstImageView before, imaging::Size sample, imaging::Rect keep);

}  // namespace lumo::ops::geometry
