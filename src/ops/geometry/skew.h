#pragma once

// "Skew": columns or rows displaced by whole pixels.

#include <cstdint>

#include "imaging/image.h"

namespace lumo::ops::geometry {

struct SkewParams {
    bool vertical = false;  // columns climb or fall; else rows move aside
    bool negative = false;  // the displacement grows with the index, else it shrinks
    std::int64_t most = 0;  // displacement of the column or row that moves most
};

/// How a picture of that size is skewed: by `horizontalDegrees`, or by `verticalDegrees` if those
/// are 0. The greatest displacement is the truncated tan(degrees) times the side; where it is
/// beyond every picture it comes out as a number that is, too.
SkewParams SkewOf(imaging::Size source, int horizontalDegrees, int verticalDegrees);

/// Copies each pixel of the source to its place. The target is larger than the source by `most` in
/// the direction of the skew; what the source leaves open keeps its pixels.
void SkewImage(imaging::ConstImageView source, const SkewParams& params, imaging::ImageView target);

}  // namespace lumo::ops::geometry
