#pragma once

// The pixels of a TGA file: packets into rows, rows into RGB.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {

enum class TgaKind { Indexed, Grey, Colour };
enum class TgaAlpha { None, Coverage, Premultiplied };

struct TgaHeader {
    std::size_t idBytes = 0;
    bool hasMap = false;
    TgaKind kind = TgaKind::Colour;
    bool runLengths = false;
    int mapFirst = 0;
    int mapCount = 0;
    int mapBits = 0;
    int width = 0;
    int height = 0;
    int bits = 0;  // Indexed 8, 16; Grey 8, 16; Colour 15, 16, 24, 32
    unsigned descriptor = 0;

    int PixelBytes() const { return (bits + 7) / 8; }
    std::size_t MapEntryBytes() const { return (static_cast<std::size_t>(mapBits) + 7) / 8; }
    std::size_t MapBytes() const {
        return hasMap ? static_cast<std::size_t>(mapCount) * MapEntryBytes() : 0;
    }
    bool HasAttributes() const { return (descriptor & 0x0F) != 0; }
    bool IsRightToLeft() const { return (descriptor & 0x10) != 0; }
    bool IsTopDown() const { return (descriptor & 0x20) != 0; }
};

/// The colours of an indexed picture, by index as pixels name them, laid over white. What the map
/// leaves out is black; coverage that is 0 in every entry counts as none.
std::vector<Rgb> ReadTgaMap(const TgaHeader& header, ByteView map, TgaAlpha alpha);

/// The stored pixels row by row. Packets may run on from one row to the next.
class TgaStoredRows {
  public:
    TgaStoredRows(ByteView bytes, const TgaHeader& header);
    /// The next row, valid until the next call; null where the file ends before the row does.
    const std::uint8_t* Next();

  private:
    bool NextPacket();
    void FillRun(std::uint8_t* out, std::size_t count) const;

    ByteView bytes_;
    std::size_t unit_;
    std::size_t rowBytes_;
    bool runLengths_;
    std::size_t at_ = 0;
    std::vector<std::uint8_t> row_;
    std::size_t left_ = 0;  // pixels of the packet in hand
    bool isRun_ = false;
    std::array<std::uint8_t, 4> value_{};
};

/// Turns stored rows into RGB, and sees whether any pixel had coverage at all.
class TgaRowConverter {
  public:
    /// `map` as ReadTgaMap gives it, for an indexed picture only. Keeps the reference.
    TgaRowConverter(const TgaHeader& header, std::vector<Rgb> map, TgaAlpha alpha);

    void Convert(const std::uint8_t* row, std::uint8_t* rgb);
    bool AnyCoverage() const { return anyCoverage_; }

  private:
    void Indexed(const std::uint8_t* row, std::uint8_t* rgb) const;
    void Grey16(const std::uint8_t* row, std::uint8_t* rgb);
    void WithAlpha(const std::uint8_t* row, std::uint8_t* rgb);
    void LookForCoverage(const std::uint8_t* row);

    const TgaHeader& header_;
    std::vector<Rgb> map_;
    Palette palette_;
    TgaAlpha alpha_;
    bool anyCoverage_ = false;
};

}  // namespace lumo::imaging::codecs
