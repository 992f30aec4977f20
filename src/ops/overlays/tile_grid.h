#pragma once

#include <optional>

#include "imaging/image.h"

namespace lumo::ops::overlays {

/// Raised or sunken tiles, in pixels.
struct TileGridParams {
    int width = 0, height = 0;  // of a tile
    int edge = 0;               // lit and shaded rings of a tile
    int space = 0;              // around the rings, within the tile
    int increment = 0;          // light of the left and top edges; negative for sunken tiles
};

/// False where a tile has no room for its edges, or a length that no tile has.
bool FitsTile(const TileGridParams& params);

/// Adds the increment to the left and top edges of each tile, counted from the top left, and
/// subtracts it from the right and bottom ones; every step is limited to 0 to 255. A corner belongs
/// to both of its edges and is changed twice, the upright edge first. The last tiles are cut off.
/// In place; the params fit.
void DrawTileGrid(imaging::ImageView image, const TileGridParams& params);

}  // namespace lumo::ops::overlays
