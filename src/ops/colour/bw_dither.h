#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// Error diffusion to black and white on 0.299 red + 0.587 green + 0.114 blue, in doubles, every
/// row from the left, the error never clamped. In place. False, with LastError() set and the
/// picture unchanged, if the memory for two rows of errors cannot be had.
/// Source: Floyd and Steinberg, "An adaptive algorithm for spatial greyscale", 1976.
bool DitherImage(imaging::ImageView image);

}  // namespace lumo::ops::colour
