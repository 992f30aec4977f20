#pragma once

// Rows of PSD samples into RGB.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "imaging/codecs/codec.h"
#include "imaging/codecs/rows.h"

namespace lumo::imaging::codecs {

enum class PsdMode : std::uint16_t {
    Bitmap = 0,
    Grey = 1,
    Indexed = 2,
    Rgb = 3,
    Cmyk = 4,
    Multichannel = 7,
    Duotone = 8,
    Lab = 9,
};

/// Converts rows of one picture. Samples of 16 bits are rounded to 8. Samples of 32 bits are
/// floats of linear light, which come out with the sRGB curve. Grey, duotone and bitmap come out
/// grey; the inks of CMYK and of multichannel are laid on white paper one over the other.
class PsdRowConverter {
  public:
    /// `inks`: of a multichannel picture, the colour of each channel at full strength.
    PsdRowConverter(PsdMode mode, int depth, int width, const Palette& palette,
                    const std::vector<Rgb>& inks);

    /// `rows` holds one pointer for each colour channel, samples high byte first.
    void Convert(const std::vector<const std::uint8_t*>& rows, std::uint8_t* rgb);

    /// One row of samples as bytes: the row itself, or `scratch`, which is resized.
    const std::uint8_t* Samples8(const std::uint8_t* row, std::vector<std::uint8_t>& scratch) const;

  private:
    void ConvertLab(const std::vector<const std::uint8_t*>& rows, std::uint8_t* rgb) const;
    void ConvertInks(std::uint8_t* rgb) const;

    PsdMode mode_;
    int depth_;
    int width_;
    Palette palette_;
    /// What an ink lets through: by channel of the file, its sample, and red, green, blue.
    std::vector<std::array<std::array<float, 3>, 256>> passes_;
    std::vector<std::vector<std::uint8_t>> scratch_;  // one row of bytes for each channel
    std::vector<const std::uint8_t*> bytes_;          // 8-bit rows of the row in hand
};

}  // namespace lumo::imaging::codecs
