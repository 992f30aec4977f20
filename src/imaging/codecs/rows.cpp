#include "imaging/codecs/rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "imaging/codecs/decoders.h"
#include "imaging/simd.h"

namespace lumo::imaging::codecs {
namespace {

// v * 255 / 31 and v * 255 / 63, rounded, for the low bits of v.
constexpr std::uint8_t From5Bits(unsigned v) {
    return static_cast<std::uint8_t>(((v & 31U) * 527U + 23U) >> 6);
}
constexpr std::uint8_t From6Bits(unsigned v) {
    return static_cast<std::uint8_t>(((v & 63U) * 259U + 33U) >> 6);
}

}  // namespace

void Palette::Expand(const std::uint8_t* indices, int count, std::uint8_t* rgb) const {
    if (count <= 0) return;
    // Four bytes at a time: the next pixel overwrites the fourth one.
    for (int i = 0; i + 1 < count; ++i, rgb += 3) std::memcpy(rgb, entries_[indices[i]].data(), 4);
    std::memcpy(rgb, entries_[indices[count - 1]].data(), 3);
}

Palette GreyPalette(int count) {
    Palette palette;
    for (int i = 0; i < count; ++i) {
        const auto grey = static_cast<std::uint8_t>(count > 1 ? i * 255 / (count - 1) : 0);
        palette.Set(i, {grey, grey, grey});
    }
    return palette;
}

void UnpackIndices(const std::uint8_t* packed, int bits, int count, std::uint8_t* indices) {
    if (bits == 8) {
        std::memcpy(indices, packed, static_cast<std::size_t>(count));
        return;
    }
    const int perByte = 8 / bits;
    const unsigned mask = (1U << bits) - 1;
    const auto index = [&](unsigned byte, int i) {
        return static_cast<std::uint8_t>(byte >> (8 - bits * (i + 1)) & mask);
    };
    for (; count >= perByte; count -= perByte, ++packed)
        for (int i = 0; i < perByte; ++i) *indices++ = index(*packed, i);
    for (int i = 0; i < count; ++i) *indices++ = index(*packed, i);
}

LUMO_SIMD_CLONES void RgbFromBgr(const std::uint8_t* __restrict bgr, int count,
                                 std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        rgb[3 * i] = bgr[3 * i + 2];
        rgb[3 * i + 1] = bgr[3 * i + 1];
        rgb[3 * i + 2] = bgr[3 * i];
    }
}

LUMO_SIMD_CLONES void RgbFromBgrx(const std::uint8_t* __restrict bgrx, int count,
                                  std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        rgb[3 * i] = bgrx[4 * i + 2];
        rgb[3 * i + 1] = bgrx[4 * i + 1];
        rgb[3 * i + 2] = bgrx[4 * i];
    }
}

LUMO_SIMD_CLONES void RgbFromBgra(const std::uint8_t* __restrict bgra, int count,
                                  std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        const std::uint8_t alpha = bgra[4 * i + 3];
        rgb[3 * i] = OverWhite(bgra[4 * i + 2], alpha);
        rgb[3 * i + 1] = OverWhite(bgra[4 * i + 1], alpha);
        rgb[3 * i + 2] = OverWhite(bgra[4 * i], alpha);
    }
}

LUMO_SIMD_CLONES void RgbFrom555(const std::uint8_t* __restrict words, int count,
                                 std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        const unsigned v = words[2 * i] | static_cast<unsigned>(words[2 * i + 1]) << 8;
        rgb[3 * i] = From5Bits(v >> 10);
        rgb[3 * i + 1] = From5Bits(v >> 5);
        rgb[3 * i + 2] = From5Bits(v);
    }
}

LUMO_SIMD_CLONES void RgbFrom565(const std::uint8_t* __restrict words, int count,
                                 std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        const unsigned v = words[2 * i] | static_cast<unsigned>(words[2 * i + 1]) << 8;
        rgb[3 * i] = From5Bits(v >> 11);
        rgb[3 * i + 1] = From6Bits(v >> 5);
        rgb[3 * i + 2] = From5Bits(v);
    }
}

LUMO_SIMD_CLONES void RgbFromGreyAlpha(const std::uint8_t* __restrict pairs, int count,
                                       std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        const std::uint8_t grey = OverWhite(pairs[2 * i], pairs[2 * i + 1]);
        rgb[3 * i] = grey;
        rgb[3 * i + 1] = grey;
        rgb[3 * i + 2] = grey;
    }
}

LUMO_SIMD_CLONES void RgbFromGrey(const std::uint8_t* __restrict grey, int count,
                                  std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        rgb[3 * i] = grey[i];
        rgb[3 * i + 1] = grey[i];
        rgb[3 * i + 2] = grey[i];
    }
}

LUMO_SIMD_CLONES void RgbFromPlanes(const std::uint8_t* __restrict red,
                                    const std::uint8_t* __restrict green,
                                    const std::uint8_t* __restrict blue, int count,
                                    std::uint8_t* __restrict rgb) {
    for (int i = 0; i < count; ++i) {
        rgb[3 * i] = red[i];
        rgb[3 * i + 1] = green[i];
        rgb[3 * i + 2] = blue[i];
    }
}

LUMO_SIMD_CLONES void PlanesFromRgb(const std::uint8_t* __restrict rgb, int count,
                                    std::uint8_t* __restrict red, std::uint8_t* __restrict green,
                                    std::uint8_t* __restrict blue) {
    for (int i = 0; i < count; ++i) {
        red[i] = rgb[3 * i];
        green[i] = rgb[3 * i + 1];
        blue[i] = rgb[3 * i + 2];
    }
}

LUMO_SIMD_CLONES void Samples8From16(const std::uint8_t* __restrict samples, int count,
                                     std::uint8_t* __restrict bytes) {
    for (int i = 0; i < count; ++i) {
        const std::uint32_t v =
            static_cast<std::uint32_t>(samples[2 * i] << 8 | samples[2 * i + 1]);
        // The same for all 65536 values as the division of Round16To8, and twice as fast.
        bytes[i] = static_cast<std::uint8_t>((v * 255U + 32895U) >> 16);
    }
}

int WholeRows(std::size_t bytes, std::size_t rowBytes, std::size_t stride, int height) {
    if (bytes < rowBytes) return 0;
    const std::size_t rows =
        stride == 0 ? static_cast<std::size_t>(height) : (bytes - rowBytes) / stride + 1;
    return static_cast<int>(std::min(rows, static_cast<std::size_t>(height)));
}

std::string CutWarning(int rows, int height) {
    return fmt::format("the file ends early: {} of {} rows of pixels are there", rows, height);
}

Result<Decoded> FinishRows(Image image, Format format, int bitsPerPixel, int rows, bool topDown) {
    if (rows == 0) return platform::Error{kNoRows};
    const ImageView view = image.View();
    std::string warning;
    if (rows < view.Height()) {
        const int missing = view.Height() - rows;
        std::memset(view.Row(topDown ? rows : 0), 255,
                    static_cast<std::size_t>(missing) * view.Stride());
        warning = CutWarning(rows, view.Height());
    }
    return Decoded{std::move(image), format, bitsPerPixel, std::move(warning)};
}

}  // namespace lumo::imaging::codecs
