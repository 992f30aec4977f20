#pragma once

#include "imaging/image.h"
#include "ops/filters/disc.h"

namespace lumo::ops::filters {

/// Gives each channel of each pixel the median of that channel over the disc around it. Positions
/// outside of the picture count too, so that the disc always holds the same number of samples:
/// they hold a checkerboard, 255 where column and row are both even or both odd, 0 elsewhere,
/// which pulls neither way.
///
/// Source and target have the same size and do not overlap. False, with LastError() set and the
/// target undefined, if the scratch memory cannot be had.
[[nodiscard]] bool FilterMedian(imaging::ConstImageView source, imaging::ImageView target,
                                const Disc& disc);

/// As FilterMedian for the pixels that stand out: those with a channel that differs by more than
/// `threshold` from its mean (truncated) over the part of the disc inside of the picture. All
/// other pixels are copied.
[[nodiscard]] bool RemoveDust(imaging::ConstImageView source, imaging::ImageView target,
                              const Disc& disc, int threshold);

}  // namespace lumo::ops::filters
