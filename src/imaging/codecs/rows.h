#pragma once

// Rows of pixels from the layouts that several file formats store, and pictures of which only
// some rows are in the file. Counts are pixels; source and target never overlap.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

/// Colours of an indexed picture. Entries that nobody sets are black.
class Palette {
  public:
    void Set(int index, Rgb colour) {
        entries_[static_cast<std::size_t>(index)] = {colour.red, colour.green, colour.blue, 0};
    }
    Rgb At(int index) const {
        const auto& entry = entries_[static_cast<std::size_t>(index)];
        return {entry[0], entry[1], entry[2]};
    }
    /// Writes the colour of each index as three bytes.
    void Expand(const std::uint8_t* indices, int count, std::uint8_t* rgb) const;

  private:
    std::array<std::array<std::uint8_t, 4>, 256> entries_{};  // the fourth byte is never seen
};

/// A palette of `count` shades, black to white.
Palette GreyPalette(int count);

/// Splits bytes into indices of 1, 2, 4 or 8 bits, the topmost bits first.
void UnpackIndices(const std::uint8_t* packed, int bits, int count, std::uint8_t* indices);

void RgbFromBgr(const std::uint8_t* bgr, int count, std::uint8_t* rgb);
/// Drops every fourth byte.
void RgbFromBgrx(const std::uint8_t* bgrx, int count, std::uint8_t* rgb);
/// Lays the pixels over white; the fourth byte is the coverage.
void RgbFromBgra(const std::uint8_t* bgra, int count, std::uint8_t* rgb);
/// Words of 16 bits, low byte first, with five bits each or six of green; rounded to bytes.
void RgbFrom555(const std::uint8_t* words, int count, std::uint8_t* rgb);
void RgbFrom565(const std::uint8_t* words, int count, std::uint8_t* rgb);
/// Grey and coverage, a byte each, over white.
void RgbFromGreyAlpha(const std::uint8_t* pairs, int count, std::uint8_t* rgb);
void RgbFromGrey(const std::uint8_t* grey, int count, std::uint8_t* rgb);
void RgbFromPlanes(const std::uint8_t* red, const std::uint8_t* green, const std::uint8_t* blue,
                   int count, std::uint8_t* rgb);
void PlanesFromRgb(const std::uint8_t* rgb, int count, std::uint8_t* red, std::uint8_t* green,
                   std::uint8_t* blue);
/// 16-bit samples, high byte first, as Round16To8 gives them.
void Samples8From16(const std::uint8_t* samples, int count, std::uint8_t* bytes);

/// Bytes that a row of `width` pixels of `bits` takes, without padding.
constexpr std::size_t PackedRowBytes(int width, int bits) {
    return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 7) / 8;
}

/// How many whole rows stand in `bytes`, at most `height`; the last one needs no padding.
int WholeRows(std::size_t bytes, std::size_t rowBytes, std::size_t stride, int height);

/// The row of the picture that is number `i` of the file.
inline std::uint8_t* RowInFileOrder(ImageView image, int i, bool topDown) {
    return image.Row(topDown ? i : image.Height() - 1 - i);
}

/// What every decoder of this folder does at its end: `rows` rows, counted as the file has them,
/// stand in the image. Where the file ended early the others become white and the result carries
/// a warning; a file without a single whole row is refused.
Result<Decoded> FinishRows(Image image, Format format, int bitsPerPixel, int rows, bool topDown);

/// The warning of FinishRows, for a decoder whose missing rows are not the last ones.
std::string CutWarning(int rows, int height);

/// The refusal of FinishRows, for a decoder that sees it coming before it allocates.
inline constexpr const char* kNoRows = "the file ends before the end of the first row of pixels";

}  // namespace lumo::imaging::codecs
