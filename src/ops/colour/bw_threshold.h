#pragma once

#include "imaging/image.h"

namespace lumo::ops::colour {

/// Mean of 0.299 red + 0.586 green + 0.114 blue + 0.5, truncated for each pixel and once more at
/// the end. The green weight differs from ComputeLuma on purpose: old Scripts rely on the mean it
/// gives. 0 for an empty picture.
int ThresholdMean(imaging::ConstImageView image);

/// A threshold `percent` away from the mean: -100 is 0, 0 the mean, 100 is 255.
int RelativeThreshold(int mean, int percent);

/// Black where ComputeLuma is below the threshold, otherwise white. In place.
void ThresholdImage(imaging::ImageView image, int threshold);

}  // namespace lumo::ops::colour
