#pragma once

// "Canvas size": a picture on a canvas of a fixed size.

#include <cstdint>
#include <utility>

#include "imaging/image.h"

namespace lumo::ops::geometry {

/// True if the picture lies on the canvas without being cut or shrunk.
constexpr bool FitsOn(imaging::Size canvas, imaging::Size picture) {
    return canvas.width >= picture.width && canvas.height >= picture.height;
}

/// Width and height of a picture that does not fit, shrunk until it does. The ratio is taken first
/// and multiplied then, in doubles; the other side is truncated, and may come out as 0.
std::pair<std::int64_t, std::int64_t> ShrunkToFit(imaging::Size canvas, imaging::Size picture);

}  // namespace lumo::ops::geometry
