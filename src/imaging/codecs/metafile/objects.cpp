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
