#pragma once

// Small filters without a radius: blur, sharpen, despeckle. All of them look at the nine pixels
// of a block around each pixel; beyond the edges the picture goes on with its edge pixels. Flat
// pictures stay exactly flat.

#include "imaging/image.h"

namespace lumo::imaging {

/// Mixes every pixel with the mean of its block, by `strength` percent, 0 to 100, rounded: 100 is
/// the mean alone, 0 the picture. Views of the same size that do not overlap; false, with
/// LastError() set, if the sizes differ or are empty.
[[nodiscard]] bool BlurImage(ConstImageView source, ImageView target, int strength);

/// Drives every pixel away from the mean of its block: by nothing for the amount 0, by twice its
/// difference from the mean for 100; rounded and limited to 0 to 255. Amounts outside of 0 to 100
/// are limited. Views and failures as for BlurImage.
[[nodiscard]] bool SharpenImage(ConstImageView source, ImageView target, int amount);

/// Gives specks the mean of the eight pixels around them, rounded, in place. A speck is a pixel
/// whose colour change, the sum over the channels of its differences from that mean, is greater
/// than the change of each of its neighbours: an edge shares its change with the neighbours along
/// it and stays as it is. False, with LastError() set and the picture untouched, if it is empty or
/// the scratch memory cannot be had.
[[nodiscard]] bool DespeckleImage(ImageView image);

}  // namespace lumo::imaging
