#pragma once

#include "imaging/cairo_owners.h"
#include "imaging/codecs/metafile/clip.h"

namespace lumo::imaging::codecs::metafile {

/// A surface on pixels that stand elsewhere and outlive it; stride in bytes, a multiple of four.
CairoSurface SurfaceOn(void* pixels, cairo_format_t format, Size size, std::size_t stride);

/// Appends the path to that of the context, shifted by `shift`. Points come inside the range that
/// Cairo's fixed-point numbers hold, and what is no number becomes 0.
void TracePath(cairo_t* cr, const Path& path, Point shift = {});

/// The path of the context in pixels; the context has none afterwards.
Path TakePath(cairo_t* cr);

void SetFillRule(cairo_t* cr, FillRule rule);

}  // namespace lumo::imaging::codecs::metafile
