#pragma once

// "Horizontal perspective" and "Vertical perspective:": columns or rows squeezed about the middle.

#include <cstdint>

#include "imaging/image.h"

namespace lumo::ops::geometry {

enum class Squeeze { Columns, Rows };

/// Pixels that are left of column or row `index`: its length goes linearly from the first edge of
/// the picture to the last, one of which is shorter by `percent`. `length` is that of an unsqueezed
/// column or row, `count` the number of them. Doubles in the written order, truncated; not
/// positive where nothing is left.
std::int64_t SqueezedLength(int percent, int index, int count, int length);

/// Draws each column or row of the source into its place in the target, which has the same size; of
/// a squeezed one every pixel is a whole source pixel. What is left open keeps its pixels.
void SqueezeImage(imaging::ConstImageView source, Squeeze squeeze, int percent,
                  imaging::ImageView target);

}  // namespace lumo::ops::geometry
