#include "imaging/codecs/psd_colour.h"

#include <algorithm>
#include <bit>

#include "imaging/codecs/decoders.h"
#include "imaging/codecs/lab.h"
#include "imaging/simd.h"

namespace lumo::imaging::codecs {
namespace {

unsigned Load16(const std::uint8_t* p) {
    return static_cast<unsigned>(p[0] << 8 | p[1]);
}

float LoadFloat(const std::uint8_t* p) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(p[0]) << 24 |
                                static_cast<std::uint32_t>(p[1]) << 16 |
                                static_cast<std::uint32_t>(p[2]) << 8 | p[3]);
}

// Samples count the paper that stays white: 255 is no ink.
LUMO_SIMD_CLONES void RgbFromCmykPaper(const std::uint8_t* __restrict c,
                                       const std::uint8_t* __restrict m,
                                       const std::uint8_t* __restrict y,
                                       const std::uint8_t* __restrict k, int count,
                                       std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        rgb[3 * i] = static_cast<std::uint8_t>((unsigned{c[i]} * k[i] + 127U) / 255U);
        rgb[3 * i + 1] = static_cast<std::uint8_t>((unsigned{m[i]} * k[i] + 127U) / 255U);
        rgb[3 * i + 2] = static_cast<std::uint8_t>((unsigned{y[i]} * k[i] + 127U) / 255U);
    }
}

}  // namespace

PsdRowConverter::PsdRowConverter(PsdMode mode, int depth, int width, const Palette& palette,
                                 const std::vector<Rgb>& inks)
    : mode_(mode), depth_(depth), width_(width), palette_(palette) {
    if (mode != PsdMode::Multichannel) return;
    for (const Rgb ink : inks) {
        auto& pass = passes_.emplace_back();
        const std::array<float, 3> full{ink.red / 255.0F, ink.green / 255.0F, ink.blue / 255.0F};
        for (std::size_t v = 0; v < 256; ++v) {
            const float bare = static_cast<float>(v) / 255.0F;  // 255 is no ink
            for (std::size_t c = 0; c < 3; ++c) pass[v][c] = bare + (1 - bare) * full[c];
        }
    }
}

const std::uint8_t* PsdRowConverter::Samples8(const std::uint8_t* row,
                                              std::vector<std::uint8_t>& scratch) const {
    if (depth_ == 8) return row;
    scratch.resize(static_cast<std::size_t>(width_));
    if (depth_ == 16) {
        Samples8From16(row, width_, scratch.data());
    } else if (depth_ == 32) {
        for (std::size_t x = 0; x < scratch.size(); ++x)
            scratch[x] = SrgbFromLinear(static_cast<double>(LoadFloat(row + 4 * x)));
    } else {
        UnpackIndices(row, 1, width_, scratch.data());
        for (auto& v : scratch) v = v != 0 ? 0 : 255;  // a set bit is ink
    }
    return scratch.data();
}

void PsdRowConverter::Convert(const std::vector<const std::uint8_t*>& rows, std::uint8_t* rgb) {
    if (mode_ == PsdMode::Lab) return ConvertLab(rows, rgb);
    scratch_.resize(rows.size());
    bytes_.resize(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) bytes_[i] = Samples8(rows[i], scratch_[i]);
    switch (mode_) {
        case PsdMode::Indexed:
            return palette_.Expand(bytes_[0], width_, rgb);
        case PsdMode::Rgb:
            return RgbFromPlanes(bytes_[0], bytes_[1], bytes_[2], width_, rgb);
        case PsdMode::Cmyk:
            return RgbFromCmykPaper(bytes_[0], bytes_[1], bytes_[2], bytes_[3], width_, rgb);
        case PsdMode::Multichannel:
            return ConvertInks(rgb);
        default:
            return RgbFromGrey(bytes_[0], width_, rgb);
    }
}

// 16 bits keep their precision until the end. Their a and b are 0 at 32768, and not the 8-bit
// samples times 257.
void PsdRowConverter::ConvertLab(const std::vector<const std::uint8_t*>& rows,
                                 std::uint8_t* rgb) const {
    for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x, rgb += 3) {
        Rgb colour;
        if (depth_ == 16)
            colour = LabToRgb(Load16(rows[0] + 2 * x) * 100.0 / 65535,
                              (Load16(rows[1] + 2 * x) - 32768.0) / 256,
                              (Load16(rows[2] + 2 * x) - 32768.0) / 256);
        else
            colour = LabToRgb(rows[0][x] * 100.0 / 255, rows[1][x] - 128.0, rows[2][x] - 128.0);
        rgb[0] = colour.red;
        rgb[1] = colour.green;
        rgb[2] = colour.blue;
    }
}

void PsdRowConverter::ConvertInks(std::uint8_t* rgb) const {
    for (std::size_t x = 0; x < static_cast<std::size_t>(width_); ++x)
        for (std::size_t c = 0; c < 3; ++c) {
            float light = 255;
            for (std::size_t i = 0; i < passes_.size(); ++i) light *= passes_[i][bytes_[i][x]][c];
            *rgb++ = static_cast<std::uint8_t>(light + 0.5F);
        }
}

}  // namespace lumo::imaging::codecs
