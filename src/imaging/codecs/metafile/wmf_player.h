#pragma once

// Windows metafiles: a header, and records of 16-bit numbers that are drawn one by one.

#include <optional>

#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {

struct WmfFile {
    ByteView records;             // behind the headers
    std::optional<Box> box;       // of the placeable header, in its units; sides may be mirrored
    double unitsPerInch = 0;      // of the placeable header
    std::optional<Point> window;  // the first window extent in the records, never 0

    /// Width and height in pixels: the box at 96 to the inch, else the proportions of the window
    /// inside of the hint. Nothing if there is neither.
    std::optional<Point> StatedSize(Size hint) const;
};

/// Nothing if this is no Windows metafile.
std::optional<WmfFile> OpenWmf(ByteView file);

/// Draws all records so that the box or the window covers `target`, in pixels. Without either,
/// logical units are pixels, mapped by `base`. Returns false if the file is cut short.
bool PlayWmf(const WmfFile& file, Canvas& canvas, Size target, const Transform& base,
             const DecodeOptions& options);

}  // namespace lumo::imaging::codecs::metafile
