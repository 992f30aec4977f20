#pragma once

#include <array>

#include "imaging/colour.h"

namespace lumo::ops::colour {

inline constexpr int kCurvePoints = 17;

/// Output levels at the inputs 0, 16, 32, ... 240 and 255.
using CurvePoints = std::array<std::uint8_t, kCurvePoints>;

/// Straight lines between the points, in integers that truncate toward zero. The last stretch is
/// one level shorter than the others, so that its end is exactly the last point.
imaging::Lut CurveLut(const CurvePoints& points);

/// Applies the curve to a luminance y = 0.289 red + 0.587 green + 0.114 blue and multiplies each
/// channel c by what that changes: c * curve[y] / y, truncated, at most 255. Black stays black.
/// The red weight is not ComputeLuma's, on purpose: the weights sum to 0.99, so that white comes
/// out as 254 under a straight curve, and old Scripts rely on it. In place, in doubles.
void ApplyCurveToBrightness(imaging::ImageView image, const imaging::Lut& curve);

}  // namespace lumo::ops::colour
