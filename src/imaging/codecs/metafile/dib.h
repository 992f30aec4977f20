#pragma once

// Device-independent bitmaps, as metafiles carry them: a header, a colour table and rows of 1, 4,
// 8, 16, 24 or 32 bits, plain or run-length coded.

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs::metafile {

/// Pixels 0xAARRGGBB, rows from the top. AA is what a 32-bit source holds there, else 255.
struct Bitmap {
    Size size;
    std::vector<std::uint32_t> pixels;
    bool bottomUp = false;    // how the source was stored
    bool monochrome = false;  // of one bit a pixel
    bool hasAlpha = false;    // of 32 bits a pixel

    std::uint32_t& At(int x, int y) {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(size.width) +
                      static_cast<std::size_t>(x)];
    }
    std::uint32_t At(int x, int y) const { return const_cast<Bitmap*>(this)->At(x, y); }
};

constexpr std::uint32_t PackRgb(Rgb c) {
    return 0xFF000000U | std::uint32_t{c.red} << 16 | std::uint32_t{c.green} << 8 | c.blue;
}
constexpr Rgb UnpackRgb(std::uint32_t v) {
    return {static_cast<std::uint8_t>(v >> 16), static_cast<std::uint8_t>(v >> 8),
            static_cast<std::uint8_t>(v)};
}

/// How the colour table of a bitmap is stored.
enum class ColourTable : std::uint32_t {
    Rgb = 0,      // colours
    Palette = 1,  // 16-bit indices into the palette of the device context
};

/// What the header of a bitmap says.
struct DibHeader {
    int width = 0;
    int height = 0;
    bool bottomUp = true;
    int bits = 0;
    std::uint32_t compression = 0;
    std::size_t headerSize = 0;            // with the bit masks behind it
    std::size_t tableColours = 0;          // entries of the colour table
    std::size_t tableEntrySize = 4;        // bytes
    std::array<std::uint32_t, 3> masks{};  // red, green, blue, of 16 and 32 bits

    /// Where the rows begin when they follow the table at once.
    std::size_t BitsOffset() const { return headerSize + tableColours * tableEntrySize; }
    /// Bytes of a row that is not run-length coded, padded to four.
    std::size_t Stride() const {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }
};

/// Nothing if the header is cut short or states what no bitmap has.
std::optional<DibHeader> ReadDibHeader(ByteView info, ColourTable table);

/// Decodes a bitmap whose header and table are `info` and whose rows are `bits`. `palette` serves
/// ColourTable::Palette. Rows that the file does not hold come out white, but a quarter must be
/// there. `options` limits the size, and goes to the decoders of a bitmap that is a JPG or PNG.
std::optional<Bitmap> DecodeDib(ByteView info, ByteView bits, ColourTable table,
                                std::span<const Rgb> palette, const DecodeOptions& options);

/// The same for a header, a table and rows in one run of bytes.
std::optional<Bitmap> DecodePackedDib(ByteView dib, ColourTable table, std::span<const Rgb> palette,
                                      const DecodeOptions& options);

}  // namespace lumo::imaging::codecs::metafile
