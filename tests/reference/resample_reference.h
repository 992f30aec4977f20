#pragma once

#include <vector>

#include "imaging/image.h"
#include "imaging/resample.h"

namespace lumo::test {

/// What resampling should give, before rounding and clamping to a byte: three numbers a pixel, rows
/// from the top. Straight from the definition of each filter, in doubles, tap by tap. Not for
/// Nearest.
std::vector<double> ReferenceResample(imaging::ConstImageView source, imaging::Size target,
                                      imaging::ResampleFilter filter);

}  // namespace lumo::test
