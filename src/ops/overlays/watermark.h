#pragma once

#include <cstdint>

#include "engine/command.h"
#include "imaging/image.h"

namespace lumo::ops::overlays {

struct WatermarkParams {
    int x = 0, y = 0;     // percent of the image's width and height, or pixels
    int sizePercent = 0;  // of the image's width; relative only
    int opacity = 100;    // percent
    bool useKey = false;
    imaging::Rgb key;
    int tolerance = 0;      // percent
    bool absolute = false;  // place in pixels, and the overlay at its own size
    bool enlarge = false;   // relative only: may become larger than the file is
};

/// Where an overlay goes, in pixels; it may lie anywhere and have no pixels.
struct WatermarkPlace {
    std::int64_t x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const WatermarkPlace&, const WatermarkPlace&) = default;
};

/// Divisions truncate. Without enlarging, an overlay narrower than asked for keeps the size of its
/// file, and so does one that is then still too high.
WatermarkPlace PlaceWatermark(imaging::Size image, imaging::Size overlay,
                              const WatermarkParams& params);

/// Mixes the overlay into the image with its upper left pixel at (x, y), each channel to
/// (image * (100 - opacity)) / 100 + (overlay * opacity) / 100, of which the low 8 bits stay. What
/// lies outside of the image is left out, with a key also what is exactly its colour.
void CompositeWatermark(imaging::ImageView image, imaging::ConstImageView overlay, std::int64_t x,
                        std::int64_t y, int opacity, const imaging::Rgb* key);

/// The command from the opened picture on: snaps it to the key, resizes and composites it. An empty
/// one is reported and draws nothing.
engine::Outcome LayWatermark(engine::CLumoscriptView& view, imaging::ConstImageView opened,
                             const WatermarkParams& params);

}  // namespace lumo::ops::overlays
