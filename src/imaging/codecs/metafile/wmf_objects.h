#pragma once

// The records of a Windows metafile that make objects, and the bitmaps in its records.

#include <optional>

#include "imaging/codecs/metafile/device_context.h"
#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {

// Each gives an empty object if the record is too short: it takes a number all the same.
Object ReadWmfPen(RecordReader record);
Object ReadWmfBrush(RecordReader record);
Object ReadWmfFont(RecordReader record);
Object ReadWmfPalette(RecordReader record);
Object ReadWmfRegion(RecordReader record);
Object ReadWmfDibBrush(RecordReader record, std::span<const Rgb> palette,
                       const DecodeOptions& options);
Object ReadWmfPatternBrush(RecordReader record);

/// The colours of a list of palette entries: a first number, a count, and four bytes each.
std::vector<Rgb> ReadWmfColours(RecordReader& record, std::size_t& first);

/// A bitmap of the old kind, which depends on its device: rows padded to 16 bits, of 1, 24 or 32
/// bits a pixel. The reader stands on its header; `skip` bytes lie between that and the rows.
std::optional<Bitmap> ReadDeviceBitmap(RecordReader& record, std::size_t skip);

}  // namespace lumo::imaging::codecs::metafile
