#pragma once

#include "imaging/image.h"
#include "ops/filters/disc.h"

namespace lumo::ops::filters {

enum class Extremum { Maximum, Minimum };

/// Gives each pixel the colour of the pixel with the largest (or smallest) luminance, ComputeLuma,
/// in the disc around it; what lies outside of the picture does not count. Which one of several
/// equals is taken depends on what was seen before: along a row the pixel found last is kept until
/// it leaves the disc or an entering one is strictly better. When it leaves, the whole disc is
/// searched, and of equals the last one in reading order is taken.
///
/// Source and target have the same size and do not overlap. False, with LastError() set and the
/// target undefined, if the scratch memory cannot be had.
[[nodiscard]] bool FilterExtremum(imaging::ConstImageView source, imaging::ImageView target,
                                  const Disc& disc, Extremum extremum);

}  // namespace lumo::ops::filters
