#pragma once

// The records of an enhanced metafile that make objects, and the parts that several records share.
// Readers of records stand behind the object number.

#include <optional>

#include "imaging/codecs/metafile/byte_reader.h"
#include "imaging/codecs/metafile/device_context.h"

namespace lumo::imaging::codecs::metafile {

// Each gives an empty object if the record is too short.
Object ReadEmfPen(ByteReader record);
Object ReadEmfExtPen(ByteReader record);
Object ReadEmfBrush(ByteReader record);
Object ReadEmfFont(ByteReader record);
Object ReadEmfPalette(ByteReader record);
Object ReadEmfPatternBrush(ByteReader record, std::span<const Rgb> palette, bool monochrome,
                           const DecodeOptions& options);

/// The object that the system keeps under a number of its own, without the high bit.
Object StockObject(std::uint32_t number);

/// Places in a record of the header and the rows of a bitmap, as four numbers.
struct EmfBitmapPlace {
    std::size_t infoAt = 0, infoSize = 0, bitsAt = 0, bitsSize = 0;
    bool IsEmpty() const { return infoSize == 0 || bitsSize == 0; }
};
EmfBitmapPlace ReadBitmapPlace(ByteReader& record);
std::optional<Bitmap> ReadBitmap(const ByteReader& record, const EmfBitmapPlace& place,
                                 ColourTable table, std::span<const Rgb> palette,
                                 const DecodeOptions& options);

/// Boxes of a region, with their header.
Region ReadEmfRegion(ByteReader& record);

Point ReadPoint(ByteReader& record);
Point ReadPoint16(ByteReader& record);
Box ReadEmfBox(ByteReader& record);
Transform ReadTransform(ByteReader& record);

}  // namespace lumo::imaging::codecs::metafile
