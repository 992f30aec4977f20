#pragma once

// Brightness, contrast, gamma and the histogram of luminance. All work in place and fail, with
// LastError() set and the picture unchanged, on an empty picture and where it is told below.

#include "imaging/colour.h"

namespace lumo::imaging {

/// The table of AdjustBrightnessContrast:
/// ((v / 255 - 0.5) * k + 0.5 + brightness) * 255, rounded and held between 0 and 255, where k is
/// 1 + contrast up to contrast 0 and 1 / (1 - contrast) above it. Contrast 1 is a threshold at
/// mid-grey; contrast below -1 or above 1 has a negative k, so it inverts.
Lut ContrastLut(double brightness, double contrast);

/// Both are shares, 0 for no change; the useful range is -1 to 1.
bool AdjustBrightnessContrast(ImageView image, double brightness, double contrast);

/// 255 * (v / 255) ^ (1 / gamma), rounded. Fails if gamma is 0 or less, or no number.
bool AdjustGamma(ImageView image, double gamma);

enum class HistogramMode { Stretch, Equalize };

/// New luminance for each old one.
///
/// Stretch: the occupied part of low..high comes to fill 0..255; what lies outside of it becomes
/// black or white. Equalize: the levels from low to high are moved so that each holds about as many
/// pixels as the others; levels outside stay. The identity if fewer than two levels between the
/// limits are occupied.
Lut LuminanceLut(const std::array<std::uint64_t, 256>& histogram, int low, int high,
                 HistogramMode mode);

/// Moves the luminance y of each pixel to y' by LuminanceLut of the picture and keeps its hue: each
/// channel c becomes y' + (c - y) * k, rounded. k is y' / y but at most 2, 1 where y stays, and
/// less where a channel would pass 255. Limits beyond 0 to 255 act as those. Fails if low is above
/// high.
bool AutoBrightnessRGB(ImageView image, int low, int high, HistogramMode mode);

}  // namespace lumo::imaging
