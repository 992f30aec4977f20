#pragma once

#include "imaging/colour_key.h"
#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Covers the image with copies of the tile, each channel mixed to
/// (opacity * tile + (100 - opacity) * image) / 100; tile pixels that match the key (null: none)
/// are left out. The image's first pixel shows the tile's second of the second row: rows and
/// columns of the tile are counted from 1 on, and old Scripts are laid out for that. Opacity 0 to
/// 100, the tile is not empty.
void TileOver(imaging::ImageView image, imaging::ConstImageView tile, int opacity,
              const imaging::ColourKey* key);

}  // namespace lumo::ops::overlays
