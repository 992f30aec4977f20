#pragma once

#include <cstddef>
#include <cstdint>

#include "imaging/colour.h"

namespace lumo::ops::colour::kernels {

/// ApplyCurveToBrightness (colour_curve.h) of a run of pixels.
void CurveBrightness(std::uint8_t* pixels, std::size_t count, const imaging::Lut& curve);

}  // namespace lumo::ops::colour::kernels
