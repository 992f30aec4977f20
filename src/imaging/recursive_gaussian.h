#pragma once

#include "imaging/image.h"

namespace lumo::imaging {

/// The part of BlurGaussian for large radii: recursive filters whose response is within 0.07
/// levels of the gaussian's, at the same cost for every deviation. Source and target have the same
/// size, are not empty and do not overlap; the deviation is between 1 and 20000. False, with
/// LastError() set, if the scratch memory (two bytes a sample) cannot be had.
/// Formula: Deriche, "Recursively implementing the Gaussian and its derivatives", 1993, fourth
/// order, as two complex poles for each direction: they keep their precision in 32-bit floats
/// where one filter of fourth order would lose it.
[[nodiscard]] bool RecursiveGaussian(ConstImageView source, ImageView target, double deviation);

}  // namespace lumo::imaging
