#pragma once

// Rows of TIFF samples as RGB. Knows nothing of files: a row is packed bytes as the library
// delivers them, numbers of 16 bits and more in the machine's byte order.

#include <cstddef>
#include <cstdint>
#include <span>

#include "imaging/image.h"

namespace lumo::imaging::codecs {

enum class SampleKind : std::uint8_t { Unsigned, Signed, Float };

/// One number of a row: 1 to 32 bits as an integer, 16, 32 or 64 as a float.
struct SampleType {
    int bits = 8;
    SampleKind kind = SampleKind::Unsigned;
};

/// Writes every `step`-th sample of a row, from `first` on, as bytes `outStep` apart.
/// The full range of an integer is spread over 0 to 255, rounded; a signed one is first moved up
/// by half of its range. Floats run from 0 to 1, clamped; what is no number is 0.
void UnpackSamples(const std::uint8_t* row, SampleType type, std::size_t first, std::size_t step,
                   int count, std::uint8_t* out, std::size_t outStep);

/// The sample at `index` of a row as it stands; up to 16 unsigned bits.
std::uint16_t IndexAt(const std::uint8_t* row, int bits, std::size_t index);

enum class SampleColours : std::uint8_t { Grey, InvertedGrey, Rgb, Cmyk, Lab };
enum class AlphaKind : std::uint8_t { None, Straight, Premultiplied };

/// What the bytes of a pixel mean. Colour channels come first.
struct PixelLayout {
    SampleColours colours = SampleColours::Rgb;
    int channels = 3;  // bytes of a pixel, those without meaning included
    AlphaKind alpha = AlphaKind::None;
    int alphaChannel = 0;
};

constexpr int ColourChannels(SampleColours colours) {
    switch (colours) {
        case SampleColours::Grey:
        case SampleColours::InvertedGrey:
            return 1;
        case SampleColours::Cmyk:
            return 4;
        case SampleColours::Rgb:
        case SampleColours::Lab:
            break;
    }
    return 3;
}

/// Converts a row of pixels to RGB over white. CMYK holds amounts of ink; the a and b of Lab
/// count from 128.
void PixelsToRgb(const std::uint8_t* pixels, const PixelLayout& layout, int count,
                 std::uint8_t* rgb);

}  // namespace lumo::imaging::codecs
