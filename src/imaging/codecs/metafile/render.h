#pragma once

// The way from a file that has been opened to a picture, the same for both kinds of metafile.

#include <functional>

#include "imaging/codecs/metafile/canvas.h"

namespace lumo::imaging::codecs::metafile {

/// The nearest size in whole pixels, one at least.
Size WholePixels(Point size);

/// A white picture of that size that `play` has drawn on. `play` gives false if the file ended too
/// early. Refuses sizes beyond the limits and beyond what Cairo can hold.
Result<Decoded> Render(Size size, const DecodeLimits& limits, Format format,
                       const std::function<bool(Canvas&)>& play);

/// A picture that is the bitmap, pixel for pixel.
Result<Decoded> CopyBitmap(const Bitmap& bitmap, Format format);

}  // namespace lumo::imaging::codecs::metafile
