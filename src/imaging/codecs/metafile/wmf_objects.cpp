#include "imaging/codecs/metafile/wmf_objects.h"

#include <algorithm>

#include "imaging/codecs/metafile/charsets.h"

namespace lumo::imaging::codecs::metafile {
namespace {

constexpr std::uint32_t kPatternStyle = 3;

}  // namespace

Object ReadWmfPen(RecordReader record) {
    const std::uint16_t style = record.U16();
    const double width = record.I16();
    record.Skip(2);
    const ColourRef colour = record.U32();
    if (!record.IsGood()) return {};
    return PenOfStyle(style, width, colour);
}

Object ReadWmfBrush(RecordReader record) {
    const std::uint16_t style = record.U16();
    Brush brush;
    brush.colour = record.U32();
    brush.hatch = record.U16();
    if (!record.IsGood()) return {};
    return BrushOfStyle(style, brush);
}

Object ReadWmfFont(RecordReader record) {
    Font font;
    font.height = record.I16();
    font.width = record.I16();
    font.escapement = record.I16();
    record.Skip(2);
    font.weight = record.I16();
    ReadFontStyle(record, font);
    if (!record.IsGood()) return {};
    ByteView face = record.Take(std::min<std::size_t>(32, record.Left()));
    face = face.first(static_cast<std::size_t>(std::ranges::find(face, 0) - face.begin()));
    // The name itself is seldom in the alphabet of a symbol font.
    const std::uint8_t charset = font.charset == kSymbolCharset ? 0 : font.charset;
    for (const Character& c : DecodeBytes(face, charset)) AppendUtf8(font.face, c.code);
    return font;
}

std::vector<Rgb> ReadWmfColours(RecordReader& record, std::size_t& first) {
    first = record.U16();
    const std::size_t count = std::min<std::size_t>(record.U16(), record.Left() / 4);
    return ReadColours(record, count);
}

Object ReadWmfPalette(RecordReader record) {
    std::size_t version = 0;
    Palette palette;
    palette.colours = ReadWmfColours(record, version);
    if (!record.IsGood()) return {};
    return palette;
}

Object ReadWmfRegion(RecordReader record) {
    record.Skip(10);
    const std::size_t scans = record.U16();
    record.Skip(10);  // longest scan, bounds
    Region region;
    for (std::size_t i = 0; i < scans && record.IsGood(); ++i) {
        const std::size_t count = record.U16();
        const double top = record.I16(), bottom = record.I16();
        for (std::size_t k = 0; k + 1 < count && record.IsGood(); k += 2) {
            const double left = record.I16(), right = record.I16();
            region.boxes.push_back({left, top, right, bottom});
        }
        record.Skip(2);  // the count once more
    }
    if (region.boxes.empty()) return {};
    return region;
}

Object ReadWmfDibBrush(RecordReader record, std::span<const Rgb> palette,
                       const DecodeOptions& options) {
    const std::uint16_t style = record.U16();
    const auto table = static_cast<ColourTable>(record.U16() & 1);
    return PatternBrush(DecodePackedDib(record.Rest(), table, palette, options),
                        style == kPatternStyle);
}

Object ReadWmfPatternBrush(RecordReader record) {
    // The header ends with four bytes for an address and 18 more that say nothing.
    return PatternBrush(ReadDeviceBitmap(record, 22), true);
}

std::optional<Bitmap> ReadDeviceBitmap(RecordReader& record, std::size_t skip) {
    record.Skip(2);
    Bitmap bitmap;
    bitmap.size.width = record.I16();
    bitmap.size.height = record.I16();
    record.Skip(2);
    const unsigned planes = record.U8(), bits = record.U8();
    record.Skip(skip);
    if (!record.IsGood() || bitmap.size.IsEmpty() || planes != 1) return std::nullopt;
    if (bits != 1 && bits != 24 && bits != 32) return std::nullopt;
    const std::size_t width = static_cast<std::size_t>(bitmap.size.width);
    const std::size_t stride = (width * bits + 15) / 16 * 2;
    const ByteView rows = record.Take(stride * static_cast<std::size_t>(bitmap.size.height));
    if (rows.empty()) return std::nullopt;
    bitmap.monochrome = bits == 1;
    for (std::size_t y = 0; y < static_cast<std::size_t>(bitmap.size.height); ++y) {
        const std::uint8_t* row = rows.data() + y * stride;
        for (std::size_t x = 0; x < width; ++x) {
            if (bits == 1) {
                const bool white = (row[x / 8] >> (7 - x % 8) & 1) != 0;
                bitmap.pixels.push_back(white ? 0xFFFFFFFFU : 0xFF000000U);
            } else {
                const std::uint8_t* p = row + x * bits / 8;
                bitmap.pixels.push_back(PackRgb({p[2], p[1], p[0]}));
            }
        }
    }
    return bitmap;
}

}  // namespace lumo::imaging::codecs::metafile
