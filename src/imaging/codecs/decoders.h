#pragma once

// The decoders behind Decode, one per file of this folder, and what they share.

#include "imaging/codecs/codec.h"

namespace lumo::imaging::codecs {

Result<Decoded> DecodeJpeg(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodePng(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeTiff(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeGif(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeBmp(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodePcx(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeTga(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodePsd(ByteView file, const DecodeOptions& options);
/// A Windows metafile, with or without the placeable header.
Result<Decoded> DecodeWmf(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeEmf(ByteView file, const DecodeOptions& options);
Result<Decoded> DecodeRaw(ByteView file, const DecodeOptions& options);

/// A colour value v with coverage a (0 to 255) over white, rounded.
constexpr std::uint8_t OverWhite(std::uint8_t v, std::uint8_t a) {
    const unsigned sum = unsigned{v} * a + 255U * (255U - a) + 127U;
    return static_cast<std::uint8_t>(sum / 255U);
}

/// A 16-bit sample as 8 bits, rounded: v * 255 / 65535.
constexpr std::uint8_t Round16To8(std::uint16_t v) {
    return static_cast<std::uint8_t>((std::uint32_t{v} * 255U + 32767U) / 65535U);
}

/// Naive CMYK to RGB; arguments are amounts of ink, 0 none to 255 full.
constexpr Rgb CmykToRgb(std::uint8_t c, std::uint8_t m, std::uint8_t y, std::uint8_t k) {
    const auto channel = [k](std::uint8_t ink) {
        const unsigned product = (255U - ink) * (255U - k) + 127U;
        return static_cast<std::uint8_t>(product / 255U);
    };
    return {channel(c), channel(m), channel(y)};
}

}  // namespace lumo::imaging::codecs
