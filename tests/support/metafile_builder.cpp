#include "support/metafile_builder.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace lumo::test {

using imaging::ConstImageView;
using imaging::Rect;
using imaging::Rgb;

ByteList& ByteList::Little(std::uint32_t v, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<std::uint8_t>(v >> 8 * i));
    return *this;
}

ByteList& ByteList::F32(float v) {
    return U32(std::bit_cast<std::uint32_t>(v));
}

ByteList& ByteList::Words(std::initializer_list<int> values) {
    for (const int v : values) U16(static_cast<std::uint32_t>(v));
    return *this;
}

ByteList& ByteList::Longs(std::initializer_list<std::int64_t> values) {
    for (const std::int64_t v : values) U32(static_cast<std::uint32_t>(v));
    return *this;
}

ByteList& ByteList::Text(std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
    return *this;
}

ByteList& ByteList::Append(const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
    return *this;
}

Bytes Dib(int width, int height, int bits, const std::vector<std::uint32_t>& table,
          const Bytes& rows, std::uint32_t compression) {
    ByteList dib;
    dib.Longs({40, width, height}).Words({1, bits}).Longs({compression, 0, 0, 0});
    dib.U32(static_cast<std::uint32_t>(table.size())).U32(0);
    for (const std::uint32_t colour : table) dib.U32(colour);
    return dib.Append(rows).bytes;
}

WmfBuilder& WmfBuilder::Placeable(int left, int top, int right, int bottom, int unitsPerInch) {
    ByteList header;
    header.U32(0x9AC6CDD7).Words({0, left, top, right, bottom, unitsPerInch}).U32(0).U16(0);
    header_ = header.bytes;
    return *this;
}

WmfBuilder& WmfBuilder::Record(std::uint16_t function, const ByteList& parameters) {
    ByteList padded = parameters;
    if (padded.bytes.size() % 2 == 1) padded.U8(0);
    records_.U32(static_cast<std::uint32_t>(3 + padded.bytes.size() / 2)).U16(function);
    records_.Append(padded.bytes);
    return *this;
}

WmfBuilder& WmfBuilder::Record(std::uint16_t function, std::initializer_list<int> words) {
    return Record(function, ByteList().Words(words));
}

WmfBuilder& WmfBuilder::Brush(int number, std::uint32_t colour, int style, int hatch) {
    ByteList brush;
    brush.Words({style}).U32(colour).Words({hatch});
    return Record(0x02FC, brush).Select(number);
}

WmfBuilder& WmfBuilder::Pen(int number, std::uint32_t colour, int style, int width) {
    ByteList pen;
    pen.Words({style, width, 0}).U32(colour);
    return Record(0x02FA, pen).Select(number);
}

WmfBuilder& WmfBuilder::Fill(int left, int top, int right, int bottom, std::uint32_t rop) {
    ByteList fill;
    fill.U32(rop).Words({bottom - top, right - left, top, left});
    return Record(0x061D, fill);
}

WmfBuilder& WmfBuilder::Window(int x, int y, int width, int height) {
    return Record(0x020B, {y, x}).Record(0x020C, {height, width});
}

WmfBuilder& WmfBuilder::Font(int number, int height, int escapement, std::string_view face,
                             int flags, int charset) {
    ByteList font;
    font.Words({height, 0, escapement, 0, 400});
    font.U8(static_cast<std::uint32_t>(flags & 1)).U8(static_cast<std::uint32_t>(flags & 2));
    font.U8(static_cast<std::uint32_t>(flags & 4)).U8(static_cast<std::uint32_t>(charset)).U32(0);
    font.Text(face);
    font.bytes.resize(18 + 32);
    return Record(0x02FB, font).Select(number);
}

WmfBuilder& WmfBuilder::TextOut(int x, int y, std::string_view text) {
    ByteList out;
    out.U16(static_cast<std::uint32_t>(text.size())).Text(text);
    if (text.size() % 2 == 1) out.U8(0);
    out.Words({y, x});
    return Record(0x0521, out);
}

WmfBuilder& WmfBuilder::StretchDib(int x, int y, int width, int height, int sourceWidth,
                                   int sourceHeight, const Bytes& dib, std::uint32_t rop) {
    ByteList out;
    out.U32(rop).Words({0, sourceHeight, sourceWidth, 0, 0, height, width, y, x}).Append(dib);
    return Record(0x0F43, out);
}

Bytes WmfBuilder::File(bool cut) const {
    ByteList file;
    file.Append(header_).Words({1, 9, 0x0300}).U32(0).Words({0}).U32(0).Words({0});
    file.Append(records_.bytes);
    if (!cut) file.U32(3).U16(0);
    return file.bytes;
}

EmfBuilder::EmfBuilder(int width, int height) {
    Bounds(0, 0, width - 1, height - 1);
    const auto hundredths = [](int pixels) { return (pixels * 2540 + 48) / 96; };
    Frame(0, 0, hundredths(width), hundredths(height));
}

EmfBuilder& EmfBuilder::Frame(int left, int top, int right, int bottom) {
    const std::int32_t sides[4] = {left, top, right, bottom};
    std::ranges::copy(sides, frame_);
    return *this;
}

EmfBuilder& EmfBuilder::Bounds(int left, int top, int right, int bottom) {
    const std::int32_t sides[4] = {left, top, right, bottom};
    std::ranges::copy(sides, bounds_);
    return *this;
}

EmfBuilder& EmfBuilder::Record(std::uint32_t type, const ByteList& parameters) {
    ByteList padded = parameters;
    while (padded.bytes.size() % 4 != 0) padded.U8(0);
    records_.U32(type).U32(static_cast<std::uint32_t>(8 + padded.bytes.size()));
    records_.Append(padded.bytes);
    ++count_;
    return *this;
}

EmfBuilder& EmfBuilder::Brush(std::uint32_t number, std::uint32_t colour) {
    return Record(39, {number, 0, colour, 0}).Record(37, {number});
}

Bytes EmfBuilder::File(bool cut) const {
    ByteList file;
    file.Longs({1, 108, bounds_[0], bounds_[1], bounds_[2], bounds_[3], frame_[0], frame_[1],
                frame_[2], frame_[3], 0x464D4520, 0x10000});
    file.U32(static_cast<std::uint32_t>(108 + records_.bytes.size() + 20)).U32(count_);
    file.Words({16, 0}).Longs({0, 0, 0, 960, 960, 254, 254, 0, 0, 0, 254000, 254000});
    file.Append(records_.bytes);
    if (!cut) file.Longs({14, 20, 0, 16, 20});
    return file.bytes;
}

Rect InkOf(ConstImageView image) {
    Rect ink{image.Width(), image.Height(), 0, 0};
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x)
            if (image.Pixel(x, y) != Rgb{255, 255, 255})
                ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                       std::max(ink.bottom, y + 1)};
    return ink.left < ink.right ? ink : Rect{};
}

int CountOf(ConstImageView image, Rgb colour) {
    int count = 0;
    for (int y = 0; y < image.Height(); ++y)
        for (int x = 0; x < image.Width(); ++x) count += image.Pixel(x, y) == colour;
    return count;
}

}  // namespace lumo::test
