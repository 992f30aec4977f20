#pragma once

#include "imaging/image.h"
#include "imaging/pixel_buffer.h"

namespace lumo::ops::colour {

/// Error diffusion to black and white on 0.299 red + 0.587 green + 0.114 blue, in doubles, every
/// row from the left, the error never clamped. In place. `errors` is what TryAllocateErrors gave
/// for that width.
/// Source: Floyd and Steinberg, "An adaptive algorithm for spatial greyscale", 1976.
void DitherImage(imaging::ImageView image, const imaging::PixelBuffer& errors);

/// Memory for the errors of DitherImage; empty, with LastError() set, if it cannot be had.
imaging::PixelBuffer TryAllocateErrors(int width);

/// Both in one: false, with LastError() set and the picture unchanged, without the memory.
bool DitherImage(imaging::ImageView image);

}  // namespace lumo::ops::colour
