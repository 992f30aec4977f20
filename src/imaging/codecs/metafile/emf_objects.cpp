#include "imaging/codecs/metafile/emf_objects.h"

#include <algorithm>
#include <cmath>

#include "imaging/codecs/metafile/charsets.h"

namespace lumo::imaging::codecs::metafile {

namespace {
constexpr std::uint32_t kGeometric = 0x00010000;
constexpr std::uint32_t kNullBrush = 1;
}  // namespace

Point ReadPoint(RecordReader& record) {
    const double x = record.I32(), y = record.I32();
    return {x, y};
}

Point ReadPoint16(RecordReader& record) {
    const double x = record.I16(), y = record.I16();
    return {x, y};
}

Box ReadEmfBox(RecordReader& record) {
    const Point from = ReadPoint(record), to = ReadPoint(record);
    return {from.x, from.y, to.x, to.y};
}

Transform ReadTransform(RecordReader& record) {
    Transform t;
    t.xx = record.F32();
    t.yx = record.F32();
    t.xy = record.F32();
    t.yy = record.F32();
    t.x0 = record.F32();
    t.y0 = record.F32();
    return t;
}

Object ReadEmfPen(RecordReader record) {
    const std::uint32_t style = record.U32();
    const double width = record.I32();
    record.Skip(4);
    const ColourRef colour = record.U32();
    if (!record.IsGood()) return {};
    return PenOfStyle(style, width, colour);
}

Object ReadEmfExtPen(RecordReader record) {
    record.Skip(16);  // a bitmap for pens that draw with one
    const std::uint32_t style = record.U32();
    const double width = record.U32();
    const std::uint32_t brush = record.U32();
    const ColourRef colour = record.U32();
    record.Skip(4);
    const std::size_t dashes = std::min<std::size_t>(record.U32(), 64);
    if (!record.IsGood()) return {};
    Pen pen = PenOfStyle(style, width, colour);
    pen.extended = true;
    pen.geometric = (style & kGeometric) != 0;
    if (brush == kNullBrush) pen.line = Pen::None;
    for (std::size_t i = 0; i < dashes && record.Left() >= 4; ++i)
        pen.dashes.push_back(record.U32());
    if (pen.dashes.size() % 2 == 1)
        pen.dashes.insert(pen.dashes.end(), pen.dashes.begin(), pen.dashes.end());
    return pen;
}

Object ReadEmfBrush(RecordReader record) {
    const std::uint32_t style = record.U32();
    Brush brush;
    brush.colour = record.U32();
    brush.hatch = record.U32();
    if (!record.IsGood()) return {};
    return BrushOfStyle(style, brush);
}

Object ReadEmfFont(RecordReader record) {
    Font font;
    font.height = record.I32();
    font.width = record.I32();
    font.escapement = record.I32();
    record.Skip(4);
    font.weight = record.I32();
    ReadFontStyle(record, font);
    if (!record.IsGood()) return {};
    for (const Character& c : DecodeUtf16(record.Take(std::min<std::size_t>(64, record.Left())))) {
        if (c.code == 0) break;
        AppendUtf8(font.face, c.code);
    }
    return font;
}

Object ReadEmfPalette(RecordReader record) {
    record.Skip(2);
    const std::size_t count = record.U16();
    return Palette{ReadColours(record, std::min(count, record.Left() / 4))};
}

Object ReadEmfPatternBrush(RecordReader record, std::span<const Rgb> palette, bool monochrome,
                           const DecodeOptions& options) {
    const auto table = static_cast<ColourTable>(record.U32() & 1);
    const EmfBitmapPlace place = ReadBitmapPlace(record);
    return PatternBrush(ReadBitmap(record, place, table, palette, options), monochrome);
}

Object StockObject(std::uint32_t number) {
    const auto brush = [](ColourRef colour) { return Brush{.colour = colour}; };
    const auto pen = [](ColourRef colour) { return Pen{.geometric = false, .colour = colour}; };
    const auto font = [](const char* face, std::uint8_t pitch) {
        return Font{.pitchAndFamily = pitch, .face = face};
    };
    switch (number) {
        case 0:
            return brush(0xFFFFFF);
        case 1:
            return brush(0xC0C0C0);
        case 2:
            return brush(0x808080);
        case 3:
            return brush(0x404040);
        case 4:
            return brush(0x000000);
        case 5:
            return Brush{.kind = Brush::Kind::None};
        case 6:
            return pen(0xFFFFFF);
        case 7:
            return pen(0x000000);
        case 8:
            return Pen{.line = Pen::None};
        case 10:
        case 11:
        case 16:
            return font("Courier New", 0x31);
        case 12:
        case 13:
        case 14:
        case 17:
            return font("Arial", 0x22);
        case 15:
            return Palette{};
        case 18:
            return brush(0xFFFFFF);
        case 19:
            return pen(0x000000);
        default:
            return {};
    }
}

EmfBitmapPlace ReadBitmapPlace(RecordReader& record) {
    EmfBitmapPlace place;
    place.infoAt = record.U32();
    place.infoSize = record.U32();
    place.bitsAt = record.U32();
    place.bitsSize = record.U32();
    return place;
}

std::optional<Bitmap> ReadBitmap(const RecordReader& record, const EmfBitmapPlace& place,
                                 ColourTable table, std::span<const Rgb> palette,
                                 const DecodeOptions& options) {
    const ByteView all = record.All();
    if (place.IsEmpty() || place.infoAt > all.size() || place.bitsAt > all.size())
        return std::nullopt;
    const ByteView info =
        all.subspan(place.infoAt, std::min(place.infoSize, all.size() - place.infoAt));
    const ByteView bits =
        all.subspan(place.bitsAt, std::min(place.bitsSize, all.size() - place.bitsAt));
    return DecodeDib(info, bits, table, palette, options);
}

Region ReadEmfRegion(RecordReader& record) {
    const std::size_t header = record.U32();
    record.Skip(4);
    const std::size_t count = record.U32();
    record.Skip(20);
    if (header > 32) record.Skip(header - 32);
    Region region;
    while (region.boxes.size() < count && record.Left() >= 16)
        region.boxes.push_back(ReadEmfBox(record));
    return region;
}

}  // namespace lumo::imaging::codecs::metafile
