#pragma once

// Metafiles that are one bitmap and nothing else, as picture programs write them: their rows are
// copied instead of drawn, so that every pixel comes back as it was.

#include <optional>

#include "imaging/codecs/metafile/wmf_player.h"

namespace lumo::imaging::codecs::metafile {

/// The bitmap, if the file draws it once, whole and unchanged, over its whole window or box, and
/// states the bitmap's own size: by its box, or by a window of one unit for each pixel.
std::optional<Bitmap> SingleBitmapOf(const WmfFile& file, const DecodeOptions& options);

/// A picture of the bitmap; nothing if the memory budget is spent.
std::optional<Image> ToImage(const Bitmap& bitmap);

}  // namespace lumo::imaging::codecs::metafile
