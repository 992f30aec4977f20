#pragma once

// Metafiles record by record, for tests that state each number.

#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::test {

using imaging::codecs::Bytes;

/// Little-endian numbers, one behind the other.
struct ByteList {
    Bytes bytes;

    ByteList& U8(std::uint32_t v) { return Little(v, 1); }
    ByteList& U16(std::uint32_t v) { return Little(v, 2); }
    ByteList& U32(std::uint32_t v) { return Little(v, 4); }
    ByteList& F32(float v);
    ByteList& Words(std::initializer_list<int> values);
    ByteList& Longs(std::initializer_list<std::int64_t> values);
    ByteList& Text(std::string_view text);
    ByteList& Append(const Bytes& more);

  private:
    ByteList& Little(std::uint32_t v, int count);
};

/// A packed bitmap: a header of 40 bytes, the table of 0x00RRGGBB, and the rows as given.
/// A negative height stands for rows from the top.
Bytes Dib(int width, int height, int bits, const std::vector<std::uint32_t>& table,
          const Bytes& rows, std::uint32_t compression = 0);

/// A Windows metafile.
class WmfBuilder {
  public:
    /// The placeable header; without the call the file has none.
    WmfBuilder& Placeable(int left, int top, int right, int bottom, int unitsPerInch = 96);
    WmfBuilder& Record(std::uint16_t function, const ByteList& parameters);
    WmfBuilder& Record(std::uint16_t function, std::initializer_list<int> words);
    /// A solid or other brush, made and selected as object `number`.
    WmfBuilder& Brush(int number, std::uint32_t colour, int style = 0, int hatch = 0);
    WmfBuilder& Pen(int number, std::uint32_t colour, int style = 0, int width = 0);
    WmfBuilder& Select(int number) { return Record(0x012D, {number}); }
    WmfBuilder& Rectangle(int left, int top, int right, int bottom) {
        return Record(0x041B, {bottom, right, top, left});
    }
    /// Fills the box through a pattern operation: no pen takes part.
    WmfBuilder& Fill(int left, int top, int right, int bottom, std::uint32_t rop = 0x00F00021);
    WmfBuilder& Window(int x, int y, int width, int height);
    WmfBuilder& Font(int number, int height, int escapement = 0, std::string_view face = "Arial",
                     int flags = 0, int charset = 0);
    WmfBuilder& TextOut(int x, int y, std::string_view text);
    WmfBuilder& StretchDib(int x, int y, int width, int height, int sourceWidth, int sourceHeight,
                           const Bytes& dib, std::uint32_t rop = 0x00CC0020);

    /// The file with its closing record, unless `cut`.
    Bytes File(bool cut = false) const;

  private:
    Bytes header_;
    ByteList records_;
};

/// An enhanced metafile on a device of exactly 96 pixels to the inch.
class EmfBuilder {
  public:
    /// The frame covers a picture of that size at 96 to the inch.
    EmfBuilder(int width, int height);
    EmfBuilder& Frame(int left, int top, int right, int bottom);
    EmfBuilder& Bounds(int left, int top, int right, int bottom);
    EmfBuilder& Record(std::uint32_t type, const ByteList& parameters = {});
    EmfBuilder& Record(std::uint32_t type, std::initializer_list<std::int64_t> longs) {
        return Record(type, ByteList().Longs(longs));
    }
    EmfBuilder& Brush(std::uint32_t number, std::uint32_t colour);
    EmfBuilder& NoPen() { return Record(37, {0x80000008}); }
    EmfBuilder& Rectangle(int left, int top, int right, int bottom) {
        return Record(43, {left, top, right, bottom});
    }
    Bytes File(bool cut = false) const;

  private:
    std::int32_t bounds_[4] = {0, 0, 0, 0};
    std::int32_t frame_[4] = {0, 0, 0, 0};
    ByteList records_;
    std::uint32_t count_ = 2;
};

/// The smallest box that holds all pixels that are not white; empty if there is none.
imaging::Rect InkOf(imaging::ConstImageView image);
/// Number of pixels of exactly that colour.
int CountOf(imaging::ConstImageView image, imaging::Rgb colour);

}  // namespace lumo::test
