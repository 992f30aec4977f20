#include "imaging/codecs/metafile/objects.h"

#include <cmath>

namespace lumo::imaging::codecs::metafile {
namespace {
constexpr std::size_t kMostObjects = 1 << 16;
}

Pen PenOfStyle(std::uint32_t style, double width, ColourRef colour) {
    Pen pen;
    const std::uint32_t line = style & 0x0F;
    pen.line = line <= Pen::Alternate ? static_cast<Pen::Line>(line) : Pen::Solid;
    const std::uint32_t cap = style & 0x0F00, join = style & 0xF000;
    pen.cap = cap == 0x0100 ? Pen::Cap::Square : cap == 0x0200 ? Pen::Cap::Flat : Pen::Cap::Round;
    pen.join = join == 0x1000   ? Pen::Join::Bevel
               : join == 0x2000 ? Pen::Join::Miter
                                : Pen::Join::Round;
    pen.width = std::abs(width);
    pen.colour = colour;
    return pen;
}

Brush BrushOfStyle(std::uint32_t style, Brush brush) {
    constexpr std::uint32_t kNull = 1, kHatched = 2;
    if (style == kNull) brush.kind = Brush::Kind::None;
    if (style == kHatched && brush.hatch <= 5) brush.kind = Brush::Kind::Hatch;
    return brush;
}

Brush PatternBrush(std::optional<Bitmap> bitmap, bool inTextColours) {
    Brush brush;
    // A brush whose bitmap cannot be read leaves areas as they are.
    brush.kind = bitmap ? Brush::Kind::Pattern : Brush::Kind::None;
    if (bitmap) {
        for (std::uint32_t& pixel : bitmap->pixels) pixel |= 0xFF000000U;
        brush.inTextColours = inTextColours && bitmap->monochrome;
        brush.pattern = std::make_shared<const Bitmap>(std::move(*bitmap));
    }
    return brush;
}

void ReadFontStyle(RecordReader& record, Font& font) {
    font.italic = record.U8() != 0;
    font.underline = record.U8() != 0;
    font.strikeOut = record.U8() != 0;
    font.charset = record.U8();
    record.Skip(3);
    font.pitchAndFamily = record.U8();
    if (font.weight == 0) font.weight = 400;
}

std::vector<Rgb> ReadColours(RecordReader& record, std::size_t count) {
    std::vector<Rgb> colours;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t red = record.U8(), green = record.U8(), blue = record.U8();
        record.Skip(1);
        colours.push_back({red, green, blue});
    }
    return colours;
}

void ObjectTable::Add(Object object) {
    while (firstFree_ < slots_.size() && slots_[firstFree_]) ++firstFree_;
    Set(firstFree_, std::move(object));
}

void ObjectTable::Set(std::size_t index, Object object) {
    if (index >= kMostObjects) return;
    if (index >= slots_.size()) slots_.resize(index + 1);
    slots_[index] = std::make_shared<const Object>(std::move(object));
}

void ObjectTable::Delete(std::size_t index) {
    if (index >= slots_.size()) return;
    slots_[index] = nullptr;
    firstFree_ = std::min(firstFree_, index);
}

ObjectHandle ObjectTable::Get(std::size_t index) const {
    return index < slots_.size() ? slots_[index] : nullptr;
}

}  // namespace lumo::imaging::codecs::metafile
