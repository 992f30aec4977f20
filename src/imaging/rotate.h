#pragma once

// Turning a picture by any angle.

#include "imaging/image.h"

namespace lumo::imaging {

/// The size of the smallest upright rectangle that holds a picture of that size turned by
/// `radians`. False, with LastError() set, if the size is empty or the result is beyond every
/// picture; `turned` is left alone then.
///
/// Callers make their radians with a pi of six figures. An angle within 6e-6 of a quarter turn is
/// taken for one here and in RotateImage, and the same allowance is made for each side, so that no
/// row of canvas appears at 90 degrees.
[[nodiscard]] bool GetRotatedPixelSize(double radians, Size size, Size& turned);

/// Draws the source, turned clockwise about its centre, into the target, centre on centre. The
/// target is filled with the colour of the canvas beforehand; the edges of the picture are blended
/// into it by the share of each pixel that they cover. Resampled by Keys' cubic convolution with a
/// = -0.5, with edges clamped, so that a flat picture stays flat up to its very edge; a quarter
/// turn takes every pixel as it is. The views must not overlap. False, with LastError() set, if one
/// of them is empty or a side is longer than 2^26 pixels.
[[nodiscard]] bool RotateImage(ConstImageView source, ImageView target, double radians);

}  // namespace lumo::imaging
