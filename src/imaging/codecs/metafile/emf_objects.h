#pragma once

// The records of an enhanced metafile that make objects, and the parts that several records share.
// Readers of records stand behind the object number.

#include <optional>

#include "imaging/codecs/metafile/device_context.h"
#include "imaging/codecs/metafile/record_reader.h"

namespace lumo::imaging::codecs::metafile {

// Each gives an empty object if the record is too short.
Object ReadEmfPen(RecordReader record);
Object ReadEmfExtPen(RecordReader record);
Object ReadEmfBrush(RecordReader record);
Object ReadEmfFont(RecordReader record);
Object ReadEmfPalette(RecordReader record);
Object ReadEmfPatternBrush(RecordReader record, std::span<const Rgb> palette, bool monochrome,
                           const DecodeOptions& options);

/// The object that the system keeps under a number of its own, without the high bit.
Object StockObject(std::uint32_t number);

/// Places in a record of the header and the rows of a bitmap, as four numbers.
struct EmfBitmapPlace {
    std::size_t infoAt = 0, infoSize = 0, bitsAt = 0, bitsSize = 0;
    bool IsEmpty() const { return infoSize == 0 || bitsSize == 0; }
};
EmfBitmapPlace ReadBitmapPlace(RecordReader& record);
std::optional<Bitmap> ReadBitmap(const RecordReader& record, const EmfBitmapPlace& place,
                                 ColourTable table, std::span<const Rgb> palette,
                                 const DecodeOptions& options);

/// Boxes of a region, with their header.
Region ReadEmfRegion(RecordReader& record);

Point ReadPoint(RecordReader& record);
Point ReadPoint16(RecordReader& record);
Box ReadEmfBox(RecordReader& record);
Transform ReadTransform(RecordReader& record);

}  // namespace lumo::imaging::codecs::metafile
