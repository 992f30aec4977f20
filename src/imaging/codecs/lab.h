#pragma once

#include <cstdint>

#include "imaging/image.h"

namespace lumo::imaging::codecs {

/// CIE L*a*b* (L 0 to 100, a and b about -128 to 127; white D50, as files store it) as sRGB,
/// adapted to D65 so that L = 100 is white and a = b = 0 is grey; rounded and clamped.
/// Formulas: CIE 15, the Bradford adaptation and IEC 61966-2-1.
Rgb LabToRgb(double lightness, double a, double b);

/// Linear light from 0 to 1 with the sRGB curve, rounded and clamped; black if it is no number.
std::uint8_t SrgbFromLinear(double linear);

}  // namespace lumo::imaging::codecs
