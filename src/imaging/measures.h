#pragma once

// Measures of a whole picture.

#include "imaging/image.h"

namespace lumo::imaging {

/// Number of different colours; 0, with LastError() set, if the scratch memory (2 MiB) cannot be
/// had, and for an empty picture.
int CountImageColors(ConstImageView image);

/// 0.299 times the mean of red + green + blue over all pixels: no luminance in spite of its name,
/// and 228.735 for white. Scripts are tuned to it. 0.0 for an empty picture.
double ImageBrightness(ConstImageView image);

/// 0.299 red + 0.587 green + 0.114 blue of the means of the four corner pixels. 0.0 for an empty
/// picture.
double BorderBrightness(ConstImageView image);

}  // namespace lumo::imaging
