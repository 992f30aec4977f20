#include "imaging/codecs/metafile/single_bitmap.h"

#include <cmath>

#include "imaging/codecs/metafile/emf_objects.h"
#include "imaging/codecs/metafile/emf_records.h"
#include "imaging/codecs/metafile/record_reader.h"
#include "imaging/codecs/metafile/wmf_records.h"

namespace lumo::imaging::codecs::metafile {
namespace {

Point ReadYX(RecordReader& record) {
    const double y = record.I16(), x = record.I16();
    return {x, y};
}

// What a file that is one bitmap says, gathered while its records are read.
struct WmfFacts {
    Point windowOrigin;
    Point windowExtent;
    int bitmaps = 0;
    bool other = false;  // something that changes or adds to the picture
    Point sourceSize, from, size, at;
    ColourTable table = ColourTable::Rgb;
    ByteView dib;
};

void Gather(WmfFacts& facts, WmfFunction function, RecordReader record) {
    switch (function) {
        case WmfFunction::SetMapMode:
            facts.other |= record.U16() != 8;
            break;
        case WmfFunction::SetStretchMode:
            break;
        case WmfFunction::SetWindowOrigin:
            facts.other |= facts.bitmaps > 0;
            facts.windowOrigin = ReadYX(record);
            break;
        case WmfFunction::SetWindowExtent:
            facts.other |= facts.bitmaps > 0;
            facts.windowExtent = ReadYX(record);
            break;
        case WmfFunction::StretchDib:
            ++facts.bitmaps;
            facts.other |= record.U32() >> 16 != kSourceCopy;
            facts.table = static_cast<ColourTable>(record.U16() & 1);
            facts.sourceSize = ReadYX(record);
            facts.from = ReadYX(record);
            facts.size = ReadYX(record);
            facts.at = ReadYX(record);
            facts.dib = record.Rest();
            break;
        default:
            facts.other = true;
    }
}

}  // namespace

std::optional<Bitmap> SingleBitmapOf(const WmfFile& file, const DecodeOptions& options) {
    WmfFacts facts;
    if (file.box) {
        facts.windowOrigin = {file.box->left, file.box->top};
        facts.windowExtent = {file.box->Width(), file.box->Height()};
    }
    const bool complete =
        ForEachWmfRecord(file.records, [&](WmfFunction function, ByteView parameters) {
            Gather(facts, function, RecordReader(parameters));
            return !facts.other;
        });
    if (!complete || facts.other || facts.bitmaps != 1 || facts.table != ColourTable::Rgb)
        return std::nullopt;
    if (facts.at != facts.windowOrigin || facts.size != facts.windowExtent) return std::nullopt;
    const auto header = ReadDibHeader(facts.dib, facts.table);
    if (!header) return std::nullopt;
    const Point own{static_cast<double>(header->width), static_cast<double>(header->height)};
    if (facts.sourceSize != own || facts.from != Point{}) return std::nullopt;
    if (file.box) {
        const auto stated = file.StatedSize(options.metafileHint);
        if (std::round(stated->x) != own.x || std::round(stated->y) != own.y) return std::nullopt;
    } else if (facts.windowExtent != own) {
        return std::nullopt;
    }
    return DecodePackedDib(facts.dib, facts.table, {}, options);
}

std::optional<Bitmap> SingleBitmapOf(const EmfFile& file, const DecodeOptions& options) {
    // Logical units are pixels of the device in such a file: records that change that make it one
    // to be drawn.
    int bitmaps = 0;
    bool other = false;
    Box target, source;
    std::uint32_t usage = 0;
    EmfBitmapPlace place;
    ByteView found;
    const bool complete = ForEachEmfRecord(file.bytes, [&](EmfType type, ByteView bytes) {
        switch (type) {
            case EmfType::Header:
            case EmfType::SetStretchMode:
            case EmfType::SetBrushOrigin:
                return true;
            case EmfType::StretchDib:
                break;
            default:
                other = true;
                return false;
        }
        RecordReader record(bytes);
        record.Skip(24);
        const Point at = ReadPoint(record), from = ReadPoint(record), size = ReadPoint(record);
        source = {from.x, from.y, from.x + size.x, from.y + size.y};
        place = ReadBitmapPlace(record);
        usage = record.U32();
        other = record.U32() >> 16 != kSourceCopy || ++bitmaps > 1;
        const Point targetSize = ReadPoint(record);
        target = {at.x, at.y, at.x + targetSize.x, at.y + targetSize.y};
        found = bytes;
        return !other && record.IsGood();
    });
    if (!complete || other || bitmaps != 1 || usage != 0 || place.infoAt > found.size())
        return std::nullopt;
    const auto header = ReadDibHeader(found.subspan(place.infoAt), ColourTable::Rgb);
    if (!header) return std::nullopt;
    const Box own{0, 0, static_cast<double>(header->width), static_cast<double>(header->height)};
    const Point stated = file.StatedSize();
    if (source != own || std::round(stated.x) != own.right || std::round(stated.y) != own.bottom)
        return std::nullopt;
    Path corners;
    corners.AddBox(target);
    corners.Map(file.Base({header->width, header->height}));
    const Box covered = corners.Bounds();
    if (covered.IsEmpty() || SnapToPixels(covered) != own) return std::nullopt;
    return ReadBitmap(RecordReader(found), place, ColourTable::Rgb, {}, options);
}

std::optional<Image> ToImage(const Bitmap& bitmap) {
    auto image = Image::TryCreate(bitmap.size);
    if (!image) return std::nullopt;
    std::uint8_t* target = image->View().Row(0);
    for (const std::uint32_t pixel : bitmap.pixels) {
        const Rgb colour = UnpackRgb(pixel);
        *target++ = colour.red;
        *target++ = colour.green;
        *target++ = colour.blue;
    }
    return image;
}

}  // namespace lumo::imaging::codecs::metafile
