#pragma once

#include "imaging/image.h"

namespace lumo::ops::overlays {

struct GridParams {
    int columns = 0, rows = 0;  // cells; not 0
    int thickness = 0;          // of a line, in pixels: 1 to 4, anything else the nearest of them
    imaging::Rgb colour;
};

/// Draws the lines between the cells, none at the edges of the picture. Nothing is drawn where a
/// cell would be less than 3 pixels wide or high; where lines would leave less than 4 pixels of a
/// cell they are 1 pixel thick. False if nothing was drawn for want of room. In place.
bool DrawGrid(imaging::ImageView image, const GridParams& params);

}  // namespace lumo::ops::overlays
